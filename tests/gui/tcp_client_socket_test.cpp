#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

#include "LoopbackService.h"
#include "platform/TcpClientSocket.h"
#include "platform/winsock_errors.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// Returns a port on which nothing listens: it was free a moment ago.
quint16 closedPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

} // namespace

class TcpClientSocketTest final : public QObject
{
    Q_OBJECT

private slots:
    void goesThroughTheStatesOfAnExchange()
    {
        LoopbackService service;
        service.stall();
        TcpClientSocket socket(u"NetSock"_s, nullptr);
        QSignalSpy connected(&socket, &TcpClientSocket::connected);
        QSignalSpy progress(&socket, &TcpClientSocket::sendProgress);
        QSignalSpy complete(&socket, &TcpClientSocket::sendComplete);
        QSignalSpy arrival(&socket, &TcpClientSocket::dataArrival);
        QSignalSpy closed(&socket, &TcpClientSocket::closedByPeer);
        QCOMPARE(socket.State(), SocketState::Closed);

        socket.Connect("127.0.0.1", service.port());
        QVERIFY(socket.State() != SocketState::Closed); // immediately, so that Stop can stop it
        QTRY_COMPARE(connected.count(), 1);
        QCOMPARE(socket.State(), SocketState::Connected);
        QCOMPARE(socket.property("state").toInt(), 7);

        socket.SendData("GET / HTTP/1.1\r\n\r\n");
        QTRY_COMPARE(service.requests().size(), 1);
        QTRY_COMPARE(complete.count(), 1);
        QVERIFY(progress.count() >= 1);

        service.send(QByteArray("a\0b", 3));
        QTRY_COMPARE(arrival.count(), 1);
        std::string text = "before ";
        socket.GetData(text);
        QCOMPARE(text, std::string("before a\0b", 10));
        QCOMPARE(closed.count(), 0);

        service.finish();
        QTRY_COMPARE(closed.count(), 1);
        QCOMPARE(socket.State(), SocketState::Closing);
        socket.Close();
        QCOMPARE(socket.State(), SocketState::Closed);
    }

    void announcesAllDataBeforeTheEnd()
    {
        LoopbackService service;
        service.answerWith(QByteArray(3'000'000, 'x'));
        TcpClientSocket socket(u"NetSock"_s, nullptr);
        std::string received;
        std::size_t atEnd = 0;
        connect(&socket, &TcpClientSocket::connected, &socket, [&] { socket.SendData("GET / HTTP/1.1\r\n\r\n"); });
        connect(&socket, &TcpClientSocket::dataArrival, &socket, [&] { socket.GetData(received); });
        connect(&socket, &TcpClientSocket::closedByPeer, &socket, [&] { atEnd = received.size(); });
        socket.Connect("127.0.0.1", service.port());
        QTRY_VERIFY(atEnd > 3'000'000);
        QCOMPARE(atEnd, received.size());
    }

    void aRefusalIsError10061()
    {
        TcpClientSocket socket(u"NetSock"_s, nullptr);
        QSignalSpy failed(&socket, &TcpClientSocket::failed);
        socket.Connect("127.0.0.1", closedPort());
        QCOMPARE(failed.count(), 0); // Connect() itself never raises it
        QTRY_COMPARE(failed.count(), 1);
        QCOMPARE(failed[0][0].toInt(), 10061);
        QVERIFY(!failed[0][1].toString().isEmpty());
        QCOMPARE(socket.State(), SocketState::Error);
    }

    void aResetIsError10054AndNoEnd()
    {
        LoopbackService service;
        service.stall();
        TcpClientSocket socket(u"NetSock"_s, nullptr);
        QSignalSpy failed(&socket, &TcpClientSocket::failed);
        QSignalSpy closed(&socket, &TcpClientSocket::closedByPeer);
        connect(&socket, &TcpClientSocket::connected, &socket, [&] { socket.SendData("GET / HTTP/1.1\r\n\r\n"); });
        socket.Connect("127.0.0.1", service.port());
        QTRY_COMPARE(service.requests().size(), 1);
        service.reset();
        QTRY_COMPARE(failed.count(), 1);
        QCOMPARE(failed[0][0].toInt(), 10054);
        QCOMPARE(closed.count(), 0);
    }

    // A connection that timed out and a host that cannot be reached used to be a network that cannot be reached.
    void errorsOfTheToolkitAreThoseOfTheSystem_data()
    {
        QTest::addColumn<QAbstractSocket::SocketError>("error");
        QTest::addColumn<QString>("text"); // as the toolkit says it
        QTest::addColumn<int>("number");
        QTest::newRow("refused") << QAbstractSocket::ConnectionRefusedError << u"Connection refused"_s << 10061;
        QTest::newRow("no such host") << QAbstractSocket::HostNotFoundError << u"Host not found"_s << 11001;
        QTest::newRow("the toolkit's limit")
            << QAbstractSocket::SocketTimeoutError << u"Connection timed out"_s << 10060;
        QTest::newRow("the system's limit") << QAbstractSocket::NetworkError << u"Connection timed out"_s << 10060;
        QTest::newRow("no host") << QAbstractSocket::NetworkError << u"Host unreachable"_s << 10065;
        QTest::newRow("no network") << QAbstractSocket::NetworkError << u"Network unreachable"_s << 10051;
        QTest::newRow("no address") << QAbstractSocket::NetworkError << u"The address is not available"_s << 10049;
        QTest::newRow("other network error") << QAbstractSocket::NetworkError << u"Unable to write"_s << 10051;
        QTest::newRow("no permission") << QAbstractSocket::SocketAccessError << u"Permission denied"_s << 10013;
        QTest::newRow("no resources") << QAbstractSocket::SocketResourceError << u"Out of resources"_s << 10055;
        QTest::newRow("unknown") << QAbstractSocket::UnknownSocketError << QString() << 10053;
    }

    void errorsOfTheToolkitAreThoseOfTheSystem()
    {
        QFETCH(QAbstractSocket::SocketError, error);
        QFETCH(QString, text);
        QFETCH(int, number);
        QCOMPARE(winSockError(error, text).number, number);
    }

    void numbersOfTheSystemStay()
    {
        for (const int number : {10051, 10052, 10053, 10054, 10055, 10060, 10065})
            QCOMPARE(winSockError(number).number, number);
        QCOMPARE(winSockError(10057).number, 10053); // none that ends a connection
    }

    void unusableHostsAndPortsAreErrors_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<int>("port");
        QTest::addColumn<int>("error");
        QTest::newRow("no host") << QByteArray() << 80 << 11001;
        QTest::newRow("a blank inside") << QByteArray("a b") << 80 << 11001;
        QTest::newRow("a port in the name") << QByteArray("127.0.0.1:8080") << 80 << 11001;
        QTest::newRow("100 KB") << QByteArray(100'000, 'a') << 80 << 11001;
        QTest::newRow("NUL inside") << QByteArray("127.0.0.1\0x", 11) << 80 << 11001;
        QTest::newRow("port 0") << QByteArray("127.0.0.1") << 0 << 10049;
        QTest::newRow("negative port") << QByteArray("127.0.0.1") << -5 << 10049;
    }

    void unusableHostsAndPortsAreErrors()
    {
        QFETCH(QByteArray, host);
        QFETCH(int, port);
        QFETCH(int, error);
        TcpClientSocket socket(u"NetSock"_s, nullptr);
        QSignalSpy failed(&socket, &TcpClientSocket::failed);
        socket.Connect(host.toStdString(), port);
        QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, 20'000);
        QCOMPARE(failed[0][0].toInt(), error);
    }

    void closeSilencesEverythingThatWasOnItsWay()
    {
        LoopbackService service;
        service.answerWith("body");
        TcpClientSocket socket(u"NetSock"_s, nullptr);
        QSignalSpy connected(&socket, &TcpClientSocket::connected);
        QSignalSpy failed(&socket, &TcpClientSocket::failed);
        socket.Connect("127.0.0.1", service.port());
        socket.Close();
        socket.Connect("127.0.0.1", 0);
        socket.Close();
        socket.Connect("127.0.0.1", service.port());
        QTRY_COMPARE(connected.count(), 1);
        QCOMPARE(failed.count(), 0);
    }

    void canBeClosedInEachOfItsOwnEvents()
    {
        LoopbackService service;
        service.answerWith("body");
        for (auto event : {&TcpClientSocket::connected, &TcpClientSocket::sendProgress, &TcpClientSocket::sendComplete,
                           &TcpClientSocket::dataArrival, &TcpClientSocket::closedByPeer}) {
            TcpClientSocket socket(u"NetSock"_s, nullptr);
            bool seen = false;
            connect(&socket, &TcpClientSocket::connected, &socket, [&] { socket.SendData("GET / HTTP/1.1\r\n\r\n"); });
            connect(&socket, event, &socket, [&] {
                seen = true;
                socket.Close();
            });
            socket.Connect("127.0.0.1", service.port());
            QTRY_VERIFY(seen);
            QCOMPARE(socket.State(), SocketState::Closed);
        }
    }
};

QTEST_GUILESS_MAIN(TcpClientSocketTest)
#include "tcp_client_socket_test.moc"
