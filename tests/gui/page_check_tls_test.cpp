#include <QMessageBox>
#include <QTcpServer>
#include <QTcpSocket>

#include "WindowFixture.h"
#include "tls_server.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using certificates::issue;
using certificates::Issued;
using std::chrono::hours;

namespace {

const QString kFault = u"Error occurred.\r\nError #: "_s;

} // namespace

/// The page check with addresses that begin with "https://".
class PageCheckTlsTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { start(good_); }

    void checkAsksForThePageAndEndsIdle()
    {
        secure_->answerWith("<html><h1>Green <b>apple</b></h1></html>");
        QString atConnect = u"never connected"_s;
        connect(window_->control<TcpClientSocket>("PageSock"), &TcpClientSocket::connected, this,
                [&] { atConnect = window_->text("ActivityPanel"); });
        check(u"https://127.0.0.1/a/b.html?c=https://d/"_s, u"Apple pear"_s);
        QVERIFY(!button()->isEnabled());
        QTRY_COMPARE(rows(), QStringList({u"apple|Found"_s, u"pear|Not Found"_s}));

        QCOMPARE(secure_->requests(), QList<QByteArray>{"GET /a/b.html?c=https://d/ HTTP/1.1\r\n"
                                                        "Host: 127.0.0.1\r\n"
                                                        "Connection: close\r\n"
                                                        "Accept: */*\r\n\r\n"});
        QCOMPARE(atConnect, QString()); // this socket never says "Connected"
        QCOMPARE(window_->hidden("Text6"), std::string("Green apple"));
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(window_->service.requests().isEmpty());
    }

    void panelsFollowTheExchange()
    {
        secure_->stall();
        check(u"https://localhost"_s);
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Request Completed"_s);
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Connected"_s);
        secure_->send("HTTP/1.1 200 OK\r\n\r\nred ap");
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        QVERIFY(rows().isEmpty());
        secure_->send("ple");
        secure_->finish();
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
        verifyIdle();
    }

    void badCertificatesShowTheirFault_data()
    {
        QTest::addColumn<std::string>("certificate");
        QTest::addColumn<std::string>("key");
        QTest::addColumn<QString>("box");
        const auto row = [](const char* name, const Issued& identity, const QString& box) {
            QTest::newRow(name) << identity.certificate << identity.key << box;
        };
        const QDate day = QDateTime::currentDateTimeUtc().addDays(-2).date();
        row("expired", issue({"server", names_, false, hours(-99), hours(-48)}, &authority_),
            u"12037\r\nThe server cannot be trusted: the certificate expired on "_s + day.toString(Qt::ISODate));
        row("self-signed", issue({"server", names_}),
            u"12045\r\nThe server cannot be trusted: the certificate is self-signed"_s);
        row("another name", issue({"server", {"DNS:example.org"}}, &authority_),
            u"12038\r\nThe server cannot be trusted: the certificate is not for localhost"_s);
    }

    void badCertificatesShowTheirFault()
    {
        QFETCH(std::string, certificate);
        QFETCH(std::string, key);
        QFETCH(QString, box);
        start({certificate, key});
        secure_->answerWith("apple");
        check(u"https://localhost/a.html"_s);
        verifyError(box);
        QVERIFY(secure_->requests().isEmpty());
        QTRY_COMPARE(secure_->openConnections(), 0);
    }

    void plainServersAreNoFallback()
    {
        // The server of the plain port listens at the port of TLS as well.
        window_->hosts.tlsPort = window_->service.port();
        QVERIFY(window_->load());
        window_->main().show();
        window_->chooseTab(2);
        window_->service.answerWith("apple");
        check(u"https://localhost/"_s);
        QTRY_VERIFY(window_->service.openConnections() > 0);
        window_->service.send("HTTP/1.1 400 Bad Request\r\n\r\napple");
        verifyError(u"12157\r\nThe server does not speak TLS as it should: "_s);
        QVERIFY(window_->service.requests().isEmpty());
    }

    void redirectsAreNotFollowed()
    {
        secure_->answerWithPieces({"HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1/b.html\r\n\r\napple"});
        check(u"https://localhost/a.html"_s);
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
        QCOMPARE(secure_->requests().size(), 1);
        QVERIFY(window_->service.requests().isEmpty());
    }

    void cutPagesAreNotChecked()
    {
        secure_->stall();
        check(u"https://localhost/"_s);
        QTRY_COMPARE(secure_->requests().size(), 1);
        secure_->send("HTTP/1.1 200 OK\r\n\r\napple");
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        secure_->cut();
        verifyError(u"10053\r\n"_s);
        QCOMPARE(window_->hidden("Text6"), std::string());
    }

    void pagesThatAreCompleteNeedNoTlsClose()
    {
        secure_->stall();
        check(u"https://localhost/"_s);
        QTRY_COMPARE(secure_->requests().size(), 1);
        secure_->send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\napple");
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        secure_->cut();
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void pagesBeyondTheBoundAreGivenUp()
    {
        window_->main().receiveState().longest = 2'000'000;
        secure_->answerWith(QByteArray(5'000'000, 'a') + "apple");
        check(u"https://localhost/"_s);
        verifyError(u"10055\r\n"_s);
        QCOMPARE(window_->main().receiveState().ReceiveBuffer, std::string());
    }

    void stopDuringTheHandshakeEndsIt()
    {
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        window_->hosts.tlsPort = silent.serverPort();
        QVERIFY(window_->load());
        window_->main().show();
        window_->activate();
        window_->chooseTab(2);
        check(u"https://127.0.0.1/"_s);
        QTRY_VERIFY(silent.hasPendingConnections());
        QTcpSocket* connection = silent.nextPendingConnection();
        QTRY_VERIFY(connection->bytesAvailable() > 0);
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Connecting"_s);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
        verifyIdle();
        QTRY_COMPARE(connection->state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(window_->boxes.boxes().size(), 1);
    }

    void portsStayWithTheHost()
    {
        check(u"https://127.0.0.1:8443/"_s);
        verifyError(u"11001\r\n"_s);
    }

    void throughAProxyNothingIsConnected()
    {
        window_->control<HiddenText>("ProxySwitch")->setText("On");
        check(u"https://localhost/"_s);
        QVERIFY(!button()->isEnabled());
        QCOMPARE(window_->socketState("PageSock"), 0);
    }

    void plainPagesAfterwardsArePlain()
    {
        secure_->answerWith("apple");
        check(u"https://localhost/"_s);
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
        window_->service.answerWith("pear");
        check(u"127.0.0.1/"_s);
        QTRY_COMPARE(rows(), QStringList{u"apple|Not Found"_s});
        QCOMPARE(window_->service.requests().size(), 1);
        QCOMPARE(secure_->requests().size(), 1);
    }

private:
    void start(const Issued& identity)
    {
        secure_ = std::make_unique<LoopbackService>(makeTlsServer(identity));
        window_ = std::make_unique<WindowFixture>();
        window_->hosts = {"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", window_->service.port(), secure_->port()};
        window_->trustedCertificates = authority_.certificate;
        window_->start();
        window_->chooseTab(2);
    }

    void check(const QString& address, const QString& keywords = u"apple"_s)
    {
        window_->type("Text4", address);
        window_->type("Text5", keywords);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Return);
    }

    QPushButton* button() { return window_->control<QPushButton>("Command2"); }
    QStringList rows() { return window_->rows("ListView2"); }

    void verifyIdle()
    {
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(!window_->control<QTimer>("SPSTimer")->isActive());
        QCOMPARE(window_->socketState("PageSock"), 0);
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
    }

    void verifyError(const QString& beginning)
    {
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Error"_s);
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Warning);
        QVERIFY2(window_->boxes.texts()[0].startsWith(kFault + beginning), qPrintable(window_->boxes.texts()[0]));
        verifyIdle();
        QVERIFY(rows().isEmpty());
    }

    const std::vector<std::string> names_ = {"DNS:localhost", "IP:127.0.0.1"};
    const Issued authority_ = issue({.commonName = "Authority", .authority = true});
    const Issued good_ = issue({"server", names_}, &authority_);
    std::unique_ptr<LoopbackService> secure_;
    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(PageCheckTlsTest)
#include "page_check_tls_test.moc"
