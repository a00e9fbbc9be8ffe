#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QToolBar>

#include "DialogDriver.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

class CommandsTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        window_->service.stall();
    }

    void cleanup() { window_.reset(); }

    void enterPressesTheFocusedStartButton_data() { addTabRows(); }

    void enterPressesTheFocusedStartButton()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        window_->chooseTab(tag);
        for (const TabControls::Typed& typed : tab.typed) {
            if (typed.field)
                window_->type(typed.field, QString::fromLatin1(typed.text));
        }
        auto* button = window_->control<QPushButton>(tab.button);
        button->setFocus();
        QVERIFY(button->hasFocus());
        QTest::keyClick(button, Qt::Key_Return);
        QVERIFY(!button->isEnabled());
        QTRY_COMPARE(window_->service.requests().size(), 1);
    }

    // Tabs

    void aClickOnATabShowsItsFrameAlone_data() { addTabRows(); }

    void aClickOnATabShowsItsFrameAlone()
    {
        QFETCH(int, tag);
        window_->chooseTab(tag == 1 ? 2 : 1);
        window_->chooseTab(tag);
        for (const TabControls& tab : kTabs)
            QCOMPARE(window_->control<QFrame>(tab.frame)->isVisible(), tab.tag == tag);
    }

    void theTagIsReadAsANumber()
    {
        auto* strip = window_->control<QTabBar>("TabStrip1");
        strip->setTabData(4, u"03"_s);
        window_->chooseTab(5);
        QVERIFY(window_->control<QFrame>("IMG")->isVisible());
    }

    void anyOtherTagChangesNothing_data()
    {
        QTest::addColumn<QVariant>("tag");
        QTest::newRow("0") << QVariant(u"0"_s);
        QTest::newRow("6") << QVariant(u"6"_s);
        QTest::newRow("negative") << QVariant(u"-1"_s);
        QTest::newRow("a word") << QVariant(u"two"_s);
        QTest::newRow("too large for a number") << QVariant(u"99999999999999999999"_s);
        QTest::newRow("none") << QVariant();
    }

    void anyOtherTagChangesNothing()
    {
        QFETCH(QVariant, tag);
        window_->chooseTab(2);
        window_->control<QTabBar>("TabStrip1")->setTabData(3, tag);
        window_->chooseTab(4);
        for (const TabControls& tab : kTabs)
            QCOMPARE(window_->control<QFrame>(tab.frame)->isVisible(), tab.tag == 2);
    }

    void arrowKeysOnTheStripSwitchTabs()
    {
        auto* strip = window_->control<QTabBar>("TabStrip1");
        strip->setFocus();
        QTest::keyClick(strip, Qt::Key_Right);
        QVERIFY(window_->control<QFrame>("SPS")->isVisible());
        QVERIFY(!window_->control<QFrame>("STI")->isVisible());
        QVERIFY(strip->hasFocus()); // so that the arrow keys keep working
    }

    // Toolbar

    void aToolbarButtonOpensItsAddress_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<std::string>("address");
        QTest::newRow("E-mail Author") << 7 << std::string("mailto:author@home.example");
        QTest::newRow("Webpage") << 8 << std::string("http://home.example/");
    }

    void aToolbarButtonOpensItsAddress()
    {
        QFETCH(int, index);
        QFETCH(std::string, address);
        clickToolbar(index);
        QCOMPARE(window_->shell.opened, std::vector<std::string>{address});
    }

    void theToolbarsHelpDoesNothing()
    {
        DialogDriver dialogs([](QDialog&) {});
        clickToolbar(6);
        QCoreApplication::processEvents();
        QVERIFY(window_->shell.opened.empty());
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(dialogs.seen().isEmpty());
        QVERIFY(!QApplication::activePopupWidget());
    }

    void theToolbarsProxyButtonShowsTheOptionsOwnedByTheWindow()
    {
        QWidget* owner = nullptr;
        bool modal = false;
        DialogDriver dialogs([&](QDialog& dialog) {
            owner = dialog.parentWidget();
            modal = dialog.isModal();
        });
        clickToolbar(2);
        QCOMPARE(dialogs.seen(), QStringList{u"Proxy"_s});
        QCOMPARE(owner, &window_->main());
        QVERIFY(modal);
    }

    void theToolbarsStopStops()
    {
        startSearch(1);
        clickToolbar(4);
        QCOMPARE(window_->boxes.texts(), QStringList{stopped_});
        QCOMPARE(window_->socketState("NetSock"), 0);
    }

    void separatorsDoNothing()
    {
        auto* toolbar = window_->control<QToolBar>("Toolbar1");
        DialogDriver dialogs([](QDialog&) {});
        for (const int index : {1, 3, 5})
            QTest::mouseClick(toolbar->widgetForAction(toolbar->actions()[index - 1]), Qt::LeftButton);
        QVERIFY(window_->shell.opened.empty());
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(dialogs.seen().isEmpty());
    }

    void aboutBelongsToTheWindowOnlyFromTheToolbar_data()
    {
        QTest::addColumn<bool>("fromToolbar");
        QTest::newRow("toolbar") << true;
        QTest::newRow("menu") << false;
    }

    void aboutBelongsToTheWindowOnlyFromTheToolbar()
    {
        QFETCH(bool, fromToolbar);
        QWidget* owner = nullptr;
        bool modal = false;
        bool closedByOk = false;
        DialogDriver dialogs([&](QDialog& dialog) {
            owner = dialog.parentWidget();
            modal = dialog.isModal();
            QTest::mouseClick(dialog.findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);
            closedByOk = !dialog.isVisible();
        });
        if (fromToolbar)
            clickToolbar(9);
        else
            window_->control<QAction>("aboutmnu")->trigger();
        QCOMPARE(dialogs.seen(), QStringList{u"frmAbout"_s});
        QCOMPARE(owner, fromToolbar ? &window_->main() : nullptr);
        QVERIFY(modal);
        QVERIFY(closedByOk);
    }

    // Menus

    void helpEntriesOpenTheirAddresses_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<std::string>("address");
        QTest::newRow("Contents") << u"contentmnu"_s << std::string("http://help.example/");
        QTest::newRow("Email Author") << u"emailauth"_s << std::string("mailto:author@home.example");
        QTest::newRow("Webpage") << u"webpage"_s << std::string("http://home.example/");
    }

    void helpEntriesOpenTheirAddresses()
    {
        QFETCH(QString, entry);
        QFETCH(std::string, address);
        window_->control<QAction>(qPrintable(entry))->trigger();
        QCOMPARE(window_->shell.opened, std::vector<std::string>{address});
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void helpEntriesAnswerToTheirLetters_data()
    {
        QTest::addColumn<int>("letter");
        QTest::addColumn<std::string>("address");
        QTest::newRow("Contents") << int(Qt::Key_C) << std::string("http://help.example/");
        QTest::newRow("Email Author") << int(Qt::Key_E) << std::string("mailto:author@home.example");
        QTest::newRow("Webpage") << int(Qt::Key_W) << std::string("http://home.example/");
    }

    void helpEntriesAnswerToTheirLetters()
    {
        QFETCH(int, letter);
        QFETCH(std::string, address);
        auto* menu = openMenu("helpmnu", Qt::Key_H);
        QTest::keyClick(menu, Qt::Key(letter));
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{address});
    }

    void theHelpEntryItselfOnlyOpensItsMenu()
    {
        auto* menu = openMenu("helpmnu", Qt::Key_H);
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(!menu->isVisible());
        QVERIFY(window_->shell.opened.empty());
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void viewProxyShowsTheOptionsOwnedByTheWindow()
    {
        QWidget* owner = nullptr;
        DialogDriver dialogs([&](QDialog& dialog) { owner = dialog.parentWidget(); });
        QTest::keyClick(openMenu("viewmnu", Qt::Key_V), Qt::Key_P);
        QTRY_COMPARE(dialogs.seen(), QStringList{u"Proxy"_s});
        QCOMPARE(owner, &window_->main());
    }

    void theStopEntryOfTheMenuBarStops()
    {
        startSearch(1);
        QMenuBar* bar = window_->main().menuBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(window_->control<QAction>("stopmnu")).center());
        QTRY_COMPARE(window_->boxes.texts(), QStringList{stopped_});
    }

    void exitClosesTheWindowAndEndsTheProgram_data()
    {
        QTest::addColumn<bool>("searching");
        QTest::newRow("idle") << false;
        QTest::newRow("while a search runs") << true;
    }

    void exitClosesTheWindowAndEndsTheProgram()
    {
        QFETCH(bool, searching);
        if (searching)
            startSearch(1);
        const QSignalSpy ended(qApp, &QGuiApplication::lastWindowClosed);
        QMetaObject::invokeMethod(
            &window_->main(), [this] { QTest::keyClick(openMenu("filmnu", Qt::Key_F), Qt::Key_X); },
            Qt::QueuedConnection);
        QCOMPARE(QApplication::exec(), 0); // returns only when the program ends
        QVERIFY(!window_->main().isVisible());
        QCOMPARE(ended.size(), 1);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // Enter

    void enterInAFieldStartsItsTabsSearch_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<int>("key");
        for (const TabControls& tab : kTabs) {
            QTest::addRow("%s, Return", tab.frame) << tab.tag << int(Qt::Key_Return);
            QTest::addRow("%s, Enter of the keypad", tab.frame) << tab.tag << int(Qt::Key_Enter);
        }
    }

    void enterInAFieldStartsItsTabsSearch()
    {
        QFETCH(int, tag);
        QFETCH(int, key);
        const TabControls& tab = tabOf(tag);
        auto* field = window_->control<QLineEdit>(fillIn(*window_, tab));
        const QString text = field->text();
        QTest::keyClick(field, Qt::Key(key));
        QVERIFY(!window_->control<QPushButton>(tab.button)->isEnabled());
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY2(window_->service.lastRequestLine().startsWith(tab.requestLine), window_->service.lastRequestLine());
        QCOMPARE(field->text(), text);
    }

    void theSearchButtonStartsTheSameSearch_data() { addTabRows(); }

    void theSearchButtonStartsTheSameSearch()
    {
        QFETCH(int, tag);
        startSearch(tag);
        QVERIFY(window_->service.lastRequestLine().startsWith(tabOf(tag).requestLine));
    }

    void enterInTheAddressMovesToTheKeywords()
    {
        window_->chooseTab(2);
        window_->type("Text4", u"127.0.0.1/"_s);
        QTest::keyClick(window_->control<QLineEdit>("Text4"), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget()->objectName(), u"Text5"_s);
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->socketState("PageSock"), 0);
        QVERIFY(window_->control<QPushButton>("Command2")->isEnabled());
    }

    // Escape

    void escapeStopsOnceWhereverItIsPressed_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("focused");
        for (const TabControls& tab : kTabs) {
            for (const TabControls::Typed& typed : tab.typed) {
                if (typed.field)
                    QTest::addRow("%s", typed.field) << tab.tag << QString::fromLatin1(typed.field);
            }
            QTest::addRow("%s", tab.list) << tab.tag << QString::fromLatin1(tab.list);
            if (tab.slider)
                QTest::addRow("%s", tab.slider) << tab.tag << QString::fromLatin1(tab.slider);
            QTest::addRow("button of %s", tab.frame) << tab.tag << QString::fromLatin1(tab.button);
            QTest::addRow("strip before %s", tab.frame) << tab.tag << u"TabStrip1"_s;
            QTest::addRow("window with %s", tab.frame) << tab.tag << QString();
        }
        QTest::newRow("Combo1") << 2 << u"Combo1"_s;
    }

    void escapeStopsOnceWhereverItIsPressed()
    {
        QFETCH(int, tag);
        QFETCH(QString, focused);
        startSearch(tag);
        if (focused.isEmpty()) {
            if (QApplication::focusWidget())
                QApplication::focusWidget()->clearFocus();
        } else {
            auto* control = window_->control<QWidget>(qPrintable(focused));
            control->setEnabled(true); // during a first search the slider and the button are disabled
            control->setFocus();
            QVERIFY(control == QApplication::focusWidget() || control->isAncestorOf(QApplication::focusWidget()));
        }
        QTest::keyClick(window_->main().windowHandle(), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{stopped_});
        if (tag != 5) // its connection stays open
            QCOMPARE(window_->socketState(tabOf(tag).socket), 0);
    }

    void escapeAfterAClickOnTheButtonStops_data() { addTabRows(); }

    // The button is disabled then, so the toolkit has moved the focus elsewhere.
    void escapeAfterAClickOnTheButtonStops()
    {
        QFETCH(int, tag);
        startSearch(tag);
        QTest::keyClick(window_->main().windowHandle(), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{stopped_});
    }

    void escapeWhileNothingRunsIsSilent()
    {
        for (const TabControls& tab : kTabs) {
            fillIn(*window_, tab);
            QTest::keyClick(window_->main().windowHandle(), Qt::Key_Escape);
        }
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"apple"_s);
    }

    void escapeInAnOpenMenuOrListClosesThatOnly()
    {
        startSearch(2);
        auto* menu = openMenu("viewmnu", Qt::Key_V);
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(!menu->isVisible());
        auto* modes = window_->control<QComboBox>("Combo1");
        modes->showPopup();
        QTRY_VERIFY(QApplication::activePopupWidget());
        QTest::keyClick(modes->view(), Qt::Key_Escape);
        QTRY_VERIFY(!QApplication::activePopupWidget());
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(window_->socketState("PageSock") != 0);
    }

    // Input changes

    void aChangeOfAFieldEnablesItsTabsButtonAlone_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("field");
        for (const TabControls& tab : kTabs) {
            for (const TabControls::Typed& typed : tab.typed) {
                if (typed.field)
                    QTest::addRow("%s", typed.field) << tab.tag << QString::fromLatin1(typed.field);
            }
        }
    }

    void aChangeOfAFieldEnablesItsTabsButtonAlone()
    {
        QFETCH(int, tag);
        QFETCH(QString, field);
        window_->chooseTab(tag);
        for (const QString& text : {u"x"_s, QString()}) {
            for (const TabControls& tab : kTabs)
                window_->control<QPushButton>(tab.button)->setEnabled(false);
            window_->type(qPrintable(field), text);
            for (const TabControls& tab : kTabs)
                QCOMPARE(window_->control<QPushButton>(tab.button)->isEnabled(), tab.tag == tag);
        }
    }

private:
    void startSearch(int tag)
    {
        const qsizetype before = window_->service.requests().size();
        fillIn(*window_, tabOf(tag));
        QTest::mouseClick(window_->control<QPushButton>(tabOf(tag).button), Qt::LeftButton);
        QTRY_COMPARE(window_->service.requests().size(), before + 1);
    }

    void clickToolbar(int index)
    {
        auto* toolbar = window_->control<QToolBar>("Toolbar1");
        QTest::mouseClick(toolbar->widgetForAction(toolbar->actions()[index - 1]), Qt::LeftButton);
    }

    QMenu* openMenu(const char* name, Qt::Key letter)
    {
        auto* menu = window_->control<QMenu>(name);
        QTest::keyClick(window_->control<QTabBar>("TabStrip1"), letter, Qt::AltModifier);
        [menu] { QTRY_VERIFY(menu->isVisible()); }();
        return menu;
    }

    const QString stopped_ = u"User cancel the operation"_s;
    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(CommandsTest)
#include "commands_test.moc"
