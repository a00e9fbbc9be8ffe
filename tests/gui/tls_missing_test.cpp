#include <QSignalSpy>
#include <QTest>

#include "LoopbackService.h"
#include "platform/TcpClientSocket.h"
#include "platform/TlsSocket.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// A system without a TLS library for the toolkit: its plug-ins are not found. The toolkit looks for them once in a
/// process, so this has a program of its own.
class TlsMissingTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setLibraryPaths({});
        QVERIFY(!TlsSocket::isAvailable());
    }

    void connectingOverTlsIsErrorAndPlainConnectingIsNot()
    {
        LoopbackService service;
        service.answerWith("apple");
        TcpClientSocket socket(u"PageSock"_s, nullptr);
        QSignalSpy failed(&socket, &TcpClientSocket::failed);
        QSignalSpy connected(&socket, &TcpClientSocket::connected);
        socket.ConnectTls("127.0.0.1", service.port());
        QCOMPARE(failed.count(), 0); // ConnectTls() itself never raises it
        QTRY_COMPARE(failed.count(), 1);
        QCOMPARE(failed[0][0].toInt(), 10043);
        QVERIFY(failed[0][1].toString().contains(u"No TLS library"_s));
        QCOMPARE(socket.State(), SocketState::Error);
        QCOMPARE(connected.count(), 0);
        QCOMPARE(service.openConnections(), 0);

        socket.Connect("127.0.0.1", service.port());
        QTRY_COMPARE(connected.count(), 1);
        QCOMPARE(failed.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TlsMissingTest)
#include "tls_missing_test.moc"
