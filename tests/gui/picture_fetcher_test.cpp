#include <memory>
#include <optional>

#include <QtTest>

#include "picture_server.h"
#include "platform/PictureFetcher.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::Picture;
using quarrynet::PictureFetcher;

class PictureFetcherTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void pictureComesWithItsType();
    void typeLosesItsParameters();
    void pictureWithoutTypeIsTaken();
    void refusalsGiveNothing_data();
    void refusalsGiveNothing();
    void otherSchemesAreNotAsked_data();
    void otherSchemesAreNotAsked();
    void hugePictureIsGivenUp();
    void redirectIsFollowedWithinTheNet();
    void redirectInARingEnds();
    void proxyGetsTheWholeAddress();
    void directAgainAfterTheProxy();
    void unreachableServerGivesNothing();
    void cookiesAreNotKept();
    void vanishedContextIsNotCalled();

private:
    Picture fetch(const QString& address);

    std::unique_ptr<PictureServer> server_;
    std::unique_ptr<PictureFetcher> fetcher_;
};

void PictureFetcherTest::init()
{
    fetcher_ = std::make_unique<PictureFetcher>();
    server_ = std::make_unique<PictureServer>();
}

Picture PictureFetcherTest::fetch(const QString& address)
{
    std::optional<Picture> result;
    fetcher_->fetch(QUrl(address), this, [&result](const Picture& picture) { result = picture; });
    const bool notAtOnce = !result.has_value();
    if (!QTest::qWaitFor([&result] { return result.has_value(); }, 20000) || !notAtOnce)
        return {"no answer", {}};
    return *result;
}

void PictureFetcherTest::pictureComesWithItsType()
{
    server_->answerWithPicture("/a.png?x=1", Qt::red);
    const Picture picture = fetch(server_->address(u"/a.png?x=1"_s));
    QCOMPARE(picture.bytes, PictureServer::png(Qt::red));
    QCOMPARE(picture.type, QByteArray("image/png"));
}

void PictureFetcherTest::typeLosesItsParameters()
{
    server_->answer("/a", "HTTP/1.0 200 OK\r\nContent-Type: Image/GIF; charset=x\r\n\r\nGIF89a\0");
    QCOMPARE(fetch(server_->address(u"/a"_s)).type, QByteArray("image/gif"));
}

void PictureFetcherTest::pictureWithoutTypeIsTaken()
{
    server_->answer("/a", "HTTP/1.0 200 OK\r\n\r\nbytes");
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, QByteArray("bytes"));
}

void PictureFetcherTest::refusalsGiveNothing_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("missing") << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Type: image/png\r\n\r\nx");
    QTest::newRow("password") << QByteArray("HTTP/1.1 401 x\r\nWWW-Authenticate: Basic realm=\"x\"\r\n\r\nx");
    QTest::newRow("proxy password") << QByteArray("HTTP/1.1 407 x\r\nProxy-Authenticate: Basic realm=\"x\"\r\n\r\nx");
    QTest::newRow("page") << QByteArray("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n<html>");
    QTest::newRow("script") << QByteArray("HTTP/1.1 200 OK\r\nContent-Type: text/javascript\r\n\r\nx");
    QTest::newRow("cut") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 10\r\nContent-Type: image/png\r\n\r\nx");
    QTest::newRow("closed") << QByteArray();
    QTest::newRow("garbage") << QByteArray("\0\xff\r\n\r\n", 6);
    QTest::newRow("to a file") << QByteArray("HTTP/1.1 302 x\r\nLocation: file:///etc/hostname\r\n\r\n");
    QTest::newRow("to FTP") << QByteArray("HTTP/1.1 302 x\r\nLocation: ftp://127.0.0.1/x\r\n\r\n");
    QTest::newRow("to a script") << QByteArray("HTTP/1.1 302 x\r\nLocation: javascript:x\r\n\r\n");
}

void PictureFetcherTest::refusalsGiveNothing()
{
    QFETCH(QByteArray, answer);
    server_->answer("/a", answer);
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, QByteArray());
}

void PictureFetcherTest::otherSchemesAreNotAsked_data()
{
    QTest::addColumn<QString>("address");
    for (const char* address : {"", "file:///etc/hostname", "/etc/hostname", "data:image/png,x", "qrc:/icons/stop.svg",
                                "ftp://127.0.0.1/x", "http:///x", "http://", "//127.0.0.1/x"})
        QTest::newRow(address) << QString::fromLatin1(address);
}

void PictureFetcherTest::otherSchemesAreNotAsked()
{
    QFETCH(QString, address);
    QCOMPARE(fetch(address).bytes, QByteArray());
}

void PictureFetcherTest::hugePictureIsGivenUp()
{
    server_->answer("/a", "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n" + QByteArray(17 << 20, 'x'));
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes.size(), 0);
    server_->answer("/b", "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n" + QByteArray(16 << 20, 'x'));
    QCOMPARE(fetch(server_->address(u"/b"_s)).bytes.size(), 16 << 20);
}

void PictureFetcherTest::redirectIsFollowedWithinTheNet()
{
    server_->answer("/a", "HTTP/1.1 302 x\r\nLocation: /b\r\n\r\n");
    server_->answerWithPicture("/b", Qt::green);
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, PictureServer::png(Qt::green));
}

void PictureFetcherTest::redirectInARingEnds()
{
    server_->answer("/a", "HTTP/1.1 302 x\r\nLocation: /a\r\n\r\n");
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, QByteArray());
    QVERIFY(server_->requests.size() < 10);
}

void PictureFetcherTest::proxyGetsTheWholeAddress()
{
    server_->answerWithPicture("http://127.80.0.2/images?q=1", Qt::blue);
    fetcher_->setProxy(u"127.0.0.1"_s, server_->port());
    QCOMPARE(fetch(u"http://127.80.0.2/images?q=1"_s).bytes, PictureServer::png(Qt::blue));
    QCOMPARE(server_->targets(), QList<QByteArray>{"http://127.80.0.2/images?q=1"});
}

void PictureFetcherTest::directAgainAfterTheProxy()
{
    PictureServer proxy;
    server_->answerWithPicture("/a", Qt::red);
    fetcher_->setProxy(u"127.0.0.1"_s, proxy.port());
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, QByteArray());
    QCOMPARE(proxy.requests.size(), 1);
    fetcher_->setProxy(QString(), 0);
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, PictureServer::png(Qt::red));
    QCOMPARE(proxy.requests.size(), 1);
}

void PictureFetcherTest::unreachableServerGivesNothing()
{
    const QString address = server_->address(u"/a"_s);
    server_.reset();
    QCOMPARE(fetch(address).bytes, QByteArray());
}

void PictureFetcherTest::cookiesAreNotKept()
{
    server_->answerWithPicture("/a", Qt::red, "Set-Cookie: id=1\r\n");
    fetch(server_->address(u"/a"_s));
    fetch(server_->address(u"/a"_s));
    QCOMPARE(server_->requests.size(), 2);
    QVERIFY(!server_->requests.last().toLower().contains("cookie"));
}

void PictureFetcherTest::vanishedContextIsNotCalled()
{
    server_->answerWithPicture("/a", Qt::red);
    auto context = std::make_unique<QObject>();
    bool called = false;
    fetcher_->fetch(QUrl(server_->address(u"/a"_s)), context.get(), [&called](const Picture&) { called = true; });
    fetcher_->fetch(QUrl(u"file:///x"_s), context.get(), [&called](const Picture&) { called = true; });
    context.reset();
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, PictureServer::png(Qt::red)); // asked later, there later
    QVERIFY(!called);
}

QTEST_GUILESS_MAIN(PictureFetcherTest)
#include "picture_fetcher_test.moc"
