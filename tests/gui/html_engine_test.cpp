#include <string>
#include <vector>

#include <QLineEdit>
#include <QTextBrowser>
#include <QtTest>

#include "EngineFixture.h"
#include "WindowFixture.h"
#include "common/local_pages.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::HtmlView;

/// Tests what the view shows, and what the user can do in it.
class HtmlEngineTest final : public EngineFixture
{
    Q_OBJECT

private slots:
    void engineIsNotLoadedBeforeTheViewIsShown();
    void engineThatCannotStartSaysSo();
    void galleryInItsFrameShowsPictures();
    void picturesComeThroughTheProxyOnly();
    void pictureThatDoesNotLoadLeavesItsLink();
    void samePageIsReadAnew();
    void captionsCannotReadBackwards();
    void chosenLinkIsHandedOutOnce();
    void plainLinkLeavesThePageWhereItIs();
    void rightButtonDoesNothing();
    void keysThatLeadAwayAreSwallowed();
    void tabKeyGoesThroughTheView();
    void escapeStopsTheSearchOnce();
    void shortcutsWorkExceptThoseOfThePage();
};

static bool engineIsLoaded()
{
    QFile maps(u"/proc/self/maps"_s);
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("WebEngineCore");
}

// This test must be the first, because the engine stays loaded.
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

void HtmlEngineTest::pictureThatDoesNotLoadLeavesItsLink()
{
    open("<title>shown</title><body topmargin=0 leftmargin=0><a href=\"http://host/x.jpg\" target=\"_blank\">"
         "<img src=\"" +
         address("/none") + "\" width=300 height=200></a>");
    QVERIFY(titleBecomes(u"shown"_s));
    QTRY_COMPARE_WITH_TIMEOUT(server_->targets(), QList<QByteArray>{"/none"}, 30000);
    QTRY_VERIFY_WITH_TIMEOUT((click({100, 100}), !links_.empty()), 30000);
    QCOMPARE(links_[0], std::string("http://host/x.jpg"));
}

void HtmlEngineTest::samePageIsReadAnew()
{
    open("<title>first</title>");
    QVERIFY(titleBecomes(u"first"_s));
    open("<title>second</title>");
    QVERIFY(titleBecomes(u"second"_s));
}

void HtmlEngineTest::captionsCannotReadBackwards()
{
    // When the picture is visible, so is the page; the caption is above the picture.
    const auto caption = [this] { return window_->grab(QRect(0, 0, 576, 20)).toImage(); };
    const auto draw = [this](const QByteArray& text, Qt::GlobalColor color) {
        const QByteArray target = '/' + QByteArray::number(color);
        server_->answerWithPicture(target, color);
        open("<meta charset=utf-8><body topmargin=0>http://host/" + text + "exe<br><br><img src=\"" +
             address(target.constData()) + "\">");
        QTRY_VERIFY_WITH_TIMEOUT(showsColor(color), 30000);
    };
    draw("gpj.", Qt::red);
    const QImage plain = caption();
    draw("\xEF\xBF\xBDgpj.", Qt::green);
    const QImage marked = caption();
    QVERIFY(marked != plain);
    draw("\xE2\x80\xAEgpj.", Qt::blue);
    QTRY_COMPARE_WITH_TIMEOUT(caption(), marked, 30000);
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
         "\" style=\"display:block;height:200px\">link</a>");
    QVERIFY(titleBecomes(u"here"_s));
    QTRY_VERIFY_WITH_TIMEOUT((click({100, 100}), !links_.empty()), 30000);
    QCOMPARE(links_[0], address("/there").toStdString());
    QVERIFY(server_->requests.isEmpty());
}

void HtmlEngineTest::rightButtonDoesNothing()
{
    server_->answerWithPicture("/a", Qt::red);
    open("<body topmargin=0 leftmargin=0><a href=\"http://host/\"><img src=\"" + address("/a") +
         "\" width=300 height=200></a>");
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::red), 30000);
    click({100, 100}, Qt::RightButton);
    click({100, 100}, Qt::BackButton);
    click({100, 100});
    QTRY_VERIFY_WITH_TIMEOUT(!links_.empty(), 30000);
    QCOMPARE(links_.size(), std::size_t(1));
    QVERIFY(!QApplication::activePopupWidget());
}

void HtmlEngineTest::keysThatLeadAwayAreSwallowed()
{
    QAction action;
    action.setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_N), QKeySequence(Qt::ALT | Qt::Key_F), QKeySequence(Qt::Key_F5)});
    window_->addAction(&action);
    QSignalSpy triggered(&action, &QAction::triggered);
    // The text of the field shows which keys arrived, and that the page was not reloaded.
    open("<title>shown</title><body><input autofocus>");
    QVERIFY(titleBecomes(u"shown"_s));
    QTRY_VERIFY_WITH_TIMEOUT(engine()->focusProxy(), 30000);
    QWidget* keys = engine()->focusProxy();
    keys->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(keys->inputMethodQuery(Qt::ImEnabled).toBool(), 30000);
    QTest::keyClick(keys, Qt::Key_A);
    QTest::keyClick(keys, Qt::Key_N, Qt::ControlModifier);
    QTest::keyClick(keys, Qt::Key_R, Qt::ControlModifier);
    QTest::keyClick(keys, Qt::Key_F, Qt::AltModifier);
    QTest::keyClick(keys, Qt::Key_Left, Qt::AltModifier);
    QTest::keyClick(keys, Qt::Key_F5);
    QTest::keyClick(keys, Qt::Key_X);
    QTest::keyClick(keys, Qt::Key_Backspace);
    QTest::keyClick(keys, Qt::Key_B);
    QTRY_COMPARE_WITH_TIMEOUT(keys->inputMethodQuery(Qt::ImSurroundingText).toString(), u"ab"_s, 30000);
    QCOMPARE(triggered.size(), 0);
}

// The engine's widget used to be last in the window's tab order, after everything that follows the view.
void HtmlEngineTest::tabKeyGoesThroughTheView()
{
    auto* centre = new QWidget;
    auto* before = new QLineEdit(centre);
    view_->setParent(centre);
    auto* after = new QLineEdit(centre);
    auto* last = new QLineEdit(centre);
    before->setGeometry(0, 0, 300, 30);
    view_->setGeometry(0, 40, 300, 100);
    after->setGeometry(0, 150, 300, 30);
    last->setGeometry(0, 190, 300, 30);
    window_->setCentralWidget(centre);
    open("<p>text");
    QTRY_VERIFY_WITH_TIMEOUT(engine()->focusProxy(), 30000);
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    const auto viewHasKeys = [this] { return view_->isAncestorOf(QApplication::focusWidget()); };
    before->setFocus();
    QTest::keyClick(before, Qt::Key_Tab);
    QTRY_VERIFY_WITH_TIMEOUT(viewHasKeys(), 30000);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTRY_VERIFY_WITH_TIMEOUT(after->hasFocus(), 30000);
    QTest::keyClick(after, Qt::Key_Tab);
    QVERIFY(last->hasFocus());
    QTest::keyClick(last, Qt::Key_Tab);
    QVERIFY(before->hasFocus());
    QTest::keyClick(before, Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(last->hasFocus());
    QTest::keyClick(last, Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(after->hasFocus());
    QTest::keyClick(after, Qt::Key_Backtab, Qt::ShiftModifier);
    QTRY_VERIFY_WITH_TIMEOUT(viewHasKeys(), 30000);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QTRY_VERIFY_WITH_TIMEOUT(before->hasFocus(), 30000);
}

void HtmlEngineTest::escapeStopsTheSearchOnce()
{
    WindowFixture window;
    window.engineFolders = {QCoreApplication::applicationDirPath()};
    window.start();
    window.chooseTab(3);
    view_ = window.control<HtmlView>("IMGViewer");
    QTRY_VERIFY_WITH_TIMEOUT(view_->hasBrowser(), 30000);
    QTRY_VERIFY_WITH_TIMEOUT(engine() && engine()->focusProxy(), 30000);
    window.service.stall();
    window.type("Text7", u"apple"_s);
    QTest::mouseClick(window.control<QPushButton>("Command3"), Qt::LeftButton);
    QTRY_COMPARE(window.service.requests().size(), 1);
    QWidget* keys = engine()->focusProxy();
    keys->setFocus();
    QTest::keyClick(keys, Qt::Key_Escape);
    QTRY_COMPARE(window.socketState("ImgSock"), 0);
    QTest::keyClick(keys, Qt::Key_Escape); // there is nothing left to stop
    QCoreApplication::processEvents();
    QTRY_COMPARE(window.boxes.texts(), QStringList{u"User cancel the operation"_s});
    view_ = nullptr;
}

void HtmlEngineTest::shortcutsWorkExceptThoseOfThePage()
{
    WindowFixture window;
    window.engineFolders = {QCoreApplication::applicationDirPath()};
    window.start();
    window.type("Text7", u"apple"_s);
    const auto* strip = window.control<QTabBar>("TabStrip1");
    const auto pressInGallery = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        window.chooseTab(3);
        view_ = window.control<HtmlView>("IMGViewer");
        QTRY_VERIFY_WITH_TIMEOUT(view_->hasBrowser(), 30000);
        QTRY_VERIFY_WITH_TIMEOUT(engine() && engine()->focusProxy(), 30000);
        engine()->focusProxy()->setFocus();
        QVERIFY(view_->isAncestorOf(QApplication::focusWidget()));
        QTest::keyClick(window.main().windowHandle(), key, modifiers);
    };
    for (const auto& [key, modifiers] : {std::pair<Qt::Key, Qt::KeyboardModifiers>(Qt::Key_1, Qt::AltModifier),
                                         {Qt::Key_F5, Qt::NoModifier},
                                         {Qt::Key_N, Qt::ControlModifier},
                                         {Qt::Key_R, Qt::ControlModifier}}) {
        pressInGallery(key, modifiers);
        QCOMPARE(strip->currentIndex(), 2);
    }
    QVERIFY(window.service.requests().isEmpty());
    QVERIFY(window.boxes.boxes().isEmpty());
    pressInGallery(Qt::Key_1, Qt::ControlModifier);
    QCOMPARE(strip->currentIndex(), 0);
    pressInGallery(Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(strip->currentIndex(), 3);
    pressInGallery(Qt::Key_F1, Qt::NoModifier);
    QCOMPARE(window.shell.opened, std::vector<std::string>{"http://help.example/"});
    pressInGallery(Qt::Key_L, Qt::ControlModifier);
    QVERIFY(window.control<QLineEdit>("Text7")->hasFocus());
    QCOMPARE(window.control<QLineEdit>("Text7")->selectedText(), u"apple"_s);
    pressInGallery(Qt::Key_Q, Qt::ControlModifier);
    QVERIFY(!window.main().isVisible());
    view_ = nullptr;
}

int main(int argc, char** argv)
{
    return EngineFixture::run<HtmlEngineTest>(argc, argv);
}

#include "html_engine_test.moc"
