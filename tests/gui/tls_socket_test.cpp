#include <memory>

#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryFile>
#include <QTest>
#include <QTimer>

#include "LoopbackService.h"
#include "platform/TcpClientSocket.h"
#include "platform/TlsSocket.h"
#include "platform/tls_faults.h"
#include "tls_server.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using certificates::issue;
using certificates::Issued;
using std::chrono::hours;

namespace {

const QByteArray kRequest = "GET / HTTP/1.1\r\n\r\n";

/// The client's side of one exchange over TLS: sends a request when it is connected, and keeps what it receives.
struct Client
{
    explicit Client(const Issued& trusted) : socket(u"PageSock"_s, nullptr)
    {
        socket.setTrustedCertificates(trusted.certificate);
        QObject::connect(&socket, &TcpClientSocket::connected, &socket,
                         [this] { socket.SendData(kRequest.toStdString()); });
        QObject::connect(&socket, &TcpClientSocket::dataArrival, &socket, [this] { socket.GetData(received); });
    }

    TcpClientSocket socket;
    std::string received;
    QSignalSpy connected{&socket, &TcpClientSocket::connected};
    QSignalSpy complete{&socket, &TcpClientSocket::sendComplete};
    QSignalSpy closed{&socket, &TcpClientSocket::closedByPeer};
    QSignalSpy cutOff{&socket, &TcpClientSocket::cutOff};
    QSignalSpy failed{&socket, &TcpClientSocket::failed};
};

/// A server that sends fixed bytes as soon as the first of the client arrive, and keeps those.
struct RawServer
{
    explicit RawServer(const QByteArray& reply, bool closes = false)
    {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, reply, closes] {
            connection = server.nextPendingConnection();
            QObject::connect(connection, &QTcpSocket::readyRead, &server, [this, reply, closes] {
                if (received.isEmpty())
                    connection->write(reply);
                received += connection->readAll();
                if (closes)
                    connection->disconnectFromHost();
            });
        });
    }

    QTcpServer server;
    QTcpSocket* connection = nullptr;
    QByteArray received;
};

} // namespace

class TlsSocketTest final : public QObject
{
    Q_OBJECT

private:
    Issued authority_ = issue({.commonName = "Authority", .authority = true});
    Issued good_ = issue({"server", {"DNS:localhost", "IP:127.0.0.1"}}, &authority_);

private slots:
    void goesThroughTheStatesOfAnExchange()
    {
        LoopbackService service(makeTlsServer(good_));
        service.stall();
        Client client(authority_);
        client.socket.ConnectTls("127.0.0.1", service.port());
        QVERIFY(client.socket.State() != SocketState::Closed); // immediately, so that Stop can stop it
        QTRY_COMPARE(client.connected.count(), 1);
        QCOMPARE(client.socket.State(), SocketState::Connected);
        QTRY_COMPARE(service.requests(), QList<QByteArray>{kRequest});
        QTRY_COMPARE(client.complete.count(), 1);
        service.send(QByteArray("a\0b", 3));
        QTRY_COMPARE(client.received, std::string("a\0b", 3));
        QCOMPARE(client.closed.count(), 0);
        service.finish();
        QTRY_COMPARE(client.closed.count(), 1);
        QCOMPARE(client.cutOff.count(), 0);
        QCOMPARE(client.failed.count(), 0);
        QCOMPARE(client.socket.State(), SocketState::Closing);
        client.socket.Close();
        QCOMPARE(client.socket.State(), SocketState::Closed);
    }

    void announcesAllDataBeforeTheEnd_data()
    {
        QTest::addColumn<bool>("inOrder");
        QTest::newRow("with the TLS close") << true;
        QTest::newRow("without it") << false;
    }

    void announcesAllDataBeforeTheEnd()
    {
        QFETCH(bool, inOrder);
        constexpr qsizetype kBytes = 20'000'000; // many times what the socket reads ahead
        LoopbackService service(makeTlsServer(good_));
        service.stall();
        Client client(authority_);
        client.socket.ConnectTls("localhost", service.port());
        QTRY_COMPARE(service.requests().size(), 1);
        service.send(QByteArray(kBytes, 'x'));
        if (inOrder) {
            service.finish();
            QTRY_COMPARE_WITH_TIMEOUT(client.closed.count(), 1, 30'000);
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(client.received.size() >= std::size_t{kBytes} / 2, 30'000);
            QTRY_VERIFY_WITH_TIMEOUT(service.isSent(), 30'000);
            service.cut();
            QTRY_COMPARE_WITH_TIMEOUT(client.cutOff.count(), 1, 30'000);
        }
        QCOMPARE(client.received.size(), std::size_t{kBytes});
        QCOMPARE(client.closed.count() + client.cutOff.count(), 1);
        QCOMPARE(client.failed.count(), 0);
    }

    void badCertificatesAreNamedAndNothingIsSent_data()
    {
        QTest::addColumn<std::string>("certificate");
        QTest::addColumn<std::string>("key");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("fault");
        const auto row = [](const char* name, const Issued& identity, int number, const QString& fault) {
            QTest::newRow(name) << identity.certificate << identity.key << number << fault;
        };
        const std::vector<std::string> names = {"DNS:localhost", "IP:127.0.0.1"};
        const auto day = [](hours fromNow) {
            return QDateTime::currentDateTimeUtc().addSecs(std::chrono::seconds(fromNow).count());
        };
        const Issued other = issue({.commonName = "Other authority", .authority = true});
        const Issued imitated = issue({.commonName = "Authority", .authority = true});
        const Issued old = issue({"old authority", {}, true, hours(-99), hours(-1)}, &authority_);

        row("expired", issue({"server", names, false, hours(-99), hours(-48)}, &authority_), 12037,
            u"the certificate expired on "_s + day(hours(-48)).date().toString(Qt::ISODate));
        row("not yet valid", issue({"server", names, false, hours(48), hours(99)}, &authority_), 12037,
            u"the certificate is not valid before "_s + day(hours(48)).date().toString(Qt::ISODate));
        row("self-signed", issue({"server", names}), 12045, u"the certificate is self-signed"_s);
        row("unknown issuer", issue({"server", names}, &other), 12045,
            u"the certificate's issuer is unknown to this system"_s);
        row("issuer of a trusted name with another key", issue({"server", names}, &imitated), 12169, {});
        row("issued by what may not issue", issue({"server", names}, &good_), 12045, {});
        row("issued by what is out of date and not sent", issue({"server", names}, &old), 12045, {});
        row("another name", issue({"server", {"DNS:example.org", "IP:127.0.0.2"}}, &authority_), 12038,
            u"the certificate is not for 127.0.0.1"_s);
        row("the name as a common name only", issue({"127.0.0.1", {"DNS:example.org"}}, &authority_), 12038,
            u"the certificate is not for 127.0.0.1"_s);
        row("no alternative name at all", issue({"127.0.0.1", {}}, &authority_), 12038, {});
        row("the address as a name", issue({"server", {"DNS:127.0.0.1"}}, &authority_), 12038, {});
    }

    void badCertificatesAreNamedAndNothingIsSent()
    {
        QFETCH(std::string, certificate);
        QFETCH(std::string, key);
        QFETCH(int, number);
        QFETCH(QString, fault);
        LoopbackService service(makeTlsServer({certificate, key}));
        service.answerWith("apple");
        Client client(authority_);
        client.socket.ConnectTls("127.0.0.1", service.port());
        QTRY_COMPARE(client.failed.count(), 1);
        const QString description = client.failed[0][1].toString();
        QVERIFY2(client.failed[0][0].toInt() == number, qPrintable(description));
        QVERIFY2(description.startsWith(u"The server cannot be trusted: "_s), qPrintable(description));
        QVERIFY2(description.contains(fault), qPrintable(description));
        QCOMPARE(client.socket.State(), SocketState::Error);
        QCOMPARE(client.connected.count(), 0);
        QTRY_COMPARE(service.openConnections(), 0);
        QVERIFY(service.requests().isEmpty());
    }

    void severalFaultsAreNamedTogether()
    {
        const Issued identity = issue({"server", {"DNS:example.org"}, false, hours(-99), hours(-48)});
        LoopbackService service(makeTlsServer(identity));
        Client client(authority_);
        client.socket.ConnectTls("localhost", service.port());
        QTRY_COMPARE(client.failed.count(), 1);
        const QString description = client.failed[0][1].toString();
        for (const QString& fault : {u"expired on"_s, u"is self-signed"_s, u"is not for localhost"_s})
            QVERIFY2(description.count(fault) == 1, qPrintable(description));
    }

    void withoutAdditionalCertificatesTheSystemsCount()
    {
        LoopbackService service(makeTlsServer(good_));
        Client client({});
        client.socket.ConnectTls("localhost", service.port());
        QTRY_COMPARE(client.failed.count(), 1);
        QCOMPARE(client.failed[0][0].toInt(), 12045);
    }

    void namesThatTheCertificateHas_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::newRow("name") << QByteArray("localhost");
        QTest::newRow("capitals") << QByteArray("LocalHost");
        QTest::newRow("address") << QByteArray("127.0.0.1");
    }

    void namesThatTheCertificateHas()
    {
        QFETCH(QByteArray, host);
        LoopbackService service(makeTlsServer(good_));
        service.answerWith("apple");
        Client client(authority_);
        client.socket.ConnectTls(host.toStdString(), service.port());
        QTRY_COMPARE(client.closed.count() + client.failed.count(), 1);
        QVERIFY2(client.failed.isEmpty(), qPrintable(client.failed.value(0).value(1).toString()));
        QVERIFY(client.received.ends_with("apple"));
    }

    void theHandshakeNamesTheHostAndHasNoRequest_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<QByteArray>("named");
        QTest::newRow("name") << QByteArray("localhost") << QByteArray("localhost");
        QTest::newRow("an address is not named") << QByteArray("127.0.0.1") << QByteArray();
    }

    void theHandshakeNamesTheHostAndHasNoRequest()
    {
        QFETCH(QByteArray, host);
        QFETCH(QByteArray, named);
        RawServer server({});
        Client client(authority_);
        client.socket.ConnectTls(host.toStdString(), server.server.serverPort());
        QTRY_VERIFY(server.received.size() > 100);
        QVERIFY(server.received.startsWith("\x16\x03"));
        // The extension (RFC 6066 section 3): number 0, its length, the list's, the kind 0, the name's, the name.
        const auto twoBytes = [](qsizetype number) {
            return QByteArray(1, static_cast<char>(number >> 8)) + static_cast<char>(number & 0xFF);
        };
        const QByteArray extension = twoBytes(0) + twoBytes(named.size() + 5) + twoBytes(named.size() + 3) + '\0' +
                                     twoBytes(named.size()) + named;
        QCOMPARE(server.received.contains(extension), !named.isEmpty());
        QVERIFY(!server.received.contains("GET"));
        QCOMPARE(client.socket.State(), SocketState::Connecting);
    }

    void serversWithoutTlsAreErrors_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("number");
        QTest::newRow("plain HTTP") << QByteArray("HTTP/1.1 400 Bad Request\r\n\r\nThe plain HTTP request") << 12157;
        QTest::newRow("nothing") << QByteArray() << 12157;
        QTest::newRow("NULs") << QByteArray(100'000, '\0') << 12157;
        QTest::newRow("half a record") << QByteArray("\x16\x03\x03\x40\x00\x02", 6) << 12157;
        QTest::newRow("older versions only") << QByteArray("\x15\x03\x01\x00\x02\x02\x46", 7) << 12157;
        QTest::newRow("another host") << QByteArray("\x15\x03\x03\x00\x02\x02\x70", 7) << 12038;
        QTest::newRow("a refusal") << QByteArray("\x15\x03\x03\x00\x02\x02\x28", 7) << 12157;
        QTest::newRow("an announced end") << QByteArray("\x15\x03\x03\x00\x02\x01\x00", 7) << 12157;
    }

    void serversWithoutTlsAreErrors()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, number);
        RawServer server(reply, true);
        Client client(authority_);
        client.socket.ConnectTls("127.0.0.1", server.server.serverPort());
        QTRY_COMPARE(client.failed.count(), 1);
        const QString description = client.failed[0][1].toString();
        QVERIFY2(client.failed[0][0].toInt() == number, qPrintable(description));
        QVERIFY2(!description.contains(u"error:"_s), qPrintable(description));
        QCOMPARE(client.connected.count() + client.closed.count() + client.cutOff.count(), 0);
        QVERIFY(!server.received.contains("GET"));
    }

    void aResetDuringTheHandshakeIsError10054()
    {
        RawServer server({});
        Client client(authority_);
        client.socket.ConnectTls("127.0.0.1", server.server.serverPort());
        QTRY_VERIFY(!server.received.isEmpty());
        LoopbackService::resetOne(*server.connection);
        QTRY_COMPARE(client.failed.count(), 1);
        QCOMPARE(client.failed[0][0].toInt(), 10054);
    }

    void aResetAfterItIsError10054()
    {
        LoopbackService service(makeTlsServer(good_));
        service.stall();
        Client client(authority_);
        client.socket.ConnectTls("localhost", service.port());
        QTRY_COMPARE(service.requests().size(), 1);
        service.reset();
        QTRY_COMPARE(client.failed.count(), 1);
        QCOMPARE(client.failed[0][0].toInt(), 10054);
        QCOMPARE(client.closed.count() + client.cutOff.count(), 0);
    }

    void aSilentServerIsError10060()
    {
        RawServer server({});
        Client client(authority_);
        client.socket.ConnectTls("127.0.0.1", server.server.serverPort());
        QTRY_VERIFY(!server.received.isEmpty());
        auto* limit = client.socket.findChild<TlsSocket*>()->findChild<QTimer*>({}, Qt::FindDirectChildrenOnly);
        QVERIFY(limit->isActive());
        QCOMPARE(limit->interval(), 30'000);
        limit->start(0);
        QTRY_COMPARE(client.failed.count(), 1);
        QCOMPARE(client.failed[0][0].toInt(), 10060);
        QTRY_COMPARE(server.connection->state(), QAbstractSocket::UnconnectedState);
    }

    void theLimitOfTheHandshakeEndsWithIt()
    {
        LoopbackService service(makeTlsServer(good_));
        service.stall();
        Client client(authority_);
        client.socket.ConnectTls("localhost", service.port());
        QTRY_COMPARE(client.connected.count(), 1);
        QVERIFY(!client.socket.findChild<TlsSocket*>()->findChild<QTimer*>({}, Qt::FindDirectChildrenOnly)->isActive());
    }

    void otherServersRefusals_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("number");
        QTest::newRow("demands a certificate, TLS 1.3") << QStringList{u"-Verify"_s, u"1"_s, u"-tls1_3"_s} << 12044;
        QTest::newRow("demands a certificate, TLS 1.2") << QStringList{u"-Verify"_s, u"1"_s, u"-tls1_2"_s} << 12157;
        QTest::newRow("TLS 1.1") << QStringList{u"-tls1_1"_s, u"-cipher"_s, u"DEFAULT:@SECLEVEL=0"_s} << 12157;
    }

    // A server of another library than the client's, with options that the toolkit's server lacks.
    void otherServersRefusals()
    {
        QFETCH(QStringList, options);
        QFETCH(int, number);
        QTemporaryFile identity;
        QVERIFY(identity.open());
        identity.write(QByteArray::fromStdString(good_.certificate + good_.key));
        identity.close();
        QProcess server;
        server.start(u"openssl"_s, QStringList{u"s_server"_s, u"-accept"_s, u"127.0.0.1:0"_s, u"-cert"_s,
                                               identity.fileName(), u"-key"_s, identity.fileName()} +
                                       options);
        if (!server.waitForStarted())
            QSKIP("the openssl command is not installed");
        QByteArray output;
        const QRegularExpression accepting(u"ACCEPT 127.0.0.1:(\\d+)"_s);
        QTRY_VERIFY((output += server.readAllStandardOutput()).contains("ACCEPT 127.0.0.1:") && output.endsWith('\n'));
        const int port = accepting.match(QString::fromLatin1(output)).captured(1).toInt();

        Client client(authority_);
        client.socket.ConnectTls("localhost", port);
        QTRY_COMPARE(client.failed.count(), 1);
        const QString description = client.failed[0][1].toString();
        QVERIFY2(client.failed[0][0].toInt() == number, qPrintable(description));
        QVERIFY2(description.startsWith(u"The server "_s), qPrintable(description));
        QVERIFY(client.received.empty());
        QCOMPARE(client.closed.count() + client.cutOff.count(), 0);
        server.kill();
        QVERIFY(server.waitForFinished());
    }

    void closeDuringTheHandshakeSilencesEverything()
    {
        RawServer server({});
        Client client(authority_);
        client.socket.ConnectTls("127.0.0.1", server.server.serverPort());
        QTRY_VERIFY(!server.received.isEmpty());
        client.socket.Close();
        QCOMPARE(client.socket.State(), SocketState::Closed);
        QTRY_COMPARE(server.connection->state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(client.failed.count() + client.connected.count() + client.closed.count(), 0);
    }

    void unusableHostsAndPortsAreErrors_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<int>("port");
        QTest::addColumn<int>("error");
        QTest::newRow("no host") << QByteArray() << 443 << 11001;
        QTest::newRow("a port in the name") << QByteArray("127.0.0.1:8443") << 443 << 11001;
        QTest::newRow("port 0") << QByteArray("127.0.0.1") << 0 << 10049;
        QTest::newRow("port 65536") << QByteArray("127.0.0.1") << 65'536 << 10049;
    }

    void unusableHostsAndPortsAreErrors()
    {
        QFETCH(QByteArray, host);
        QFETCH(int, port);
        QFETCH(int, error);
        Client client(authority_);
        client.socket.ConnectTls(host.toStdString(), port);
        QCOMPARE(client.failed.count(), 0); // ConnectTls() itself never raises it
        QTRY_COMPARE(client.failed.count(), 1);
        QCOMPARE(client.failed[0][0].toInt(), error);
    }

    void aPlainConnectionCanFollow()
    {
        LoopbackService secure(makeTlsServer(good_));
        secure.stall();
        LoopbackService plain;
        plain.answerWith("pear");
        Client client(authority_);
        client.socket.ConnectTls("localhost", secure.port());
        QTRY_COMPARE(secure.requests().size(), 1);
        client.socket.Connect("127.0.0.1", plain.port());
        QTRY_COMPARE(client.closed.count(), 1);
        QVERIFY(client.received.ends_with("pear"));
        QCOMPARE(plain.requests(), QList<QByteArray>{kRequest});
        QTRY_COMPARE(secure.openConnections(), 0);
    }

    void namesAreVerifiedInTheFormThatCertificatesHave_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"www.Example.org"_s << u"www.example.org"_s;
        QTest::newRow("root") << u"example.org."_s << u"example.org"_s;
        QTest::newRow("international") << QString::fromUtf8("Bücher.example") << u"xn--bcher-kva.example"_s;
        QTest::newRow("international, root") << QString::fromUtf8("bücher.example.") << u"xn--bcher-kva.example"_s;
        QTest::newRow("address") << u"127.0.0.1"_s << u"127.0.0.1"_s;
        QTest::newRow("address of 6") << u"0:0:0:0:0:0:0:1"_s << u"::1"_s;
        QTest::newRow("address with a scope") << u"fe80::1%eth0"_s << u"fe80::1"_s;
    }

    void namesAreVerifiedInTheFormThatCertificatesHave()
    {
        QFETCH(QString, host);
        QFETCH(QString, name);
        QCOMPARE(nameToVerify(host), name);
    }

    void certificatesNameWholeLabels_data()
    {
        QTest::addColumn<QString>("alternatives");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("named");
        QTest::newRow("same") << u"DNS:a.example"_s << u"a.example"_s << true;
        QTest::newRow("capitals") << u"DNS:A.Example"_s << u"a.example"_s << true;
        QTest::newRow("second of two") << u"DNS:b.example,DNS:a.example"_s << u"a.example"_s << true;
        QTest::newRow("longer") << u"DNS:a.example"_s << u"b.a.example"_s << false;
        QTest::newRow("wildcard") << u"DNS:*.example.org"_s << u"a.example.org"_s << true;
        QTest::newRow("wildcard of an international name")
            << u"DNS:*.xn--bcher-kva.org"_s << u"a.xn--bcher-kva.org"_s << true;
        QTest::newRow("wildcard, two labels") << u"DNS:*.example.org"_s << u"b.a.example.org"_s << false;
        QTest::newRow("wildcard, no label") << u"DNS:*.example.org"_s << u"example.org"_s << false;
        QTest::newRow("part of a label") << u"DNS:a*.example.org"_s << u"ab.example.org"_s << false;
        QTest::newRow("everything") << u"DNS:*"_s << u"localhost"_s << false;
        QTest::newRow("address") << u"IP:127.0.0.1"_s << u"127.0.0.1"_s << true;
        QTest::newRow("address of 6") << u"IP:::1"_s << u"::1"_s << true;
        QTest::newRow("address as a name") << u"DNS:127.0.0.1"_s << u"127.0.0.1"_s << false;
        QTest::newRow("wildcard of addresses") << u"DNS:*.0.0.1"_s << u"127.0.0.1"_s << false;
        QTest::newRow("mail") << u"email:a@a.example"_s << u"a.example"_s << false;
    }

    void certificatesNameWholeLabels()
    {
        QFETCH(QString, alternatives);
        QFETCH(QString, name);
        QFETCH(bool, named);
        const Issued identity = issue({"a.example", {alternatives.toStdString()}});
        const QSslCertificate certificate(QByteArray::fromStdString(identity.certificate));
        QVERIFY(!certificate.isNull());
        QCOMPARE(certificateNames(certificate, name), named);
    }
};

QTEST_GUILESS_MAIN(TlsSocketTest)
#include "tls_socket_test.moc"
