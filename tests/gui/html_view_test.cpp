#include <memory>
#include <string>
#include <vector>

#include <QLineEdit>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextFrame>
#include <QtTest>

#include "PictureServer.h"
#include "platform/HtmlView.h"
#include "platform/PictureFetcher.h"
#include "search/image/gallery.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace Qt::Literals::StringLiterals;
using quarrynet::GalleryPicture;
using quarrynet::HtmlView;

using Gallery = std::vector<GalleryPicture>;

/// Tests the view without its plug-in.
class HtmlViewTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void galleryIsKeptUntilTheViewIsShown();
    void missingPluginIsNoMatterToTalkAbout();
    void brokenPluginIsNamedInTheView();
    void rootGetsThePlainView();
    void galleryShowsPicturesAndCaptions();
    void pictureThatDoesNotLoadLeavesCaptionAndLink();
    void nextGalleryReplacesTheOneBefore();
    void picturesComeThroughTheProxy();
    void chosenLinkIsHandedOut();
    void otherLinksAreNot();
    void pagesAreNotRead();
    void onlyPicturesOfTheNetAreShown();
    void drawingsAreNotShown();
    void picturesAreMadeSmall();
    void picturesBeyondTheirNumberAreLeftOut();
    void hostileGalleryIsText_data();
    void hostileGalleryIsText();
    void keysThatLeadAwayAreSwallowed();
    void escapeReachesTheWindow();
    void bytesOfAnyKindAreShown();

private:
    void write(const QString& name, const QByteArray& content);
    QString path(const QString& name) const { return folder_->filePath(name); }
    std::string address(const QString& target) const { return server_->address(target).toStdString(); }
    QTextBrowser& plain() { return *view_->findChild<QTextBrowser*>(); }
    QString captions();
    int picturesInTheDocument();
    void open(const Gallery& gallery);
    bool showsColor(Qt::GlobalColor color);
    std::vector<std::string> choose(const std::string& address);

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<PictureServer> server_;
    std::unique_ptr<HtmlView> view_;
};

void HtmlViewTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    server_ = std::make_unique<PictureServer>();
    view_ = std::make_unique<HtmlView>();
    view_->setEngineFolders({});
    view_->resize(576, 206);
}

void HtmlViewTest::cleanup()
{
    view_.reset();
}

void HtmlViewTest::write(const QString& name, const QByteArray& content)
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

// Shows a gallery together with its page, as the image search does.
void HtmlViewTest::open(const Gallery& gallery)
{
    std::vector<std::string> addresses;
    std::vector<std::string> thumbnails;
    for (const GalleryPicture& picture : gallery) {
        addresses.push_back(picture.address);
        thumbnails.push_back(picture.thumbnail);
    }
    write(u"images.html"_s, QByteArray::fromStdString(quarrynet::galleryPage(addresses, thumbnails)));
    write(u"new.html"_s, QByteArray::fromStdString(quarrynet::galleryFramePage()));
    view_->navigate(path(u"new.html"_s), gallery);
    view_->show();
    QTRY_VERIFY(view_->findChild<QTextBrowser*>());
}

// Returns the view's text without the pictures and the line between picture and caption.
QString HtmlViewTest::captions()
{
    return plain().toPlainText().remove(QChar(QChar::ObjectReplacementCharacter) + u"\n"_s);
}

int HtmlViewTest::picturesInTheDocument()
{
    return static_cast<int>(plain().toPlainText().count(QChar(QChar::ObjectReplacementCharacter)));
}

bool HtmlViewTest::showsColor(Qt::GlobalColor color)
{
    const QImage image = view_->grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == QColor(color))
                return true;
        }
    }
    return false;
}

void HtmlViewTest::galleryIsKeptUntilTheViewIsShown()
{
    QSignalSpy changed(view_.get(), &HtmlView::urlChanged);
    view_->navigate(path(u"new.html"_s), {{"host/x.jpg", {}}});
    QCOMPARE(changed.size(), 1);
    QCOMPARE(view_->property("url").toUrl(), QUrl::fromLocalFile(path(u"new.html"_s)));
    QVERIFY(!view_->findChild<QTextBrowser*>());
    view_->show();
    QTRY_VERIFY(view_->findChild<QTextBrowser*>());
    QCOMPARE(captions(), u"http://host/x.jpg"_s);
}

void HtmlViewTest::missingPluginIsNoMatterToTalkAbout()
{
    open({});
    QVERIFY(!view_->property("browser").toBool());
    QVERIFY(view_->message().isEmpty());
    QVERIFY(plain().toPlainText().isEmpty());
}

void HtmlViewTest::brokenPluginIsNamedInTheView()
{
    for (const char* name : {"libquarrynet_webengine.so", "quarrynet_webengine.dll", "libquarrynet_webengine.dll",
                             "libquarrynet_webengine.dylib"})
        write(QString::fromLatin1(name), "no library");
    view_->setEngineFolders({folder_->path()});
    open({{"host/x.jpg", {}}});
    QVERIFY(view_->message().startsWith(u"The browser view cannot start: "_s));
    QVERIFY(view_->findChild<QWidget*>(u"EngineMessage"_s)->isVisible());
    QCOMPARE(captions(), u"http://host/x.jpg"_s);
}

// For root the engine has no sandbox.
void HtmlViewTest::rootGetsThePlainView()
{
#ifdef Q_OS_UNIX
    const QString folder = QCoreApplication::applicationDirPath();
    if (QDir(folder).entryList({u"*quarrynet_webengine*"_s}).isEmpty())
        QSKIP("The plug-in was not built");
    if (geteuid() != 0)
        QSKIP("Only root can run this test");
    view_->setEngineFolders({folder});
    open({{"host/x.jpg", {}}});
    QVERIFY(!view_->property("browser").toBool());
    QCOMPARE(view_->message().section(u'\n', 0, 0),
             u"The browser view cannot start: it cannot use a sandbox when root starts it."_s);
    QCOMPARE(captions(), u"http://host/x.jpg"_s);
#endif
}

void HtmlViewTest::galleryShowsPicturesAndCaptions()
{
    server_->answerWithPicture("/images?q=tbn:1", Qt::red);
    server_->answerWithPicture("/images?q=tbn:2&w=9", Qt::blue);
    open(
        {{"host/1.jpg", address(u"/images?q=tbn:1"_s)}, {"host/2.jpg?a&amp;b", address(u"/images?q=tbn:2&amp;w=9"_s)}});
    QTRY_VERIFY(showsColor(Qt::red) && showsColor(Qt::blue));
    QCOMPARE(captions(), u"http://host/1.jpg\nhttp://host/2.jpg?a&b"_s);
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        view_->grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/plain_view.png"_s);
}

void HtmlViewTest::pictureThatDoesNotLoadLeavesCaptionAndLink()
{
    open({{"host/x.jpg", address(u"/none"_s)}});
    QTRY_COMPARE(server_->requests.size(), 1);
    QCOMPARE(captions(), u"http://host/x.jpg"_s);
    QTest::keyClick(&plain(), Qt::Key_Tab);
    std::vector<std::string> chosen;
    connect(view_.get(), &HtmlView::linkActivated, this, [&chosen](const std::string& a) { chosen.push_back(a); });
    QTest::keyClick(&plain(), Qt::Key_Return);
    QCOMPARE(chosen, std::vector<std::string>{"http://host/x.jpg"});
}

void HtmlViewTest::nextGalleryReplacesTheOneBefore()
{
    open({{"host/first", {}}});
    QCOMPARE(captions(), u"http://host/first"_s);
    open({{"host/second", {}}});
    QCOMPARE(captions(), u"http://host/second"_s);
    view_->navigate(path(u"blank.html"_s));
    QVERIFY(plain().toPlainText().isEmpty());
}

void HtmlViewTest::picturesComeThroughTheProxy()
{
    server_->answerWithPicture("http://127.80.0.2/a", Qt::green);
    view_->setProxy(u"127.0.0.1"_s, server_->port());
    open({{{}, "http://127.80.0.2/a"}});
    QTRY_VERIFY(showsColor(Qt::green));
}

std::vector<std::string> HtmlViewTest::choose(const std::string& address)
{
    std::vector<std::string> chosen;
    const auto connection = connect(view_.get(), &HtmlView::linkActivated, this,
                                    [&chosen](const std::string& link) { chosen.push_back(link); });
    open({{address, {}}});
    plain().setFocus();
    QTest::keyClick(&plain(), Qt::Key_Tab);
    QTest::keyClick(&plain(), Qt::Key_Return);
    disconnect(connection);
    return chosen;
}

void HtmlViewTest::chosenLinkIsHandedOut()
{
    QCOMPARE(choose("host/a b.jpg?x=1&amp;y=$(x)"), std::vector<std::string>{"http://host/a%20b.jpg?x=1&y=%24%28x%29"});
    QCOMPARE(choose("host/a\"><b>\xE9"), std::vector<std::string>{"http://host/a%22%3E%3Cb%3E%E9"});
    QCOMPARE(view_->property("url").toUrl(), QUrl::fromLocalFile(path(u"new.html"_s)));
    QCOMPARE(picturesInTheDocument(), 1);
}

void HtmlViewTest::otherLinksAreNot()
{
    for (const char* address : {"", "-x/", "/etc/passwd", "\" href=\"file:///etc/passwd", "host/\n", " "})
        QVERIFY2(choose(address).empty(), address);
}

void HtmlViewTest::pagesAreNotRead()
{
    write(u"images.html"_s, "<p>text of a page");
    view_->navigate(path(u"images.html"_s), {{"host/x.jpg", {}}});
    view_->show();
    QTRY_VERIFY(view_->findChild<QTextBrowser*>());
    QCOMPARE(captions(), u"http://host/x.jpg"_s);
}

void HtmlViewTest::onlyPicturesOfTheNetAreShown()
{
    write(u"secret.png"_s, PictureServer::png(Qt::magenta));
    server_->answerWithPicture("/a", Qt::cyan);
    const std::string secret = path(u"secret.png"_s).toStdString();
    open({{"1", secret},
          {"2", "secret.png"},
          {"3", "file://" + secret},
          {"4", "data:image/png;base64," + PictureServer::png(Qt::magenta).toBase64().toStdString()},
          {"5", "qrc:/icons/stop.svg"},
          {"6", address(u"/a"_s)}});
    view_->resize(576, 900);
    QTRY_VERIFY(showsColor(Qt::cyan));
    QVERIFY(!showsColor(Qt::magenta));
}

// An SVG drawing can refer to local files, devices and shares, and its server can declare it as a picture.
void HtmlViewTest::drawingsAreNotShown()
{
    write(u"secret.png"_s, PictureServer::png(Qt::magenta));
    const QByteArray file = path(u"secret.png"_s).toUtf8();
    const QByteArray drawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\""
                               " width=\"90\" height=\"60\"><rect width=\"45\" height=\"60\" fill=\"#ff0000\"/>"
                               "<image x=\"45\" width=\"45\" height=\"60\" xlink:href=\"file://" +
                               file + "\"/></svg>";
    server_->answer("/a", "HTTP/1.1 200 OK\r\nContent-Type: image/svg+xml\r\n\r\n" + drawing);
    server_->answer("/b", "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n" + drawing);
    // The last picture arrives after all others, because the number of simultaneous fetches is limited.
    Gallery gallery;
    for (int i = 0; i < 3 * quarrynet::PictureFetcher::kAtOnce; ++i)
        gallery.push_back({std::to_string(i), address(i % 2 == 0 ? u"/a"_s : u"/b"_s)});
    server_->answerWithPicture("/c", Qt::cyan);
    gallery.push_back({"last", address(u"/c"_s)});
    open(gallery);
    view_->resize(576, 1200);
    QTRY_VERIFY(showsColor(Qt::cyan));
    QVERIFY(!showsColor(Qt::red));
    QVERIFY(!showsColor(Qt::magenta));
}

void HtmlViewTest::picturesAreMadeSmall()
{
    QImage image(1600, 1200, QImage::Format_RGB32);
    image.fill(Qt::red);
    for (const char* format : {"PNG", "JPEG"}) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(image.save(&buffer, format));
        server_->answer("/a", "HTTP/1.1 200 OK\r\n\r\n" + bytes);
        open({{"host/x", address(u"/a"_s)}});
        const auto shown = [this] {
            return plain().document()->resource(QTextDocument::ImageResource, QUrl(u"picture:0"_s)).value<QPixmap>();
        };
        QTRY_COMPARE(shown().size(), QSize(512, 384));
    }
}

void HtmlViewTest::picturesBeyondTheirNumberAreLeftOut()
{
    open(Gallery(600, {"host/x.jpg", address(u"/none"_s)}));
    QCOMPARE(picturesInTheDocument(), quarrynet::kMaxPagePictures);
    QTRY_COMPARE(server_->requests.size(), quarrynet::kMaxPagePictures);
}

void HtmlViewTest::hostileGalleryIsText_data()
{
    const auto times = [](const char* text, int count) { return QByteArray(text).repeated(count).toStdString(); };
    QTest::addColumn<std::string>("text");
    QTest::newRow("1,000 nested tables") << "x\">" + times("<table><tr><td>", 1000);
    QTest::newRow("8 KB of tables") << "x\">" + times("<table>", 1200);
    QTest::newRow("40 KB of lists") << "x\">" + times("<ul><li>", 5000);
    QTest::newRow("border") << std::string("x\"><table border=2147483647><tr><td>x</table>");
    QTest::newRow("600 pictures") << "x\">" + times("<img src=\"http://127.0.0.1:9/a\">", 600);
    QTest::newRow("a word of a megabyte") << std::string(1'000'000, 'x');
    QTest::newRow("a megabyte of words") << times("word ", 200'000);
    QTest::newRow("a megabyte of line ends") << std::string(1'000'000, '\n');
    QTest::newRow("a megabyte of references") << times("&amp;", 200'000);
    QTest::newRow("a megabyte of NULs") << std::string(1'000'000, '\0');
    QTest::newRow("a megabyte of bytes") << std::string(1'000'000, '\xFF');
    QTest::newRow("right to left") << std::string("host/\xE2\x80\xAEgpj.exe");
}

void HtmlViewTest::hostileGalleryIsText()
{
    QFETCH(std::string, text);
    open(Gallery(10, {text, "http://127.0.0.1:9/" + text}));
    view_->grab(); // computes the layout
    QCOMPARE(picturesInTheDocument(), 10);
    QCOMPARE(plain().document()->blockCount(), 10);
    QCOMPARE(plain().document()->rootFrame()->childFrames().size(), 0);
    const qsizetype caption = captions().size() / 10;
    QVERIFY(caption <= 4097);
    QVERIFY(!captions().contains(QChar(0x202E)));
}

void HtmlViewTest::keysThatLeadAwayAreSwallowed()
{
    QWidget window;
    QLineEdit field(&window);
    view_->setParent(&window);
    window.show();
    open({});
    QAction action;
    action.setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_N), QKeySequence(Qt::ALT | Qt::Key_F)});
    window.addAction(&action);
    QSignalSpy triggered(&action, &QAction::triggered);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    plain().setFocus();
    QTest::keyClick(&plain(), Qt::Key_N, Qt::ControlModifier);
    QTest::keyClick(&plain(), Qt::Key_F, Qt::AltModifier);
    QCOMPARE(triggered.size(), 0);
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_N, Qt::ControlModifier); // the shortcut works otherwise
    QCOMPARE(triggered.size(), 1);
    view_->setParent(nullptr);
}

void HtmlViewTest::escapeReachesTheWindow()
{
    class Window : public QWidget
    {
    public:
        QList<int> keys;

    protected:
        void keyPressEvent(QKeyEvent* event) override { keys.append(event->key()); }
    } window;
    HtmlView view(&window);
    view.setEngineFolders({});
    window.show();
    QTRY_VERIFY(view.findChild<QTextBrowser*>());
    for (const Qt::Key key : {Qt::Key_F5, Qt::Key_Backspace, Qt::Key_Alt, Qt::Key_Escape})
        QTest::keyClick(view.findChild<QTextBrowser*>(), key);
    QCOMPARE(window.keys, QList<int>{Qt::Key_Escape});
}

void HtmlViewTest::bytesOfAnyKindAreShown()
{
    const auto caption = [this](const std::string& address) {
        open({{address, {}}});
        return captions();
    };
    QCOMPARE(caption(u"café"_s.toLocal8Bit().toStdString()), u"http://caf\u00e9"_s);
    QVERIFY(caption("caf\xE9 \x80\xFF").startsWith(u"http://caf\u00e9"_s));
    QVERIFY(caption(std::string("a\0b", 3)).endsWith(u"b"_s));
}

QTEST_MAIN(HtmlViewTest)
#include "html_view_test.moc"
