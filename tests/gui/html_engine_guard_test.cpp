#include <csignal>

#include <QTcpServer>
#include <QTextBrowser>
#include <QUdpSocket>
#include <QtTest>

#include "EngineFixture.h"
#include "processes.h"

using namespace Qt::Literals::StringLiterals;

/// Maximum number of page loads for a page that is shown, including frames, reloads and pages loaded in its place.
constexpr qsizetype kMostLoads = 8;
/// Maximum number of retries for a page whose loading was aborted.
constexpr qsizetype kMostRetries = 3;

/// Shows what a hostile page cannot do.
class HtmlEngineGuardTest final : public EngineFixture
{
    Q_OBJECT

private slots:
    void processesAreInTheirSandbox();
    void environmentIsLeftAsItWas();
    void scriptsDoNotRun();
    void drawingsAreNotShown();
    void pageCannotLeaveByItself_data();
    void pageCannotLeaveByItself();
    void pageLoadsItselfAgainAFewTimes_data();
    void pageLoadsItselfAgainAFewTimes();
    void localFilesAreClosed();
    void netIsClosedButForPictures();
    void picturesBeyondTheirNumberAreLeftOut();
    void nothingIsStored();
    void passwordsAreNotAskedFor();
    void downloadsAreNotTaken();
    void viewThatHangsIsReplaced();
    void viewThatGrowsIsReplaced();
    void pageThatFloodsIsReplaced();
    void engineThatEndsIsReplaced();
};

void HtmlEngineGuardTest::processesAreInTheirSandbox()
{
    open("<title>shown</title>");
    QVERIFY(titleBecomes(u"shown"_s));
    QVERIFY(!processes::descendants().isEmpty());
    for (const qint64 process : processes::descendants()) {
        const QByteArray command = processes::processFile(process, "cmdline").replace('\0', ' ');
        QVERIFY2(!command.contains("--no-sandbox"), command.constData());
    }
    QVERIFY(processes::descendants().contains(drawingProcess()));
    QCOMPARE(processes::statusField(drawingProcess(), "Seccomp"), QByteArray("2"));
    QCOMPARE(processes::statusField(drawingProcess(), "NoNewPrivs"), QByteArray("1"));
}

void HtmlEngineGuardTest::environmentIsLeftAsItWas()
{
    for (const auto& [name, value] : kHostileEnvironment) {
        QVERIFY(qEnvironmentVariableIsSet(name));
        QCOMPARE(qgetenv(name), QByteArray(value));
    }
}

// This includes the script of the program's own pages; the view itself does what that script would do.
void HtmlEngineGuardTest::scriptsDoNotRun()
{
    server_->answerWithPicture("/last", Qt::red);
    const QByteArray act = "document.title += ' ran'; new Image().src = '" + address("/ran") + "';";
    open("<title>still</title><script>" + act + "</script><body onload=\"" + act + "\"><img src=x onerror=\"" + act +
         "\"><svg onload=\"" + act + "\"><script>" + act + "</script></svg><iframe src=\"javascript:" + act +
         "\"></iframe><iframe srcdoc=\"<script>parent." + act + "</script>\"></iframe>" +
         "<meta http-equiv=refresh content=\"0;url=javascript:" + act + "\"><details open ontoggle=\"" + act +
         "\">x</details><script>while (1);</script><img src=\"" + address("/last") + "\">");
    QVERIFY(titleBecomes(u"still"_s));
    QTRY_COMPARE_WITH_TIMEOUT(server_->requests.size(), 1, 30000);
    open("<title>next</title>");
    QVERIFY(titleBecomes(u"next"_s));
    QCOMPARE(server_->targets(), QList<QByteArray>{"/last"});
}

// SVG is not shown, whatever content type the server declares.
void HtmlEngineGuardTest::drawingsAreNotShown()
{
    const QByteArray drawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"90\" height=\"60\">"
                               "<rect width=\"90\" height=\"60\" fill=\"#ff0000\"/></svg>";
    server_->answer("/a", "HTTP/1.1 200 OK\r\nContent-Type: image/svg+xml\r\n\r\n" + drawing);
    server_->answerWithPicture("/b", Qt::cyan);
    open("<img src=\"" + address("/a") + "\"><img src=\"" + address("/b") + "\">");
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::cyan), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(server_->requests.size(), 2, 30000);
    QVERIFY(!showsColor(Qt::red));
}

void HtmlEngineGuardTest::pageCannotLeaveByItself_data()
{
    QTest::addColumn<QByteArray>("place");
    QTest::newRow("net") << QByteArray("/page");
    QTest::newRow("file") << QByteArray("file:///etc/hostname");
    QTest::newRow("data") << QByteArray("data:text/html,x");
    QTest::newRow("engine's own") << QByteArray("chrome://version");
    QTest::newRow("source") << QByteArray("view-source:file:///etc/hostname");
    QTest::newRow("itself") << QByteArray("images.html");
}

void HtmlEngineGuardTest::pageCannotLeaveByItself()
{
    QFETCH(QByteArray, place);
    if (place.startsWith('/'))
        place = address(place.constData());
    server_->answerWithPicture("/a", Qt::red);
    server_->answer("/page", "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n<title>elsewhere</title>");
    open("<title>here</title><meta http-equiv=refresh content=\"0;url=" + place + "\"><img src=\"" + address("/a") +
         "\">");
    QVERIFY(titleBecomes(u"here"_s));
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::red), 30000);
    QCOMPARE(engine()->property("url").toUrl(), QUrl::fromLocalFile(path(u"images.html"_s)));
    QVERIFY(!server_->targets().contains("/page"));
    QVERIFY(links_.empty());
}

void HtmlEngineGuardTest::pageLoadsItselfAgainAFewTimes_data()
{
    QTest::addColumn<QByteArray>("page");
    QTest::addColumn<QByteArray>("other");
    const QByteArray again = "<meta http-equiv=refresh content=0><img src=PICTURE>";
    const QByteArray images = "<meta http-equiv=refresh content=\"0;url=images.html\"><img src=PICTURE>";
    const QByteArray other = "<meta http-equiv=refresh content=\"0;url=new.html\"><img src=PICTURE>";
    QTest::newRow("as the same page") << again << QByteArray();
    QTest::newRow("by its name") << images << QByteArray();
    QTest::newRow("in turn with another one") << other << images;
    // The frame reloads first; the refusal of the page's own reload ends the test.
    QTest::newRow("in a frame") << QByteArray("<meta http-equiv=refresh content=3><iframe src=new.html></iframe>")
                                << again;
}

// Each load requests the picture again, so that the server can count the loads.
void HtmlEngineGuardTest::pageLoadsItselfAgainAFewTimes()
{
    QFETCH(QByteArray, page);
    QFETCH(QByteArray, other);
    server_->answerWithPicture("/a", Qt::red);
    write(u"new.html"_s, other.replace("PICTURE", address("/a")));
    open(page.replace("PICTURE", address("/a")));
    QSignalSpy finished(engine(), SIGNAL(loadFinished(bool)));
    const auto refused = [&] { return finished.count(QList<QVariant>{false}); };
    QTRY_COMPARE_WITH_TIMEOUT(refused(), 1 + kMostRetries, 30000);
    QVERIFY2(server_->requests.size() > 1, "the page did not reload itself");
    QVERIFY2(server_->requests.size() <= kMostLoads, qPrintable(QString::number(server_->requests.size())));
}

void HtmlEngineGuardTest::localFilesAreClosed()
{
    const QByteArray secret = "<body bgcolor=#ff00ff><img src=\"" + address("/secret") + "\">";
    write(u"secret.html"_s, secret);
    write(u"secret.css"_s, "body { background: #ff00ff }");
    write(u"secret.png"_s, PictureServer::png(Qt::magenta));
    write(u"blank.htm"_s, "<img src=\"" + address("/own") + "\">");
    server_->answerWithPicture("/own", Qt::cyan);
    // The elements are small, so that all of them are visible.
    open("<link rel=stylesheet href=secret.css><style>@import url(secret.css);"
         "iframe, object, embed, video, svg { width: 90px; height: 60px }</style><iframe src=blank.htm></iframe>"
         "<iframe src=secret.html></iframe><iframe src=\"file:///etc/hostname\"></iframe>"
         "<img src=secret.png><object data=secret.html></object><embed src=secret.html>"
         "<svg><image href=secret.png width=90 height=60 /></svg><video poster=secret.png></video>");
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::cyan), 30000);
    QVERIFY(!showsColor(Qt::magenta));
    QCOMPARE(server_->targets(), QList<QByteArray>{"/own"});
}

void HtmlEngineGuardTest::netIsClosedButForPictures()
{
    server_->answerWithPicture("/picture", Qt::red);
    // Connections and datagrams to these sockets are not requests that the engine reports.
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    QUdpSocket datagrams;
    QVERIFY(datagrams.bind(QHostAddress::LocalHost));
    const QByteArray port = QByteArray::number(datagrams.localPort());
    const QByteArray silent = "http://127.0.0.1:" + QByteArray::number(closed.serverPort()) + '/';
    QByteArray page = "<html><head>";
    for (const char* relation :
         {"preconnect", "dns-prefetch", "prefetch", "prerender", "modulepreload", "stylesheet", "manifest", "icon",
          "preload as=font crossorigin", "preload as=fetch crossorigin", "preload as=script", "preload as=style"})
        page += "<link rel=" + QByteArray(relation) + " href=\"" + silent + "\">";
    page += "<style>@import url(" + silent + "); @font-face { font-family: f; src: url(" + silent +
            "); } body { font-family: f; }</style>"
            "<script>new WebSocket('ws" +
            silent.mid(4) + "'); fetch('" + silent + "'); navigator.sendBeacon('" + silent +
            "', 'x'); var c = new RTCPeerConnection({iceServers: [{urls: 'stun:127.0.0.1:" + port +
            "'}]}); c.createDataChannel('x'); c.createOffer().then(function(o) { c.setLocalDescription(o); });</script>"
            "<script src=\"" +
            silent + "\"></script></head><iframe src=\"" + silent + "\"></iframe><video src=\"" + silent +
            "\"></video><object data=\"" + silent + "\"></object><embed src=\"" + silent + "\"><svg><use href=\"" +
            silent + "#x\"/></svg>text<img src=\"" + address("/picture") + "\">";
    open(page);
    QTRY_COMPARE_WITH_TIMEOUT(server_->requests.size(), 1, 30000);
    open("<title>next</title>");
    QVERIFY(titleBecomes(u"next"_s));
    QCOMPARE(server_->targets(), QList<QByteArray>{"/picture"});
    QVERIFY(!closed.hasPendingConnections());
    QVERIFY(!datagrams.hasPendingDatagrams());
}

void HtmlEngineGuardTest::picturesBeyondTheirNumberAreLeftOut()
{
    QByteArray page = kPageWithALink;
    for (int i = 0; i < 3 * quarrynet::kMaxPagePictures; ++i)
        page += "<img src=\"" + address("/") + QByteArray::number(i) + "\">";
    open(page);
    QVERIFY(titleBecomes(u"shown"_s));
    QTRY_COMPARE_WITH_TIMEOUT(server_->requests.size(), quarrynet::kMaxPagePictures, 30000);
    chooseTheLink(); // by then the page has made all its other requests
    QCOMPARE(server_->requests.size(), quarrynet::kMaxPagePictures);
}

void HtmlEngineGuardTest::nothingIsStored()
{
    server_->answerWithPicture("/a", Qt::red, "Set-Cookie: id=1\r\n");
    server_->answerWithPicture("/b", Qt::blue, "Set-Cookie: id=1\r\n");
    open("<img src=\"" + address("/a") + "\">");
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::red), 30000);
    open("<img src=\"" + address("/b") + "\">");
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::blue), 30000);
    for (const QByteArray& request : std::as_const(server_->requests))
        QVERIFY(!request.toLower().contains("cookie"));
    const QDir data(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    QVERIFY2(!data.exists(u"QtWebEngine"_s), qPrintable(data.path()));
}

void HtmlEngineGuardTest::passwordsAreNotAskedFor()
{
    server_->answer("/a", "HTTP/1.1 401 x\r\nWWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n");
    open("<title>shown</title><body><img src=\"" + address("/a") + "\">");
    QTRY_COMPARE_WITH_TIMEOUT(server_->requests.size(), 1, 30000);
    QVERIFY(titleBecomes(u"shown"_s));
    QVERIFY(!QApplication::activeModalWidget());
}

void HtmlEngineGuardTest::downloadsAreNotTaken()
{
    open(QByteArray(kPageWithALink) +
         "<a download=x.txt href=\"data:text/plain,x\" style=\"display:block;height:50px\">x</a>"
         "<a download href=\"" +
         address("/b") + "\" style=\"display:block;height:50px\">x</a>");
    QVERIFY(titleBecomes(u"shown"_s));
    chooseTheLink();
    click({100, 125});
    click({100, 175});
    // The clicked links do not delay the next page either.
    open("<title>next</title>");
    QVERIFY(titleBecomes(u"next"_s));
    QVERIFY(!server_->targets().contains("/b"));
    const QDir downloads(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    QVERIFY(!downloads.exists(u"x.txt"_s));
}

// The view detects by itself that its process hangs.
void HtmlEngineGuardTest::viewThatHangsIsReplaced()
{
    open("<title>shown</title>", u"images.html"_s, {{"host/x.jpg", {}}});
    QVERIFY(titleBecomes(u"shown"_s));
    const qint64 process = drawingProcess();
    QVERIFY(process > 0);
    ::kill(static_cast<pid_t>(process), SIGSTOP);
    expectReplacement(u"The browser view stopped responding."_s);
    QTRY_VERIFY_WITH_TIMEOUT(processes::statusField(process, "State").isEmpty() ||
                                 processes::statusField(process, "State").startsWith('Z'),
                             30000);
}

void HtmlEngineGuardTest::viewThatGrowsIsReplaced()
{
    open(QByteArray("<input type=date>").repeated(200'000), u"images.html"_s, {{"host/x.jpg", {}}});
    expectReplacement(u"The browser view used too much memory."_s);
}

void HtmlEngineGuardTest::pageThatFloodsIsReplaced()
{
    QByteArray page = "<body>";
    for (int i = 0; i < 2000; ++i)
        page += "<img src=\"" + address("/") + QByteArray::number(i) + "\">";
    open(page, u"images.html"_s, {{"host/x.jpg", {}}});
    expectReplacement(u"The page sent too many requests."_s);
    QVERIFY(server_->requests.size() <= quarrynet::kMaxPagePictures);
}

void HtmlEngineGuardTest::engineThatEndsIsReplaced()
{
    open("<title>shown</title><p>text", u"images.html"_s, {{"host/x.jpg", {}}});
    QVERIFY(titleBecomes(u"shown"_s));
    QVERIFY(drawingProcess() > 0);
    ::kill(static_cast<pid_t>(drawingProcess()), SIGKILL);
    expectReplacement(u"The browser view has ended unexpectedly."_s);
}

int main(int argc, char** argv)
{
    return EngineFixture::run<HtmlEngineGuardTest>(argc, argv);
}

#include "html_engine_guard_test.moc"
