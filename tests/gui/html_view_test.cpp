#include <memory>
#include <string>
#include <vector>

#include <QTextBrowser>
#include <QtTest>

#include "picture_server.h"
#include "platform/HtmlView.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace Qt::Literals::StringLiterals;
using quarrynet::HtmlView;

/// The view without its plug-in.
class HtmlViewTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pageIsKeptUntilTheViewIsShown();
    void missingPluginIsNoMatterToTalkAbout();
    void brokenPluginIsNamedInTheView();
    void rootGetsThePlainView();
    void galleryInItsFrameShowsPicturesAndCaptions();
    void pictureThatDoesNotLoadLeavesCaptionAndLink();
    void samePageIsReadAnew();
    void picturesComeThroughTheProxy();
    void chosenLinkIsHandedOut();
    void otherLinksAreNot();
    void localPicturesAreNotShown();
    void foreignFramesAreNotShown();
    void missingPageIsEmpty();
    void keysThatLeadAwayAreSwallowed();
    void escapeReachesTheWindow();
    void bytesOfAnyKindAreShown();

private:
    void write(const QString& name, const QByteArray& content);
    QString path(const QString& name) const { return folder_->filePath(name); }
    QTextBrowser& plain() { return *view_->findChild<QTextBrowser*>(); }
    void open(const QByteArray& page);
    bool showsColor(Qt::GlobalColor color);
    std::vector<std::string> choose(const QByteArray& link);

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

void HtmlViewTest::open(const QByteArray& page)
{
    write(u"images.html"_s, page);
    view_->navigate(path(u"images.html"_s));
    view_->show();
    QTRY_VERIFY(view_->findChild<QTextBrowser*>());
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

void HtmlViewTest::pageIsKeptUntilTheViewIsShown()
{
    write(u"images.html"_s, "<p>text");
    QSignalSpy changed(view_.get(), &HtmlView::urlChanged);
    view_->navigate(path(u"images.html"_s));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(view_->property("url").toUrl(), QUrl::fromLocalFile(path(u"images.html"_s)));
    QVERIFY(!view_->findChild<QTextBrowser*>());
    view_->show();
    QTRY_VERIFY(view_->findChild<QTextBrowser*>());
    QCOMPARE(plain().toPlainText(), u"text"_s);
}

void HtmlViewTest::missingPluginIsNoMatterToTalkAbout()
{
    open("<p>text");
    QVERIFY(!view_->property("browser").toBool());
    QVERIFY(view_->message().isEmpty());
}

void HtmlViewTest::brokenPluginIsNamedInTheView()
{
    for (const char* name : {"libquarrynet_webengine.so", "quarrynet_webengine.dll", "libquarrynet_webengine.dylib"})
        write(QString::fromLatin1(name), "no library");
    view_->setEngineFolders({folder_->path()});
    open("<p>text");
    QVERIFY(view_->message().startsWith(u"The browser view cannot start: "_s));
    QVERIFY(view_->findChild<QWidget*>(u"EngineMessage"_s)->isVisible());
    QCOMPARE(plain().toPlainText(), u"text"_s);
}

// The engine has no sandbox there.
void HtmlViewTest::rootGetsThePlainView()
{
#ifdef Q_OS_UNIX
    const QString folder = QCoreApplication::applicationDirPath();
    if (QDir(folder).entryList({u"*quarrynet_webengine*"_s}).isEmpty())
        QSKIP("The plug-in was not built");
    if (geteuid() != 0)
        QSKIP("Somebody else runs this test");
    view_->setEngineFolders({folder});
    open("<p>text");
    QVERIFY(!view_->property("browser").toBool());
    QCOMPARE(view_->message().section(u'\n', 0, 0),
             u"The browser view cannot start: it has no sandbox when root starts it."_s);
    QCOMPARE(plain().toPlainText(), u"text"_s);
#endif
}

void HtmlViewTest::galleryInItsFrameShowsPicturesAndCaptions()
{
    server_->answerWithPicture("/images?q=tbn:1", Qt::red);
    server_->answerWithPicture("/images?q=tbn:2", Qt::blue);
    QByteArray page = "<html><head>\r\n<SCRIPT LANGUAGE=JAVASCRIPT>\r\nvar a=0;\r\n</SCRIPT>\r\n</HEAD>\r\n<BODY>\r\n";
    for (const char* number : {"1", "2"})
        page += "<p align=center><a href=\"http://host/" + QByteArray(number) + ".jpg\" target=\"_blank\"><img src=\"" +
                server_->address(u"/images?q=tbn:"_s).toLatin1() + number + "\"><br>http://host/" + number +
                ".jpg</a><p>\r\n";
    write(u"images.html"_s, page);
    write(u"new.html"_s, "<HTML><frameset rows=100% border=0><frame noresize scrolling=auto name=blank "
                         "src=images.html></frame></frameset></HTML>");
    view_->navigate(path(u"new.html"_s));
    view_->show();
    QTRY_VERIFY(showsColor(Qt::red) && showsColor(Qt::blue));
    QVERIFY(plain().toPlainText().contains(u"http://host/2.jpg"_s));
    QVERIFY(!plain().toPlainText().contains(u"var a"_s));
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        view_->grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/plain_view.png"_s);
}

void HtmlViewTest::pictureThatDoesNotLoadLeavesCaptionAndLink()
{
    open("<a href=\"http://host/x.jpg\"><img src=\"" + server_->address(u"/none"_s).toLatin1() + "\"><br>caption</a>");
    QTRY_COMPARE(server_->requests.size(), 1);
    QVERIFY(plain().toPlainText().contains(u"caption"_s));
    QTest::keyClick(&plain(), Qt::Key_Tab);
    std::vector<std::string> chosen;
    connect(view_.get(), &HtmlView::linkActivated, this, [&chosen](const std::string& a) { chosen.push_back(a); });
    QTest::keyClick(&plain(), Qt::Key_Return);
    QCOMPARE(chosen, std::vector<std::string>{"http://host/x.jpg"});
}

void HtmlViewTest::samePageIsReadAnew()
{
    open("<p>first");
    QCOMPARE(plain().toPlainText(), u"first"_s);
    open("<p>second");
    QCOMPARE(plain().toPlainText(), u"second"_s);
}

void HtmlViewTest::picturesComeThroughTheProxy()
{
    server_->answerWithPicture("http://127.80.0.2/a", Qt::green);
    view_->setProxy(u"127.0.0.1"_s, server_->port());
    open("<img src=\"http://127.80.0.2/a\">");
    QTRY_VERIFY(showsColor(Qt::green));
}

std::vector<std::string> HtmlViewTest::choose(const QByteArray& link)
{
    std::vector<std::string> chosen;
    const auto connection = connect(view_.get(), &HtmlView::linkActivated, this,
                                    [&chosen](const std::string& address) { chosen.push_back(address); });
    open("<a href=\"" + link + "\" target=\"_blank\">link</a>");
    plain().setFocus();
    QTest::keyClick(&plain(), Qt::Key_Tab);
    QTest::keyClick(&plain(), Qt::Key_Return);
    disconnect(connection);
    return chosen;
}

void HtmlViewTest::chosenLinkIsHandedOut()
{
    QCOMPARE(choose("http://host/a b.jpg?x=1&y=$(x)"),
             std::vector<std::string>{"http://host/a%20b.jpg?x=1&y=%24%28x%29"});
    QCOMPARE(choose("https://host/"), std::vector<std::string>{"https://host/"});
    QCOMPARE(choose("ftp://host/a"), std::vector<std::string>{"ftp://host/a"});
    QCOMPARE(view_->property("url").toUrl(), QUrl::fromLocalFile(path(u"images.html"_s)));
    QCOMPARE(plain().toPlainText(), u"link"_s);
}

void HtmlViewTest::otherLinksAreNot()
{
    for (const char* link : {"file:///etc/passwd", "javascript:alert(1)", "images.html", "#x", "mailto:a@b.example",
                             "data:text/html,x", "\\\\host\\share", "http://-x/", "http://", "--help"})
        QVERIFY2(choose(link).empty(), link);
}

void HtmlViewTest::localPicturesAreNotShown()
{
    write(u"secret.png"_s, PictureServer::png(Qt::magenta));
    server_->answerWithPicture("/a", Qt::cyan);
    open("<img src=\"" + path(u"secret.png"_s).toUtf8() + "\"><img src=\"secret.png\"><img src=\"file://" +
         path(u"secret.png"_s).toUtf8() + "\"><img src=\"" + server_->address(u"/a"_s).toUtf8() + "\">" +
         "<img src=\"data:image/png;base64," + PictureServer::png(Qt::magenta).toBase64() + "\">");
    QTRY_VERIFY(showsColor(Qt::cyan));
    QVERIFY(!showsColor(Qt::magenta));
}

void HtmlViewTest::foreignFramesAreNotShown()
{
    write(u"secret.html"_s, "<p>secret");
    open("<frameset><frame src=secret.html></frameset>");
    QVERIFY(!plain().toPlainText().contains(u"secret"_s));
    open("<frameset><frame src=../images.html></frameset>");
    QVERIFY(plain().toPlainText().trimmed().isEmpty());
}

void HtmlViewTest::missingPageIsEmpty()
{
    open("<p>text");
    view_->navigate(path(u"none.html"_s));
    QVERIFY(plain().toPlainText().isEmpty());
}

void HtmlViewTest::keysThatLeadAwayAreSwallowed()
{
    open("<p>text");
    QAction action;
    action.setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_N), QKeySequence(Qt::ALT | Qt::Key_F)});
    view_->addAction(&action);
    QSignalSpy triggered(&action, &QAction::triggered);
    QVERIFY(QTest::qWaitForWindowActive(view_.get()));
    plain().setFocus();
    QTest::keyClick(&plain(), Qt::Key_N, Qt::ControlModifier);
    QTest::keyClick(&plain(), Qt::Key_F, Qt::AltModifier);
    QCOMPARE(triggered.size(), 0);
    view_->setFocusProxy(nullptr);
    view_->setFocus();
    QTest::keyClick(view_.get(), Qt::Key_N, Qt::ControlModifier); // the shortcut itself works
    QCOMPARE(triggered.size(), 1);
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
    open("<p>caf\xe9 \x80\xff");
    QVERIFY(plain().toPlainText().startsWith(u"caf\u00e9"_s));
    open("<p>caf\xc3\xa9");
    QCOMPARE(plain().toPlainText(), u"caf\u00e9"_s);
    open(QByteArray("a\0b<p>c", 7));
    QVERIFY(plain().toPlainText().contains(u'c'));
}

QTEST_MAIN(HtmlViewTest)
#include "html_view_test.moc"
