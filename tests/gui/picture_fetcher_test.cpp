#include <memory>
#include <optional>
#include <utility>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>
#include <QtTest>

#include "PictureServer.h"
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
    void contentTellsTheType();
    void refusalsGiveNothing_data();
    void refusalsGiveNothing();
    void otherSchemesAreNotAsked_data();
    void otherSchemesAreNotAsked();
    void pictureOfTooManyBytesIsGivenUp();
    void pictureOfTooManyPixelsIsGivenUp();
    void packedPictureIsNotUnpacked();
    void headWithoutAnEndIsGivenUp();
    void longAddressIsNotAsked();
    void fewAreFetchedAtOnce();
    void serversLearnNothingOfThisSystem();
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
        return {"no answer", {}, {}};
    return *result;
}

void PictureFetcherTest::pictureComesWithItsType()
{
    server_->answerWithPicture("/a.png?x=1", Qt::red);
    const Picture picture = fetch(server_->address(u"/a.png?x=1"_s));
    QCOMPARE(picture.bytes, PictureServer::png(Qt::red));
    QCOMPARE(picture.type, QByteArray("image/png"));
}

void PictureFetcherTest::contentTellsTheType()
{
    for (const char* header : {"Content-Type: Image/GIF; charset=x\r\n", "Content-Type: text/html\r\n", ""}) {
        server_->answer("/a", "HTTP/1.0 200 OK\r\n" + QByteArray(header) + "\r\n" + PictureServer::png(Qt::red));
        const Picture picture = fetch(server_->address(u"/a"_s));
        QCOMPARE(picture.type, QByteArray("image/png"));
        QCOMPARE(picture.size, QSize(90, 60));
    }
}

void PictureFetcherTest::refusalsGiveNothing_data()
{
    QTest::addColumn<QByteArray>("answer");
    const QByteArray picture = PictureServer::png(Qt::red);
    const QByteArray drawing = "<svg xmlns=\"http://www.w3.org/2000/svg\"><image href=\"file:///dev/zero\"/></svg>";
    QTest::newRow("missing") << "HTTP/1.1 404 Not Found\r\nContent-Type: image/png\r\n\r\n" + picture;
    QTest::newRow("password") << "HTTP/1.1 401 x\r\nWWW-Authenticate: Basic realm=\"x\"\r\n\r\n" + picture;
    QTest::newRow("proxy password") << "HTTP/1.1 407 x\r\nProxy-Authenticate: Basic realm=\"x\"\r\n\r\n" + picture;
    QTest::newRow("drawing") << "HTTP/1.1 200 OK\r\nContent-Type: image/svg+xml\r\n\r\n" + drawing;
    QTest::newRow("drawing with a name") << "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n" + drawing;
    QTest::newRow("other format") << QByteArray("HTTP/1.1 200 OK\r\nContent-Type: image/bmp\r\n\r\nBM\0\0", 47);
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

void PictureFetcherTest::pictureOfTooManyBytesIsGivenUp()
{
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n";
    const QByteArray full = PictureServer::png(Qt::red).leftJustified(PictureFetcher::kMaxBytes, 'x');
    server_->answer("/a", head + full + 'x');
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes.size(), 0);
    server_->answer("/b", head + full);
    QCOMPARE(fetch(server_->address(u"/b"_s)).bytes.size(), PictureFetcher::kMaxBytes);
}

void PictureFetcherTest::pictureOfTooManyPixelsIsGivenUp()
{
    const auto png = [](quint32 width, quint32 height) {
        QByteArray bytes = PictureServer::png(Qt::red);
        qToBigEndian(width, bytes.data() + 16);
        qToBigEndian(height, bytes.data() + 20);
        return "HTTP/1.1 200 OK\r\n\r\n" + bytes;
    };
    server_->answer("/a", png(PictureFetcher::kMaxPixels / 1024, 1024));
    QVERIFY(!fetch(server_->address(u"/a"_s)).bytes.isEmpty());
    server_->answer("/b", png(PictureFetcher::kMaxPixels / 1024, 1025));
    QVERIFY(fetch(server_->address(u"/b"_s)).bytes.isEmpty());
    server_->answer("/c", png(0xFFFFFFFF, 0xFFFFFFFF));
    QVERIFY(fetch(server_->address(u"/c"_s)).bytes.isEmpty());
}

void PictureFetcherTest::packedPictureIsNotUnpacked()
{
    QByteArray packed = qCompress(PictureServer::png(Qt::red)).mid(4);
    server_->answer("/a", "HTTP/1.1 200 OK\r\nContent-Encoding: deflate\r\n\r\n" + packed);
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, QByteArray());
}

void PictureFetcherTest::headWithoutAnEndIsGivenUp()
{
#ifdef Q_OS_WIN
    constexpr int kLength = 10'000; // the toolkit reads a head byte by byte, which takes Wine 80 us each
#else
    constexpr int kLength = PictureFetcher::kMaxBytes;
#endif
    server_->answer("/a", "HTTP/1.1 200 OK\r\nX: " + QByteArray(kLength, 'x'));
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, QByteArray());
}

void PictureFetcherTest::longAddressIsNotAsked()
{
    const QString start = server_->address(u"/"_s);
    const auto ofLength = [&start](qsizetype length) { return start.leftJustified(length, u'x'); };
    const QByteArray longest = ofLength(PictureFetcher::kMaxAddress).mid(start.size() - 1).toLatin1();
    server_->answerWithPicture(longest, Qt::red);
    QVERIFY(!fetch(ofLength(PictureFetcher::kMaxAddress)).bytes.isEmpty());
    QVERIFY(fetch(ofLength(PictureFetcher::kMaxAddress + 1)).bytes.isEmpty());
    QCOMPARE(server_->requests.size(), 1);
}

// A server that never responds; it can only break its connections.
class SilentServer : public QObject
{
public:
    SilentServer()
    {
        connect(&server_, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* connection = server_.nextPendingConnection())
                connections.append(connection);
        });
        // All of 127.0.0.0/8: the pictures have a host each, and none may be refused.
        server_.listen(QHostAddress::AnyIPv4);
    }

    QString address() const { return u"http://127.0.0.1:%1/"_s.arg(server_.serverPort()); }
    void breakAll()
    {
        for (QTcpSocket* connection : std::exchange(connections, {}))
            connection->abort();
    }

    QList<QTcpSocket*> connections;

private:
    QTcpServer server_;
};

void PictureFetcherTest::fewAreFetchedAtOnce()
{
    // Each picture has its own host, because the toolkit's own limit is per host.
    SilentServer silent;
    auto context = std::make_unique<QObject>();
    int answered = 0;
    const int room = PictureFetcher::kAtOnce + PictureFetcher::kMaxWaiting;
    for (int i = 0; i < room + 5; ++i)
        fetcher_->fetch(QUrl(silent.address().replace(u"127.0.0.1"_s, u"127.0.0.%1"_s.arg(i + 1))), context.get(),
                        [&answered](const Picture& picture) {
                            QVERIFY(picture.bytes.isEmpty());
                            ++answered;
                        });
    QTRY_COMPARE(answered, 5); // the queue had no room for the last ones
    server_->answerWithPicture("/a", Qt::red);
    // Deleting the requesting object cancels its fetches, so the next one starts.
    context.reset();
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, PictureServer::png(Qt::red));
    QCOMPARE(answered, 5);
    QVERIFY(silent.connections.size() <= PictureFetcher::kAtOnce);
}

void PictureFetcherTest::serversLearnNothingOfThisSystem()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Icelandic));
    fetch(server_->address(u"/a"_s));
    QLocale::setDefault(before);
    const QList<QByteArray> lines = server_->requests.value(0).toLower().split('\n');
    QVERIFY(lines.contains("user-agent: mozilla/4.0 (compatible; msie 5.00; windows 98)\r"));
    QVERIFY(lines.contains("accept-language: *\r"));
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
    QCOMPARE(fetch(server_->address(u"/a"_s)).bytes, PictureServer::png(Qt::red)); // arrives after the others
    QVERIFY(!called);
}

QTEST_GUILESS_MAIN(PictureFetcherTest)
#include "picture_fetcher_test.moc"
