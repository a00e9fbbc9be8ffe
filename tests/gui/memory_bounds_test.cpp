#include <new>

#include <QAction>
#include <QFile>
#include <QProcess>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

#include "app/Application.h"
#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;
constexpr const char* kRoom = "QUARRYNET_TEST_ROOM"; // environment variable: mebibytes that a search may allocate

constexpr std::size_t kLong = 128 * kMebibyte;

#ifdef __SANITIZE_ADDRESS__
constexpr bool kFreedIsGiven = false; // the sanitizer keeps freed memory for a while
#else
constexpr bool kFreedIsGiven = true;
#endif

/// Returns the resident memory of this process, in bytes, or 0 if it is unknown.
std::size_t resident()
{
#ifdef Q_OS_LINUX
    QFile file(u"/proc/self/statm"_s);
    if (file.open(QIODevice::ReadOnly))
        return file.readAll().split(' ').value(1).toULongLong() * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
#endif
    return 0;
}

#ifdef Q_OS_LINUX

/// While the object lives, this process may allocate at most `room` further bytes of address space.
class MemoryLimit
{
public:
    explicit MemoryLimit(std::size_t room)
    {
        releaseFreedMemory();
        QFile file(u"/proc/self/statm"_s);
        std::size_t pages = 0;
        if (file.open(QIODevice::ReadOnly))
            pages = file.readAll().split(' ').value(0).toULongLong();
        ::getrlimit(RLIMIT_AS, &before_);
        rlimit less = before_;
        less.rlim_cur = pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) + room;
        ::setrlimit(RLIMIT_AS, &less);
    }
    ~MemoryLimit() { ::setrlimit(RLIMIT_AS, &before_); }
    Q_DISABLE_COPY_MOVE(MemoryLimit)

private:
    rlimit before_ = {};
};

#endif

/// Throws std::bad_alloc whenever a view is painted while it has rows.
class FailingPaint final : public QObject
{
public:
    explicit FailingPaint(QTreeView& view) : view_(view) { view.viewport()->installEventFilter(this); }

    int failed = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && view_.model()->rowCount() > 0) {
            ++failed;
            throw std::bad_alloc();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QTreeView& view_;
};

} // namespace

/// Tests responses and results that do not fit into memory.
class MemoryBoundsTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        connect(qobject_cast<Application*>(qApp), &Application::outOfMemory, &window_->main(), &Main::outOfMemory);
    }
    void cleanup() { window_.reset(); }

    void aResponseWithoutAnEndIsGivenUp_data() { addTabRows(); }
    void aResponseWithoutAnEndIsGivenUp()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        ReceiveState& shared = window_->main().receiveState();
        shared.longest = 4 * kMebibyte;
        begin(tab);
        const QByteArray piece(static_cast<qsizetype>(kMebibyte), 'x');
        for (int i = 0; i < 12; ++i)
            window_->service.send(piece);
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Error"_s);
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Warning);
        QVERIFY2(window_->boxes.texts()[0].startsWith(u"Error occurred."_s) &&
                     window_->boxes.texts()[0].contains(u"Error #: 10055"_s) &&
                     window_->boxes.texts()[0].contains(u"the response is longer than 4 MB"_s),
                 qPrintable(window_->boxes.texts()[0]));
        QTRY_VERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
        QVERIFY(!window_->control<QTimer>(tab.timer)->isActive());
        QCOMPARE(window_->socketState(tab.socket), 0);
        QVERIFY(shared.ReceiveBuffer.capacity() < kMebibyte);
        QTRY_COMPARE(window_->service.openConnections(), 0);
        QCOMPARE(window_->boxes.boxes().size(), 1);
    }

    void stopGivesBackWhatWasReceived()
    {
        begin(tabOf(1));
        const std::string& received = window_->main().receiveState().ReceiveBuffer;
        const std::size_t before = resident();
        receive(kLong);
        const std::size_t full = resident();
        window_->control<QAction>("stopmnu")->trigger();
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
        QVERIFY(received.capacity() < kMebibyte);
        if (kFreedIsGiven && before != 0) {
            QVERIFY(full >= before + kLong);
            const std::size_t left = resident();
            QVERIFY2(left <= before + kLong / 8, qPrintable(QString::number((left - before) / kMebibyte)));
        }
    }

    void stopKeepsWhatAnotherTabIsReceiving()
    {
        begin(tabOf(5));
        begin(tabOf(1));
        receive(kMebibyte);
        window_->control<QAction>("stopmnu")->trigger();
        QVERIFY(window_->main().receiveState().ReceiveBuffer.size() >= kMebibyte);
    }

    void resultsThatCannotBePaintedAreAnErrorBox()
    {
        auto* view = window_->control<QTreeView>("ListView1");
        FailingPaint paint(*view);
        window_->service.answerWith(pageOf(tabOf(1)));
        fillIn(*window_, tabOf(1));
        QTest::mouseClick(window_->control<QPushButton>("Command1"), Qt::LeftButton);
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"Run-time error '7':\n\nOut of memory"_s});
        QVERIFY(paint.failed > 0);
        QCOMPARE(view->model()->rowCount(), 0);
        verifyIdle(*window_, tabOf(1));
        QVERIFY(window_->hidden("Text2").empty());
        QVERIFY(window_->main().receiveState().ReceiveBuffer.empty());

        // The next search works as usual.
        view->viewport()->removeEventFilter(&paint);
        window_->activate();
        fillIn(*window_, tabOf(1));
        QTest::mouseClick(window_->control<QPushButton>("Command1"), Qt::LeftButton);
        QTRY_VERIFY(view->model()->rowCount() > 0);
        QCOMPARE(window_->boxes.boxes().size(), 1);
    }

#ifdef Q_OS_LINUX
    // Allows more and more memory until all rows are shown. Each time there is the list or one box, and the tab is
    // idle. Each time runs in a new process, because a window that has run out of memory once has some in reserve.
    void rowsThatMemoryDoesNotHoldAreAnErrorBox()
    {
        if (!kFreedIsGiven)
            QSKIP("The sanitizer's own memory exceeds every limit");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        int boxes = 0;
        bool shown = false;
        for (int room = 0; !shown; room += 4) {
            QVERIFY(room < 1024);
            environment.insert(QLatin1String(kRoom), QString::number(room));
            QProcess process;
            process.setProcessEnvironment(environment);
            process.setProcessChannelMode(QProcess::MergedChannels);
            process.start(QCoreApplication::applicationFilePath(), {u"searchWithLittleRoom"_s});
            QVERIFY(process.waitForFinished(60'000));
            const QByteArray said = process.readAll();
            QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, said.constData());
            shown = said.contains("all rows are shown");
            boxes += shown ? 0 : 1;
        }
        QVERIFY(boxes > 3);
    }

    void searchWithLittleRoom()
    {
        if (!qEnvironmentVariableIsSet(kRoom))
            QSKIP("Another test runs this one in a child process");
        const auto room = static_cast<std::size_t>(qEnvironmentVariableIntValue(kRoom)) * kMebibyte;
        auto* view = window_->control<QTreeView>("ListView1");
        std::string page = heading("1");
        for (int i = 0; i < 200'000; ++i)
            page += webEntry("http://h.example/" + std::to_string(i), "title");
        begin(tabOf(1));
        window_->service.send("HTTP/1.1 200 OK\r\n\r\n" + QByteArray::fromStdString(page));
        QTRY_VERIFY(window_->main().receiveState().ReceiveBuffer.size() >= page.size());
        {
            const MemoryLimit limit(room);
            window_->service.finish();
            QTRY_VERIFY(!window_->boxes.boxes().isEmpty() || view->model()->rowCount() > 0);
            view->scrollToBottom();
            view->repaint();
            QTRY_VERIFY(window_->control<QPushButton>("Command1")->isEnabled());
            QCoreApplication::processEvents();
        }
        QVERIFY(!window_->control<QTimer>("STITimer")->isActive());
        QCOMPARE(window_->socketState("NetSock"), 0);
        const QStringList said = window_->boxes.texts();
        if (view->model()->rowCount() == 200'000) {
            QCOMPARE(said, QStringList());
            qInfo("all rows are shown");
            return;
        }
        QCOMPARE(view->model()->rowCount(), 0);
        QCOMPARE(said.size(), 1);
        QVERIFY(said[0].endsWith(u"Out of memory"_s));
    }
#endif

    void memoryThatRunsOutInAnEventEndsTheExchangesUnderWay()
    {
        begin(tabOf(1));
        begin(tabOf(5));
        QMetaObject::invokeMethod(
            &window_->main(), [] { throw std::bad_alloc(); }, Qt::QueuedConnection);
        QMetaObject::invokeMethod(
            &window_->main(), [] { throw std::bad_alloc(); }, Qt::QueuedConnection);
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"Run-time error '7':\n\nOut of memory"_s});
        for (const int tag : {1, 5}) {
            QVERIFY(window_->control<QPushButton>(tabOf(tag).button)->isEnabled());
            QVERIFY(!window_->control<QTimer>(tabOf(tag).timer)->isActive());
            QCOMPARE(window_->socketState(tabOf(tag).socket), 0);
        }
    }

    void memoryThatRunsOutWithoutAConnectionEndsTheSearch()
    {
        // Through a proxy the page check opens no connection and waits.
        window_->control<HiddenText>("ProxySwitch")->setText("on");
        const TabControls& tab = tabOf(2);
        fillIn(*window_, tab);
        QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
        QVERIFY(window_->control<QTimer>(tab.timer)->isActive());
        QMetaObject::invokeMethod(
            &window_->main(), [] { throw std::bad_alloc(); }, Qt::QueuedConnection);
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"Run-time error '7':\n\nOut of memory"_s});
        verifyIdle(*window_, tab);
    }

private:
    /// Starts the tab's search, which then waits for its response.
    void begin(const TabControls& tab)
    {
        window_->service.stall();
        const qsizetype asked = window_->service.requests().size();
        fillIn(*window_, tab);
        QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
        QTRY_COMPARE(window_->service.requests().size(), asked + 1);
    }

    void receive(std::size_t bytes)
    {
        const std::string& received = window_->main().receiveState().ReceiveBuffer;
        const QByteArray piece(static_cast<qsizetype>(kMebibyte), 'x');
        while (received.size() < bytes) {
            const std::size_t had = received.size();
            window_->service.send(piece);
            QTRY_VERIFY(received.size() >= had + kMebibyte);
        }
    }

    std::unique_ptr<WindowFixture> window_;
};

int main(int argc, char** argv)
{
    Application application(argc, argv);
    MemoryBoundsTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "memory_bounds_test.moc"
