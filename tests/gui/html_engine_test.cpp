#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QMainWindow>
#include <QTextBrowser>
#include <QtTest>

#include "common/local_pages.h"
#include "ordinary_user.h"
#include "picture_server.h"
#include "platform/HtmlView.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::HtmlView;

namespace {

constexpr std::array<std::pair<const char*, const char*>, 3> kHostileEnvironment = {
    {{"QTWEBENGINE_DISABLE_SANDBOX", ""},
     {"QTWEBENGINE_CHROMIUM_FLAGS", "--no-sandbox --single-process"},
     {"QTWEBENGINE_REMOTE_DEBUGGING", "0"}}};

QByteArray processFile(qint64 process, const char* name)
{
    QFile file(u"/proc/%1/%2"_s.arg(process).arg(QString::fromLatin1(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A field of /proc/<process>/status, which is empty where the process is gone.
QByteArray statusField(qint64 process, const QByteArray& name)
{
    const QByteArray status = '\n' + processFile(process, "status");
    const qsizetype at = status.indexOf('\n' + name + ":\t");
    return at < 0 ? QByteArray() : status.mid(at + name.size() + 3).split('\n').first();
}

// The processes that this one started, and theirs, as far as they live.
QList<qint64> descendants()
{
    QHash<qint64, qint64> parents;
    for (const QString& name : QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (const qint64 process = name.toLongLong(); process > 0)
            parents.insert(process, statusField(process, "PPid").toLongLong());
    }
    QList<qint64> found;
    for (const qint64 process : parents.keys()) {
        qint64 up = process;
        while (up > 0 && up != QCoreApplication::applicationPid())
            up = parents.value(up);
        if (up > 0 && process != up)
            found.append(process);
    }
    return found;
}

} // namespace

/// The view with its plug-in, loaded as the program loads it: late. A test's page says in its title what its script
/// could do; the title of the engine's view is how it is read back.
class HtmlEngineTest : public QObject
{
    Q_OBJECT

public:
    explicit HtmlEngineTest(const QString& unable) : unable_(unable) {}

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void engineIsNotLoadedBeforeTheViewIsShown();
    void engineThatCannotStartSaysSo();
    void processesAreInTheirSandbox();
    void environmentIsLeftAsItWas();
    void galleryInItsFrameShowsPictures();
    void picturesComeThroughTheProxyOnly();
    void pictureThatDoesNotLoadLeavesItsCaption();
    void samePageIsReadAnew();
    void oldScriptRunsWithoutErrors();
    void chosenLinkIsHandedOutOnce();
    void plainLinkLeavesThePageWhereItIs();
    void scriptCannotChooseALink();
    void scriptCannotLeaveThePage_data();
    void scriptCannotLeaveThePage();
    void dialogsAreNotShown();
    void localFilesAreClosed();
    void netIsClosedButForPictures();
    void nothingIsStored();
    void passwordsAreNotAskedFor();
    void downloadsAreNotTaken();
    void contextMenuIsNotShown();
    void keysThatLeadAwayAreSwallowed();
    void engineThatEndsIsReplaced();

private:
    void write(const QString& name, const QByteArray& content);
    QString path(const QString& name) const { return folder_->filePath(name); }
    QByteArray address(const char* target) const { return server_->address(QString::fromLatin1(target)).toUtf8(); }
    void open(const QByteArray& page, const QString& name = u"images.html"_s,
              const std::vector<quarrynet::GalleryPicture>& gallery = {});
    QWidget* engine() const;
    qint64 drawingProcess() const;
    QString title() const { return engine() ? engine()->property("title").toString() : QString(); }
    bool titleBecomes(const QString& expected);
    bool showsColor(Qt::GlobalColor color);
    void click(const QPoint& at, Qt::MouseButton button = Qt::LeftButton);

    QString unable_;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<PictureServer> server_;
    std::unique_ptr<QMainWindow> window_;
    HtmlView* view_ = nullptr;
    std::vector<std::string> links_;
};

void HtmlEngineTest::initTestCase()
{
    if (!unable_.isEmpty())
        QSKIP(qPrintable(unable_));
    if (!ordinary_user::mayMakeNamespaces())
        QSKIP("This system refuses this user the namespaces that the engine's sandbox consists of");
    QStandardPaths::setTestModeEnabled(true);
    // What a person's environment may hold. The engine starts with the first page that a test shows.
    for (const auto& [name, value] : kHostileEnvironment)
        qputenv(name, value);
}

void HtmlEngineTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    server_ = std::make_unique<PictureServer>();
    window_ = std::make_unique<QMainWindow>();
    view_ = new HtmlView(window_.get());
    window_->setCentralWidget(view_);
    window_->resize(576, 320);
    links_.clear();
    connect(view_, &HtmlView::linkActivated, this, [this](const std::string& link) { links_.push_back(link); });
}

void HtmlEngineTest::cleanup()
{
    window_.reset();
}

void HtmlEngineTest::write(const QString& name, const QByteArray& content)
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

void HtmlEngineTest::open(const QByteArray& page, const QString& name,
                          const std::vector<quarrynet::GalleryPicture>& gallery)
{
    write(name, page);
    view_->navigate(path(name), gallery);
    window_->show();
    QTRY_VERIFY_WITH_TIMEOUT(view_->hasBrowser(), 30000);
}

QWidget* HtmlEngineTest::engine() const
{
    for (QWidget* child : view_->findChildren<QWidget*>()) {
        if (child->inherits("QWebEngineView"))
            return child;
    }
    return nullptr;
}

qint64 HtmlEngineTest::drawingProcess() const
{
    for (const QObject* child : engine()->findChildren<QObject*>()) {
        if (child->inherits("QWebEnginePage"))
            return child->property("renderProcessPid").toLongLong();
    }
    return 0;
}

bool HtmlEngineTest::titleBecomes(const QString& expected)
{
    // In an event loop of its own: the engine works in this thread, and polling would let it do so only now and then.
    QEventLoop loop;
    QTimer look;
    connect(&look, &QTimer::timeout, &loop, [&] {
        if (title() == expected)
            loop.quit();
    });
    look.start(std::chrono::milliseconds(10));
    QTimer::singleShot(std::chrono::seconds(30), &loop, &QEventLoop::quit);
    if (title() != expected)
        loop.exec();
    const bool met = title() == expected;
    if (!met)
        qWarning() << "The title is" << title() << "and not" << expected;
    return met;
}

bool HtmlEngineTest::showsColor(Qt::GlobalColor color)
{
    const QImage image = window_->grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == QColor(color))
                return true;
        }
    }
    return false;
}

void HtmlEngineTest::click(const QPoint& at, Qt::MouseButton button)
{
    QTest::mouseClick(engine()->focusProxy(), button, {}, at);
}

static bool engineIsLoaded()
{
    QFile maps(u"/proc/self/maps"_s);
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("WebEngineCore");
}

// First, for the engine stays loaded.
void HtmlEngineTest::engineIsNotLoadedBeforeTheViewIsShown()
{
    if (!QFile::exists(u"/proc/self/maps"_s))
        QSKIP("The system does not list the loaded libraries");
    write(u"images.html"_s, "<title>shown</title>");
    view_->navigate(path(u"images.html"_s));
    QCoreApplication::processEvents();
    QVERIFY(!engineIsLoaded());
    window_->show();
    QVERIFY(titleBecomes(u"shown"_s));
    QVERIFY(engineIsLoaded());
    QVERIFY(view_->message().isEmpty());
}

void HtmlEngineTest::engineThatCannotStartSaysSo()
{
    qputenv("QTWEBENGINEPROCESS_PATH", "/no/such/process");
    write(u"images.html"_s, "<p>text");
    view_->navigate(path(u"images.html"_s), {{"host/x.jpg", {}}});
    window_->show();
    QTRY_VERIFY(view_->findChild<QTextBrowser*>());
    qunsetenv("QTWEBENGINEPROCESS_PATH");
    QVERIFY(!view_->hasBrowser());
    QVERIFY(view_->message().startsWith(u"The browser view cannot start: "_s));
    QVERIFY(view_->findChild<QTextBrowser*>()->toPlainText().contains(u"http://host/x.jpg"_s));
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        window_->grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/engine_refused.png"_s);
}

void HtmlEngineTest::processesAreInTheirSandbox()
{
    open("<title>shown</title>");
    QVERIFY(titleBecomes(u"shown"_s));
    QVERIFY(!descendants().isEmpty());
    for (const qint64 process : descendants()) {
        const QByteArray command = processFile(process, "cmdline").replace('\0', ' ');
        QVERIFY2(!command.contains("--no-sandbox"), command.constData());
    }
    QVERIFY(descendants().contains(drawingProcess()));
    QCOMPARE(statusField(drawingProcess(), "Seccomp"), QByteArray("2"));
    QCOMPARE(statusField(drawingProcess(), "NoNewPrivs"), QByteArray("1"));
}

void HtmlEngineTest::environmentIsLeftAsItWas()
{
    for (const auto& [name, value] : kHostileEnvironment) {
        QVERIFY(qEnvironmentVariableIsSet(name));
        QCOMPARE(qgetenv(name), QByteArray(value));
    }
}

void HtmlEngineTest::galleryInItsFrameShowsPictures()
{
    server_->answerWithPicture("/images?q=tbn:1", Qt::red);
    server_->answerWithPicture("/images?q=tbn:2", Qt::blue);
    QByteArray page = "<html><body>";
    for (const char* number : {"1", "2"})
        page += "<p align=center><a href=\"http://host/" + QByteArray(number) + ".jpg\" target=\"_blank\"><img src=\"" +
                address("/images?q=tbn:") + number + "\"><br>http://host/" + number + ".jpg</a><p>\r\n";
    write(u"images.html"_s, page);
    open(QByteArray::fromStdString(quarrynet::framePage(quarrynet::kGalleryPageName)), u"new.html"_s);
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::red) && showsColor(Qt::blue), 30000);
    QCOMPARE(view_->property("url").toUrl(), QUrl::fromLocalFile(path(u"new.html"_s)));
    QVERIFY(view_->property("browser").toBool());
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        window_->grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/engine_view.png"_s);
}

void HtmlEngineTest::picturesComeThroughTheProxyOnly()
{
    server_->answerWithPicture("http://127.80.0.2/images?q=1", Qt::green);
    view_->setProxy(u"127.0.0.1"_s, server_->port());
    open("<body><img src=\"http://127.80.0.2/images?q=1\">");
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::green), 30000);
    QCOMPARE(server_->targets(), QList<QByteArray>{"http://127.80.0.2/images?q=1"});
}

void HtmlEngineTest::pictureThatDoesNotLoadLeavesItsCaption()
{
    open("<body bgcolor=#ffff00><a href=\"http://host/x.jpg\" target=\"_blank\"><img src=\"" + address("/none") +
         "\" onerror=\"document.title = document.body.innerText.trim()\"><br>caption</a>");
    QVERIFY(titleBecomes(u"caption"_s));
}

void HtmlEngineTest::samePageIsReadAnew()
{
    open("<title>first</title>");
    QVERIFY(titleBecomes(u"first"_s));
    open("<title>second</title>");
    QVERIFY(titleBecomes(u"second"_s));
}

void HtmlEngineTest::oldScriptRunsWithoutErrors()
{
    QByteArray page = QByteArray::fromStdString(quarrynet::blankPage());
    page.replace("<html><head>",
                 "<html><head><script>var faults = ''; window.onerror = function(m) { faults += m; };</script>");
    page.replace("</body>", "<script>document.title = typeof document.captureEvents + ' ' + typeof Event.MOUSEUP + ' ' "
                            "+ typeof document.oncontextmenu + ' ' + faults + 'end';</script></body>");
    open(page);
    QVERIFY(titleBecomes(u"function number function end"_s));
}

void HtmlEngineTest::chosenLinkIsHandedOutOnce()
{
    server_->answerWithPicture("/a", Qt::red);
    write(u"images.html"_s,
          "<body topmargin=0 leftmargin=0><a href=\"http://host/a b.jpg\" target=\"_blank\"><img src=\"" +
              address("/a") + "\" width=300 height=200></a>");
    open(QByteArray::fromStdString(quarrynet::framePage(quarrynet::kGalleryPageName)), u"new.html"_s);
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::red), 30000);
    click({100, 100});
    QTRY_COMPARE_WITH_TIMEOUT(links_, std::vector<std::string>{"http://host/a%20b.jpg"}, 30000);
    QVERIFY(showsColor(Qt::red));
    QCOMPARE(engine()->property("url").toUrl(), QUrl::fromLocalFile(path(u"new.html"_s)));
}

void HtmlEngineTest::plainLinkLeavesThePageWhereItIs()
{
    open("<title>here</title><body topmargin=0><a href=\"" + address("/there") +
         "\" style=\"display:block;height:200px\" onmousedown=\"document.title='pressed'\">link</a>");
    QVERIFY(titleBecomes(u"here"_s));
    click({100, 100});
    QTRY_COMPARE_WITH_TIMEOUT(links_, std::vector<std::string>{address("/there").toStdString()}, 30000);
    QCOMPARE(title(), u"pressed"_s);
    QVERIFY(server_->requests.isEmpty());
}

// A page that runs `script` once it is loaded with all that belongs to it (before that, a refused way out would end its
// loading), gives it a while, and then asks for a picture and puts `log`, which the script adds to, and "done" into its
// title. What the script tried on the net has been asked for by then.
static QByteArray tryingPage(const QByteArray& body, const QByteArray& script, const QByteArray& picture)
{
    return "<body><script>var log = '';</script>" + body +
           "<script>addEventListener('load', function() { setTimeout(function() {" + script +
           "; setTimeout(function() { var i = new Image(); i.onload = function() { document.title = log + 'done'; };"
           " i.src = '" +
           picture + "'; }, 300); }, 0); });</script>";
}

void HtmlEngineTest::scriptCannotChooseALink()
{
    server_->answerWithPicture("/a", Qt::red);
    open(tryingPage("<a id=a href=\"http://host/1\" target=_blank>a</a><a id=b href=\"http://host/2\">b</a>"
                    "<form id=f action=\"http://host/3\"></form>",
                    "a.click(); b.click(); window.open('http://host/4'); f.submit()", address("/a")));
    QVERIFY(titleBecomes(u"done"_s));
    QVERIFY(links_.empty());
}

void HtmlEngineTest::scriptCannotLeaveThePage_data()
{
    QTest::addColumn<QByteArray>("place");
    QTest::newRow("net") << QByteArray("/page");
    QTest::newRow("file") << QByteArray("file:///etc/hostname");
    QTest::newRow("data") << QByteArray("data:text/html,x");
    QTest::newRow("engine's own") << QByteArray("chrome://version");
    QTest::newRow("source") << QByteArray("view-source:file:///etc/hostname");
}

void HtmlEngineTest::scriptCannotLeaveThePage()
{
    QFETCH(QByteArray, place);
    if (place.startsWith('/'))
        place = address(place.constData());
    server_->answerWithPicture("/a", Qt::red);
    server_->answer("/page", "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n<title>elsewhere</title>");
    open(tryingPage({}, "try { window.location = \"" + place + "\"; } catch (e) {}", address("/a")));
    QVERIFY(titleBecomes(u"done"_s));
    open("<title>here</title><meta http-equiv=refresh content=\"0;url=" + place + "\">");
    QVERIFY(titleBecomes(u"here"_s));
    QCOMPARE(engine()->property("url").toUrl(), QUrl::fromLocalFile(path(u"images.html"_s)));
    QVERIFY(!server_->targets().contains("/page"));
    QVERIFY(links_.empty());
}

void HtmlEngineTest::dialogsAreNotShown()
{
    server_->answerWithPicture("/a", Qt::red);
    open(tryingPage({},
                    "alert('x'); log = confirm('x') + ' ' + prompt('x', 'y') + ' '; print();"
                    "onbeforeunload = function() { return 'stay'; }",
                    address("/a")));
    QVERIFY(titleBecomes(u"false null done"_s));
    QVERIFY(!QApplication::activeModalWidget());
    open("<title>next</title>");
    QVERIFY(titleBecomes(u"next"_s));
}

void HtmlEngineTest::localFilesAreClosed()
{
    write(u"secret.txt"_s, "secret");
    write(u"secret.html"_s, "<script>parent.log += 'frame ';</script>");
    write(u"secret.js"_s, "log += 'script ';");
    write(u"secret.css"_s, "body { color: red }");
    write(u"secret.png"_s, PictureServer::png(Qt::magenta));
    write(u"blank.htm"_s, "<script>parent.log += 'own ';</script>");
    server_->answerWithPicture("/a", Qt::cyan);
    open(tryingPage("<img src=\"" + address("/a") +
                        "\"><iframe src=secret.html></iframe><iframe src=secret.txt></iframe>"
                        "<iframe src=blank.htm></iframe><iframe src=\"file:///etc/hostname\"></iframe>"
                        "<script src=secret.js></script>"
                        "<link rel=stylesheet href=secret.css onload=\"log += 'style '\">"
                        "<img src=secret.png onload=\"log += 'picture '\">"
                        "<object data=secret.html></object><embed src=secret.html><video src=secret.txt></video>",
                    "fetch('secret.txt').then(function() { log += 'fetch '; });"
                    "try { var x = new XMLHttpRequest(); x.open('GET', 'file:///etc/hostname', false); x.send();"
                    "  log += 'xhr '; } catch (e) {}"
                    "try { new Worker('secret.js').onmessage = function() { log += 'worker '; }; } catch (e) {}",
                    address("/a")));
    QVERIFY(titleBecomes(u"own done"_s));
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::cyan), 30000);
    QVERIFY(!showsColor(Qt::magenta));
}

void HtmlEngineTest::netIsClosedButForPictures()
{
    server_->answerWithPicture("/picture", Qt::red);
    const QByteArray js = "HTTP/1.1 200 OK\r\nContent-Type: text/javascript\r\nAccess-Control-Allow-Origin: *\r\n\r\n"
                          "log += 'script ';";
    for (const char* target : {"/script", "/fetch", "/frame", "/style", "/socket", "/beacon", "/media", "/xhr"})
        server_->answer(target, js);
    open(tryingPage("<script src=\"" + address("/script") + "\"></script><iframe src=\"" + address("/frame") +
                        "\"></iframe><link rel=stylesheet href=\"" + address("/style") +
                        "\"><link rel=prefetch href=\"" + address("/fetch") + "\"><video src=\"" + address("/media") +
                        "\"></video><object data=\"" + address("/media") + "\"></object>",
                    "fetch('" + address("/fetch") +
                        "').then(function() { log += 'fetch '; });"
                        "try { var x = new XMLHttpRequest(); x.open('GET', '" +
                        address("/xhr") +
                        "', false); x.send(); log += 'xhr '; } catch (e) {}"
                        "navigator.sendBeacon('" +
                        address("/beacon") + "', 'x'); try { new WebSocket('" +
                        address("/socket").replace("http", "ws") + "'); } catch (e) {}",
                    address("/picture")));
    QVERIFY(titleBecomes(u"done"_s));
    QCOMPARE(server_->targets(), QList<QByteArray>{"/picture"});
}

void HtmlEngineTest::nothingIsStored()
{
    server_->answerWithPicture("/a", Qt::red, "Set-Cookie: id=1\r\n");
    const QByteArray store = "try { log += localStorage.getItem('x') || ''; localStorage.setItem('x', 'kept '); }"
                             "catch (e) {} document.cookie = 'x=kept'; log += document.cookie";
    for (const char* name : {"blank.htm", "images.html"}) {
        open(tryingPage({}, store, address("/a")), QString::fromLatin1(name));
        QVERIFY(titleBecomes(u"done"_s));
        open("<title>between</title>");
        QVERIFY(titleBecomes(u"between"_s));
    }
    QVERIFY(!server_->requests.isEmpty());
    for (const QByteArray& request : std::as_const(server_->requests))
        QVERIFY(!request.toLower().contains("cookie"));
    const QDir data(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    QVERIFY2(!data.exists(u"QtWebEngine"_s), qPrintable(data.path()));
}

void HtmlEngineTest::passwordsAreNotAskedFor()
{
    server_->answer("/a", "HTTP/1.1 401 x\r\nWWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n");
    open("<body><img src=\"" + address("/a") + "\" onerror=\"document.title = 'refused'\">");
    QVERIFY(titleBecomes(u"refused"_s));
    QVERIFY(!QApplication::activeModalWidget());
}

void HtmlEngineTest::downloadsAreNotTaken()
{
    server_->answerWithPicture("/a", Qt::red);
    open(tryingPage("<a id=a download=x.txt href=\"data:text/plain,x\">a</a><a id=b download href=\"" + address("/b") +
                        "\">b</a>",
                    "a.click(); b.click()", address("/a")));
    QVERIFY(titleBecomes(u"done"_s));
    QCOMPARE(server_->targets(), QList<QByteArray>{"/a"});
    const QDir downloads(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    QVERIFY(!downloads.exists(u"x.txt"_s));
}

void HtmlEngineTest::contextMenuIsNotShown()
{
    open("<body style=\"height:200px\" onmouseup=\"document.title = 'button ' + event.button\">text");
    QTRY_VERIFY_WITH_TIMEOUT(engine()->focusProxy(), 30000);
    QTRY_VERIFY_WITH_TIMEOUT((click({50, 50}, Qt::RightButton), title() == u"button 2"_s), 30000);
    QVERIFY(!QApplication::activePopupWidget());
}

void HtmlEngineTest::keysThatLeadAwayAreSwallowed()
{
    QAction action;
    action.setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_N), QKeySequence(Qt::ALT | Qt::Key_F), QKeySequence(Qt::Key_F5)});
    window_->addAction(&action);
    QSignalSpy triggered(&action, &QAction::triggered);
    // The page asks for a picture for each key that it sees.
    server_->answerWithPicture("/ready", Qt::red);
    open("<body onload=\"new Image().src = '" + address("/ready") +
         "'\" onkeydown=\"n++; if (event.key != 'Control') new Image().src = '" + address("/") +
         "' + event.key + '?' + n\"><script>var n = 0;</script>");
    QTRY_COMPARE_WITH_TIMEOUT(server_->targets(), QList<QByteArray>{"/ready"}, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(engine()->focusProxy(), 30000);
    QWidget* keys = engine()->focusProxy();
    keys->setFocus();
    QTest::keyClick(keys, Qt::Key_A);
    QTest::keyClick(keys, Qt::Key_N, Qt::ControlModifier);
    QTest::keyClick(keys, Qt::Key_R, Qt::ControlModifier);
    QTest::keyClick(keys, Qt::Key_F, Qt::AltModifier);
    QTest::keyClick(keys, Qt::Key_Left, Qt::AltModifier);
    QTest::keyClick(keys, Qt::Key_F5);
    QTest::mouseClick(keys, Qt::BackButton);
    QTest::keyClick(keys, Qt::Key_Backspace);
    QTest::keyClick(keys, Qt::Key_B);
    // Neither a swallowed key nor a page that was loaded again ("/ready") is among them. Two Controls were counted.
    // Pictures are fetched side by side, so they arrive in any order.
    const auto arrived = [this] {
        QList<QByteArray> targets = server_->targets();
        std::sort(targets.begin(), targets.end());
        return targets;
    };
    const QList<QByteArray> seen = {"/Backspace?4", "/a?1", "/b?5", "/ready"};
    QTRY_COMPARE_WITH_TIMEOUT(arrived(), seen, 30000);
    QCOMPARE(triggered.size(), 0);
}

void HtmlEngineTest::engineThatEndsIsReplaced()
{
    open("<title>shown</title><p>text", u"images.html"_s, {{"host/x.jpg", {}}});
    QVERIFY(titleBecomes(u"shown"_s));
    QVERIFY(drawingProcess() > 0);
    ::kill(static_cast<pid_t>(drawingProcess()), SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(view_->findChild<QTextBrowser*>(), 30000);
    QVERIFY(!engine());
    QVERIFY(!view_->hasBrowser());
    QVERIFY(view_->message().startsWith(u"The browser view has ended unexpectedly."_s));
    QVERIFY(view_->findChild<QTextBrowser*>()->toPlainText().contains(u"http://host/x.jpg"_s));
}

int main(int argc, char** argv)
{
    const QString unable = ordinary_user::become(argv);
    QApplication application(argc, argv);
    HtmlEngineTest test(unable);
    return QTest::qExec(&test, argc, argv);
}

#include "html_engine_test.moc"
