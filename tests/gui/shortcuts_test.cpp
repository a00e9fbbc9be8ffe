#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QTextBrowser>
#include <QToolBar>
#include <QWindow>

#include "DialogDriver.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::HtmlView;

/// Tests the keys of the window that no menu entry has.
class ShortcutsTest final : public QObject
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

    void digitsShowTheirTabs_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<int>("modifier");
        for (const TabControls& tab : kTabs) {
            QTest::addRow("Ctrl+%d", tab.tag) << tab.tag << int(Qt::ControlModifier);
            QTest::addRow("Alt+%d", tab.tag) << tab.tag << int(Qt::AltModifier);
            QTest::addRow("Ctrl+%d of the keypad", tab.tag) << tab.tag << int(Qt::ControlModifier | Qt::KeypadModifier);
        }
    }

    void digitsShowTheirTabs()
    {
        QFETCH(int, tag);
        QFETCH(int, modifier);
        window_->chooseTab(tag == 1 ? 2 : 1);
        press(Qt::Key(Qt::Key_0 + tag), Qt::KeyboardModifiers(modifier));
        QCOMPARE(front(), tag);
        for (const TabControls& tab : kTabs)
            QCOMPARE(window_->control<QFrame>(tab.frame)->isVisible(), tab.tag == tag);
    }

    void otherDigitsDoNothing()
    {
        window_->chooseTab(2);
        for (const Qt::Key key : {Qt::Key_0, Qt::Key_6, Qt::Key_9}) {
            press(key, Qt::ControlModifier);
            press(key, Qt::AltModifier);
        }
        QCOMPARE(front(), 2);
    }

    // Windows types a character by its number with them.
    void altWithDigitsOfTheKeypadDoesNothing()
    {
        press(Qt::Key_3, Qt::AltModifier | Qt::KeypadModifier);
        QCOMPARE(front(), 1);
    }

    void tabsGoRound_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("forward") << int(Qt::Key_Tab) << int(Qt::ControlModifier) << QList<int>{2, 3, 4, 5, 1, 2};
        const int back = Qt::ControlModifier | Qt::ShiftModifier;
        QTest::newRow("back") << int(Qt::Key_Tab) << back << QList<int>{5, 4, 3, 2, 1, 5};
        QTest::newRow("back, as X11 says it") << int(Qt::Key_Backtab) << back << QList<int>{5, 4, 3, 2, 1, 5};
    }

    void tabsGoRound()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QList<int>, expected);
        QList<int> seen;
        for (qsizetype i = 0; i < expected.size(); ++i) {
            press(Qt::Key(key), Qt::KeyboardModifiers(modifiers));
            seen.append(front());
        }
        QCOMPARE(seen, expected);
    }

    void keysWorkWhereverTheFocusIs_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("focused");
        for (const TabControls& tab : kTabs) {
            for (const char* control : {tab.typed[0].field, tab.typed[1].field, tab.list, tab.slider, tab.button}) {
                if (control)
                    QTest::addRow("%s", control) << tab.tag << QString::fromLatin1(control);
            }
            QTest::addRow("strip before %s", tab.frame) << tab.tag << u"TabStrip1"_s;
            QTest::addRow("window with %s", tab.frame) << tab.tag << QString();
        }
        QTest::newRow("Combo1") << 2 << u"Combo1"_s;
    }

    void keysWorkWhereverTheFocusIs()
    {
        QFETCH(int, tag);
        QFETCH(QString, focused);
        const int other = tag == 5 ? 1 : tag + 1;
        const auto digit = Qt::Key(Qt::Key_0 + other);
        focus(tag, focused);
        press(digit, Qt::ControlModifier);
        QCOMPARE(front(), other);
        focus(tag, focused);
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(front(), other);
        focus(tag, focused);
        press(Qt::Key_F1);
        QCOMPARE(window_->shell.opened, std::vector<std::string>{"http://help.example/"});
        focus(tag, focused);
        press(Qt::Key_L, Qt::ControlModifier);
        QCOMPARE(QApplication::focusWidget()->objectName(), QLatin1String(tabOf(tag).typed[0].field));
        if (focused == u"IMGViewer"_s)
            return; // the gallery keeps the rest for its page
        focus(tag, focused);
        press(digit, Qt::AltModifier);
        QCOMPARE(front(), other);
    }

    void controlLSelectsTheText_data() { addTabRows(); }

    void controlLSelectsTheText()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        fillIn(*window_, tab);
        window_->control<QPushButton>(tab.button)->setFocus();
        press(Qt::Key_L, Qt::ControlModifier);
        auto* field = window_->control<QLineEdit>(tab.typed[0].field);
        QVERIFY(field->hasFocus());
        QCOMPARE(field->selectedText(), QString::fromLatin1(tab.typed[0].text));
        QVERIFY(window_->service.requests().isEmpty());
    }

    void fieldsKeepTheirOwnKeys()
    {
        window_->type("Text1", u"green apple"_s);
        press(Qt::Key_A, Qt::ControlModifier);
        auto* field = window_->control<QLineEdit>("Text1");
        QCOMPARE(field->selectedText(), u"green apple"_s);
        press(Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(field->text(), QString());
        press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(field->text(), u"green apple"_s);
        press(Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(field->cursorPosition(), 6);
        press(Qt::Key_5);
        QCOMPARE(field->text(), u"green 5apple"_s);
        QCOMPARE(front(), 1);
    }

    // F5

    void f5RepeatsTheSearch_data() { addTabRows(); }

    void f5RepeatsTheSearch()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        window_->service.answerWith(pageOf(tab));
        fillIn(*window_, tab);
        for (int times = 1; times <= 2; ++times) {
            press(Qt::Key_F5);
            QTRY_COMPARE(window_->service.requests().size(), times);
            QVERIFY2(times > 1 || window_->service.lastRequestLine().startsWith(tab.requestLine),
                     window_->service.lastRequestLine());
            QTRY_VERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
        }
    }

    void f5DoesNothingWhileTheButtonIsGrey_data() { addTabRows(); }

    void f5DoesNothingWhileTheButtonIsGrey()
    {
        QFETCH(int, tag);
        fillIn(*window_, tabOf(tag));
        press(Qt::Key_F5);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(!window_->control<QPushButton>(tabOf(tag).button)->isEnabled());
        press(Qt::Key_F5);
        QCOMPARE(window_->service.openConnections(), 1);
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(window_->socketState(tabOf(tag).socket) == 7);
    }

    void f5ChecksTheFieldsAsTheButtonDoes_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("text");
        for (const TabControls& tab : kTabs)
            QTest::addRow("%s", tab.frame)
                << tab.tag
                << (tab.tag == 2 ? u"Both Fields Are Mandatory!!!"_s : u"Please enter keyword/s to search!!!"_s);
    }

    void f5ChecksTheFieldsAsTheButtonDoes()
    {
        QFETCH(int, tag);
        QFETCH(QString, text);
        window_->chooseTab(tag);
        // Behind the box, the key must do nothing.
        window_->boxes.beforeAnswer = [this](QMessageBox& box) {
            QTest::keyClick(&box, Qt::Key_F5);
            press(Qt::Key_F5);
        };
        press(Qt::Key_F5);
        QCOMPARE(window_->boxes.texts(), QStringList{text});
        QVERIFY(window_->service.requests().isEmpty());
    }

    // F1 and Ctrl+Q

    void onlyTheKeysThatStepTabsRepeatWhileHeld()
    {
        const auto shortcuts = window_->main().findChildren<QShortcut*>();
        QVERIFY(shortcuts.size() >= 16);
        for (const QShortcut* shortcut : shortcuts) {
            const bool stepsTabs = shortcut->key()[0].key() == Qt::Key_Tab;
            QCOMPARE(shortcut->autoRepeat(), stepsTabs);
        }
    }

    void theToolbarsHelpStaysIdle()
    {
        const auto* toolbar = window_->control<QToolBar>("Toolbar1");
        QVERIFY(toolbar->actions()[5]->shortcuts().isEmpty());
        QCOMPARE(toolbar->actions()[5]->toolTip(), u"Help"_s);
    }

    void controlQEndsTheProgram()
    {
        const QSignalSpy ended(qApp, &QGuiApplication::lastWindowClosed);
        // The key is only pressed. Its release would handle events once more, after the one that ends the program; on
        // Windows the toolkit's loop then sleeps until the next timer, which is 30 seconds away.
        const auto pressOnly = [this] {
            QTest::keyPress(window_->main().windowHandle(), Qt::Key_Q, Qt::ControlModifier);
        };
        QMetaObject::invokeMethod(&window_->main(), pressOnly, Qt::QueuedConnection);
        QCOMPARE(QApplication::exec(), 0); // returns only when the program ends
        QVERIFY(!window_->main().isVisible());
        QCOMPARE(ended.size(), 1);
    }

    // Menus, dialogs

    void menusKeepTheirCaptionsAndLetters()
    {
        for (const auto& [name, caption] :
             {std::pair("exitmnu", u"E&xit"_s), std::pair("contentmnu", u"&Contents"_s)}) {
            QCOMPARE(window_->control<QAction>(name)->text(), caption);
            QVERIFY(window_->control<QAction>(name)->shortcut().isEmpty());
        }
        for (const auto& [name, letter] : {std::pair("filmnu", Qt::Key_F), std::pair("viewmnu", Qt::Key_V)}) {
            press(Qt::Key_2, Qt::AltModifier);
            press(letter, Qt::AltModifier);
            auto* menu = window_->control<QMenu>(name);
            QTRY_VERIFY(menu->isVisible());
            press(Qt::Key_4, Qt::ControlModifier);
            QCOMPARE(front(), 2);
            QTest::keyClick(menu, Qt::Key_Escape);
            QTRY_VERIFY(!menu->isVisible());
        }
    }

    // Some styles open the menu bar when Alt is released.
    void altReleasedBeforeTheDigitOpensNoMenu()
    {
        QWindow* handle = window_->main().windowHandle();
        QTest::keyPress(handle, Qt::Key_Alt, Qt::AltModifier);
        QTest::keyPress(handle, Qt::Key_3, Qt::AltModifier);
        QTest::keyRelease(handle, Qt::Key_Alt);
        QTest::keyRelease(handle, Qt::Key_3);
        QCOMPARE(front(), 3);
        QVERIFY(!window_->main().menuBar()->activeAction());
        QCOMPARE(QApplication::focusWidget()->objectName(), u"Text7"_s);
    }

    void nothingActsBehindADialog()
    {
        window_->type("Text1", u"apple"_s);
        DialogDriver dialogs([this](QDialog& dialog) {
            for (QWindow* target : {dialog.windowHandle(), window_->main().windowHandle()}) {
                QTest::keyClick(target, Qt::Key_3, Qt::ControlModifier);
                QTest::keyClick(target, Qt::Key_3, Qt::AltModifier);
                QTest::keyClick(target, Qt::Key_Tab, Qt::ControlModifier);
                QTest::keyClick(target, Qt::Key_L, Qt::ControlModifier);
                for (const Qt::Key key : {Qt::Key_F1, Qt::Key_F5})
                    QTest::keyClick(target, key);
                QTest::keyClick(target, Qt::Key_Q, Qt::ControlModifier);
            }
            QVERIFY(dialog.isVisible());
        });
        window_->control<QAction>("proxymnu")->trigger();
        QCOMPARE(dialogs.seen(), QStringList{u"Proxy"_s});
        QCOMPARE(front(), 1);
        QVERIFY(window_->main().isVisible());
        QVERIFY(window_->shell.opened.empty());
        QVERIFY(window_->service.requests().isEmpty());
    }

    // The gallery

    void theGalleryKeepsThePagesKeys_data()
    {
        QTest::addColumn<bool>("started");
        QTest::newRow("plain view") << true;
        QTest::newRow("before the view has started") << false;
    }

    void theGalleryKeepsThePagesKeys()
    {
        QFETCH(bool, started);
        auto* view = window_->control<HtmlView>("IMGViewer");
        window_->type("Text7", u"pear"_s);
        window_->control<QTabBar>("TabStrip1")->setCurrentIndex(2);
        if (started)
            QTRY_VERIFY(view->findChild<QTextBrowser*>());
        QCOMPARE(view->findChild<QTextBrowser*>() != nullptr, started);
        view->setFocus();
        QVERIFY(view->hasFocus() || view->isAncestorOf(QApplication::focusWidget()));
        // Delivers nothing but the key, so that the view does not start in between.
        const auto isKept = [view](Qt::Key key, Qt::KeyboardModifiers modifiers) {
            QWidget* target = view->hasFocus() ? view : QApplication::focusWidget();
            QKeyEvent event(QEvent::ShortcutOverride, key, modifiers);
            event.ignore();
            QCoreApplication::sendEvent(target, &event);
            return event.isAccepted();
        };
        for (int i = 0; i < 5; ++i) {
            QVERIFY(isKept(Qt::Key(Qt::Key_1 + i), Qt::AltModifier));
            QVERIFY(!isKept(Qt::Key(Qt::Key_1 + i), Qt::ControlModifier));
        }
        QVERIFY(isKept(Qt::Key_F5, Qt::NoModifier));
        QVERIFY(isKept(Qt::Key_N, Qt::ControlModifier));
        QVERIFY(isKept(Qt::Key_R, Qt::ControlModifier));
        for (const Qt::Key key : {Qt::Key_L, Qt::Key_Q, Qt::Key_Tab})
            QVERIFY(!isKept(key, Qt::ControlModifier));
        QVERIFY(!isKept(Qt::Key_F1, Qt::NoModifier));
        press(Qt::Key_F5);
        press(Qt::Key_1, Qt::AltModifier);
        QCOMPARE(front(), 3);
        QVERIFY(window_->service.requests().isEmpty());
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

private:
    int front() { return window_->control<QTabBar>("TabStrip1")->currentIndex() + 1; }

    // Presses a key as the system reports it: to the window, which finds the control with the focus.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window_->main().windowHandle(), key, modifiers);
    }

    void focus(int tag, const QString& control)
    {
        window_->chooseTab(tag);
        if (control.isEmpty()) {
            if (QApplication::focusWidget())
                QApplication::focusWidget()->clearFocus();
            return;
        }
        auto* widget = window_->control<QWidget>(qPrintable(control));
        widget->setEnabled(true); // before a first search the slider is disabled
        widget->setFocus();
        QVERIFY(widget == QApplication::focusWidget() || widget->isAncestorOf(QApplication::focusWidget()));
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(ShortcutsTest)
#include "shortcuts_test.moc"
