#include <fcntl.h>
#include <unistd.h>

#include <QAction>
#include <QFile>

#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

/// A program that the window starts inherits no descriptors. The test has its own opener, which lists its descriptors.
class DescriptorsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void openerHoldsNoConnectionWhileAllIsOpen();
    void openerOfADownloadHoldsNoConnection();
    void descriptorThatWasForgottenIsKeptBackToo();
    void everySocketIsOpenedForThisProgramOnly();

private:
    QString foreign();
    void fillDownloads();
    void resolveFirstRow();

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<DesktopShell> shell_;
    std::unique_ptr<WindowFixture> window_;
    QByteArray path_;
};

namespace {

QString targetOf(int descriptor)
{
    return QFile::symLinkTarget(u"/proc/self/fd/%1"_s.arg(descriptor));
}

} // namespace

void DescriptorsTest::initTestCase()
{
    path_ = qgetenv("PATH");
}

void DescriptorsTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QFile opener(folder_->filePath(u"xdg-open"_s));
    QVERIFY(opener.open(QIODevice::WriteOnly));
    opener.write("#!/bin/sh\n"
                 "cd \"${0%/*}\"\n"
                 "(ls -l /proc/$$/fd > list.part)\n"
                 "mv list.part list\n");
    opener.close();
    QVERIFY(opener.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    qputenv("PATH", QFile::encodeName(folder_->path()) + ':' + path_);
    shell_ = std::make_unique<DesktopShell>(std::string());
    window_ = std::make_unique<WindowFixture>();
    window_->opener = shell_.get();
    window_->start();
}

void DescriptorsTest::cleanup()
{
    window_.reset();
    shell_.reset();
    qputenv("PATH", path_);
    folder_.reset();
}

/// Waits for the opener. Returns what it had open, except for the null device and its own script.
QString DescriptorsTest::foreign()
{
    const QString list = folder_->filePath(u"list"_s);
    if (!QTest::qWaitFor([&] { return QFile::exists(list); }, 30'000))
        return u"the opener was not started"_s;
    QFile file(list);
    if (!file.open(QIODevice::ReadOnly))
        return u"no list"_s;
    QStringList found;
    int seen = 0;
    for (const QString& line : QString::fromLocal8Bit(file.readAll()).split(u'\n')) {
        const QString target = line.section(u" -> "_s, 1);
        seen += target.isEmpty() ? 0 : 1;
        if (!target.isEmpty() && target != u"/dev/null"_s && !target.endsWith(u"/xdg-open"_s))
            found.append(target);
    }
    file.remove();
    return seen < 3 ? u"the opener could not list"_s : found.join(u' ');
}

void DescriptorsTest::fillDownloads()
{
    const std::string link = "/redir?a=1&destUrl=http%3A%2F%2Fx%2Fy";
    window_->service.answerWith(QByteArray::fromStdString(downloadHead("1", "1 - 1") + downloadEntry("Program", link)));
    window_->chooseTab(4);
    window_->type("Text10", u"apple"_s);
    QTest::mouseClick(window_->control<QPushButton>("Command4"), Qt::LeftButton);
    QTRY_COMPARE(window_->rows("ListView3").size(), 1);
}

void DescriptorsTest::resolveFirstRow()
{
    auto* list = window_->control<QTreeView>("ListView3");
    const QPoint place = list->visualRect(list->model()->index(0, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

void DescriptorsTest::openerHoldsNoConnectionWhileAllIsOpen()
{
    fillDownloads();
    window_->service.stall();
    qsizetype asked = window_->service.requests().size();
    for (const int tag : {1, 3, 5}) {
        fillIn(*window_, tabOf(tag));
        QTest::mouseClick(window_->control<QPushButton>(tabOf(tag).button), Qt::LeftButton);
        ++asked;
        QTRY_COMPARE(window_->service.requests().size(), asked);
    }
    window_->chooseTab(4);
    resolveFirstRow();
    QTRY_COMPARE(window_->service.requests().size(), asked + 1);
    QCOMPARE(window_->service.openConnections(), 4);

    window_->control<QAction>("contentmnu")->trigger();
    QCOMPARE(foreign(), QString());
}

void DescriptorsTest::openerOfADownloadHoldsNoConnection()
{
    fillDownloads();
    window_->service.answerWith("<script>var newlocation = \"http%3A%2F%2Fa%2Fb.zip \";</script>");
    resolveFirstRow();
    QCOMPARE(foreign(), QString());
}

void DescriptorsTest::descriptorThatWasForgottenIsKeptBackToo()
{
    const int forgotten = ::open("/proc/self/status", O_RDONLY);
    QVERIFY(forgotten > STDERR_FILENO);
    window_->control<QAction>("contentmnu")->trigger();
    const QString found = foreign();
    QCOMPARE(::close(forgotten), 0); // it was still open here
    QCOMPARE(found, QString());

    QVERIFY(startProgram(folder_->filePath(u"xdg-open"_s).toStdString()));
    for (const QString& target : foreign().split(u' '))
        QVERIFY2(targetOf(0).endsWith(target) || targetOf(1).endsWith(target) || targetOf(2).endsWith(target),
                 qPrintable(target));
}

void DescriptorsTest::everySocketIsOpenedForThisProgramOnly()
{
    QList<int> before;
    for (int number = 0; number < 1024; ++number) {
        if (::fcntl(number, F_GETFD) >= 0)
            before.append(number);
    }
    fillDownloads();
    window_->service.stall();
    resolveFirstRow();
    QTRY_COMPARE(window_->service.requests().size(), 2);
    int sockets = 0;
    for (int number = 3; number < 1024; ++number) {
        const int flags = ::fcntl(number, F_GETFD);
        if (flags < 0 || before.contains(number))
            continue;
        sockets += targetOf(number).contains(u"socket:"_s) ? 1 : 0;
        QVERIFY2((flags & FD_CLOEXEC) != 0, qPrintable(targetOf(number)));
    }
    QVERIFY(sockets >= 3); // the connection, its witness, and the service's end
}

QTEST_MAIN(DescriptorsTest)
#include "descriptors_test.moc"
