#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include <QSignalSpy>

#include "faults.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

/// Answers each request on a free loopback port with the same bytes and closes the connection, in a thread that is
/// exempt from faults.
class SparedService
{
public:
    explicit SparedService(QByteArray answer)
        : answer_(std::move(answer)), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof name;
        auto* const address = reinterpret_cast<sockaddr*>(&name);
        if (::bind(listener_, address, length) != 0 || ::listen(listener_, SOMAXCONN) != 0 ||
            ::getsockname(listener_, address, &length) != 0)
            qFatal("no service");
        port_ = ntohs(name.sin_port);
        thread_ = std::thread([this] {
            quarrynet_spare_this_thread();
            for (int connection = accept(); connection >= 0; connection = accept()) {
                serve(connection);
                ::close(connection);
            }
        });
    }
    ~SparedService()
    {
        ::shutdown(listener_, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }
    Q_DISABLE_COPY_MOVE(SparedService)

    quint16 port() const { return port_; }

private:
    int accept() const { return ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC); }

    void serve(int connection) const
    {
        QByteArray request;
        char byte = 0;
        while (!request.endsWith("\r\n\r\n")) {
            if (::recv(connection, &byte, 1, 0) != 1)
                return;
            request.append(byte);
        }
        for (qsizetype sent = 0; sent < answer_.size();) {
            const ssize_t count = ::send(connection, answer_.data() + sent,
                                         static_cast<std::size_t>(answer_.size() - sent), MSG_NOSIGNAL);
            if (count <= 0)
                return;
            sent += count;
        }
    }

    const QByteArray answer_;
    int listener_;
    quint16 port_ = 0;
    std::thread thread_;
};

void addFaultRows()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("error");
    const auto add = [](const char* what, int kind, int error, const char* name) {
        QTest::addRow("%s, %s", what, name) << kind << error;
    };
    const char* const transfers = "connecting, sending and receiving";
    add(transfers, QuarrynetNetworkFaults, QuarrynetUsualError, "each with its usual error");
    add(transfers, QuarrynetNetworkFaults, QuarrynetShortTransfer, "one byte at once");
    add(transfers, QuarrynetNetworkFaults, EINTR, "EINTR");
    add(transfers, QuarrynetNetworkFaults, EPIPE, "EPIPE");
    add(transfers, QuarrynetNetworkFaults, ETIMEDOUT, "ETIMEDOUT");
    add(transfers, QuarrynetNetworkFaults, ENOBUFS, "ENOBUFS");
    add(transfers, QuarrynetNetworkFaults, ENOMEM, "ENOMEM");
    const char* const state = "asking and telling";
    add(state, QuarrynetSocketStateFaults, QuarrynetUsualError, "each with its usual error");
    add(state, QuarrynetSocketStateFaults, ENOMEM, "ENOMEM");
    add(state, QuarrynetSocketStateFaults, EINVAL, "EINVAL");
    const char* const waiting = "waiting";
    add(waiting, QuarrynetWaitFaults, QuarrynetUsualError, "ENOMEM");
    add(waiting, QuarrynetWaitFaults, EINTR, "EINTR");
}

/// Runs the event loop until `condition` holds, for at most ten seconds. Returns whether it holds. Unlike
/// QTest::qWaitFor() it does not sleep.
template <class Condition>
bool runUntil(Condition condition)
{
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(10'000);
    while (!condition() && limit.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return condition();
}

} // namespace

/// Each network call that a search makes fails once. Then there is a message or the whole result, and the next search
/// works.
class SearchFaultsTest final : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        quarrynet_stop_failing();
        quarrynet_fail_with(QuarrynetUsualError);
    }

    void aConnectionBringsAllOrAnError_data() { addFaultRows(); }
    void aConnectionBringsAllOrAnError()
    {
        QFETCH(int, kind);
        QFETCH(int, error);
        const QByteArray answer = "HTTP/1.1 200 OK\r\n\r\n" + QByteArray(200'000, 'x');
        const SparedService service(answer);
        TcpClientSocket socket(u"NetSock"_s, nullptr);
        std::string text;
        connect(&socket, &TcpClientSocket::connected, &socket, [&] { socket.SendData("GET / HTTP/1.1\r\n\r\n"); });
        connect(&socket, &TcpClientSocket::dataArrival, &socket, [&] { socket.GetData(text); });
        QSignalSpy closed(&socket, &TcpClientSocket::closedByPeer);
        QSignalSpy failed(&socket, &TcpClientSocket::failed);
        const auto fetch = [&] {
            text.clear();
            closed.clear();
            failed.clear();
            socket.Connect("127.0.0.1", service.port());
            return runUntil([&] { return closed.count() + failed.count() > 0; });
        };

        quarrynet_fail_with(error);
        bool ended = false;
        const long calls = failEveryCall(
            kind, [&] { socket.Close(); }, [&] { ended = fetch(); },
            [&](long number, bool reached) {
                const QByteArray call = "call " + QByteArray::number(static_cast<qlonglong>(number));
                QVERIFY2(ended, call.constData());
                // After an error nothing is left that could end a second time.
                if (closed.isEmpty())
                    QVERIFY2(runUntil([&] { return socket.findChildren<QTcpSocket*>().isEmpty(); }), call.constData());
                QVERIFY2(closed.count() + failed.count() == 1, call.constData());
                QVERIFY2(failed.isEmpty() || reached, call.constData());
                QVERIFY2(!failed.isEmpty() || QByteArray::fromStdString(text) == answer, call.constData());
                QVERIFY2(failed.isEmpty() || !failed[0][1].toString().isEmpty(), call.constData());
                socket.Close();
                QCOMPARE(socket.State(), SocketState::Closed);
                QVERIFY2(fetch(), call.constData());
                QVERIFY2(failed.isEmpty(), call.constData());
                QCOMPARE(QByteArray::fromStdString(text), answer);
            });
        QVERIFY2(calls >= 3, qPrintable(QString::number(calls)));
    }

    void aSearchEndsAndTheNextOneWorks_data() { addFaultRows(); }
    void aSearchEndsAndTheNextOneWorks()
    {
        QFETCH(int, kind);
        QFETCH(int, error);
        const TabControls& tab = tabOf(1);
        const SparedService service("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n" + pageOf(tab));
        WindowFixture window;
        window.hosts = {"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", service.port()};
        window.start();
        fillIn(window, tab);
        auto* const button = window.control<QPushButton>(tab.button);
        const auto search = [&] {
            window.boxes.forget();
            QTest::mouseClick(button, Qt::LeftButton);
            return runUntil([&] { return button->isEnabled() && window.socketState(tab.socket) == 0; });
        };
        QVERIFY(search());
        const QStringList all = window.rows(tab.list);
        QVERIFY(!all.isEmpty());

        quarrynet_fail_with(error);
        bool ended = false;
        const long calls = failEveryCall(
            kind, [] {}, [&] { ended = search(); },
            [&](long number, bool reached) {
                const QByteArray call = "call " + QByteArray::number(static_cast<qlonglong>(number));
                QVERIFY2(ended, call.constData());
                QVERIFY2(!window.control<QTimer>(tab.timer)->isActive(), call.constData());
                QCOMPARE(window.text("ConnectionPanel"), u"Closed"_s);
                if (window.boxes.boxes().isEmpty()) {
                    QCOMPARE(window.rows(tab.list), all);
                } else {
                    QVERIFY2(reached, call.constData());
                    QVERIFY2(window.boxes.boxes().size() == 1, qPrintable(window.boxes.texts().join(u"; ")));
                    QCOMPARE(window.boxes.boxes()[0].title, u"Error"_s);
                    QVERIFY2(window.boxes.texts()[0].startsWith(u"Error occurred."_s), call.constData());
                    QCOMPARE(window.rows(tab.list), QStringList());
                }
                QVERIFY2(search(), call.constData());
                QCOMPARE(window.boxes.texts(), QStringList());
                QCOMPARE(window.rows(tab.list), all);
                verifyIdle(window, tab);
            });
        QVERIFY2(calls >= 3, qPrintable(QString::number(calls)));
    }
};

QTEST_MAIN(SearchFaultsTest)
#include "search_faults_test.moc"
