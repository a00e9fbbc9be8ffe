#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "common/local_pages.h"
#include "faults.h"
#include "platform/local_files.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// Each file call that writes a local page fails once. Then there is a reason to show, or the page is complete.
class LocalFilesFaultsTest final : public QObject
{
    Q_OBJECT

private slots:
    void pageIsWholeOrThereIsAReason()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"blank.html"_s);
        const std::string page = blankFramePage();
        QString reason;
        long reasons = 0;
        const long calls = failEveryCall(
            QuarrynetFileFaults,
            [&] {
                QFile::remove(path);
                QFile old(path);
                QVERIFY(old.open(QIODevice::WriteOnly));
                QCOMPARE(old.write("old"), 3);
            },
            [&] { reason = rewriteFile(path.toStdString(), page); },
            [&](long number, bool failed) {
                QFile file(path);
                const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
                QVERIFY2(!reason.isEmpty() || content == QByteArray::fromStdString(page),
                         qPrintable(QString::number(number)));
                QVERIFY(failed || reason.isEmpty());
                reasons += reason.isEmpty() ? 0 : 1;
            });
        QVERIFY2(calls >= 3, qPrintable(QString::number(calls)));
        QVERIFY2(reasons >= 1, qPrintable(QString::number(reasons))); // write; the other calls are tried again
    }
};

QTEST_GUILESS_MAIN(LocalFilesFaultsTest)
#include "local_files_faults_test.moc"
