#include <QMenu>
#include <QPainter>

#include "HistoryFixture.h"
#include "common/SearchHistory.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// The ends of the names of files that writers leave if they are interrupted.
#ifdef Q_OS_WIN
constexpr std::array<const char*, 2> kLeftByCrashes = {".tmp", ".tmp.aBcDeF"};
#else
constexpr std::array<const char*, 1> kLeftByCrashes = {".4711-0.tmp"};
#endif

QString numberedWord(std::size_t number)
{
    return u"word "_s + QString::number(number);
}

} // namespace

class HistoryTest final : public HistoryFixture
{
    Q_OBJECT

private slots:
    void init() { makeWindow(); }
    void cleanup() { window_.reset(); }

    void isOnUntilItIsSwitchedOff()
    {
        window_->start();
        QVERIFY(!QFile::exists(historyFile()));
        searchFor("Text1", "apple");
        QTRY_COMPARE(history(), QByteArray("keywords\tapple\n"));
        QVERIFY(!QFile::exists(window_->settingsFile()));
        waitForEnd(kTabs[0]);
        window_->type("Text1", {});
        pressLetters("ap");
        QCOMPARE(offered(), QStringList(u"apple"_s));
        press(Qt::Key_Escape);

        QVERIFY(isMarkedInMenu());
        menuEntry("historymnu")->trigger();
        QVERIFY(!menuEntry("historymnu")->isChecked());
        searchFor("Text1", "pear");
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
        window_->type("Text1", {});
        pressLetters("ap");
        press(Qt::Key_Down);
        QVERIFY(!QApplication::activePopupWidget());
    }

    // A person who has written something else than "on" wants no records, even if the word is not the program's. An
    // empty value used to mean "on".
    void anyOtherValueThanOnIsOff_data()
    {
        QTest::addColumn<QByteArray>("line");
        for (const char* line : {"Value=no", "Value=", "Value", "value=  ", "VALUE=\"\"", "Value=ON"})
            QTest::newRow(line) << QByteArray(line);
        QTest::newRow("the first of two") << QByteArray("Value=\nValue=on");
    }

    void anyOtherValueThanOnIsOff()
    {
        QFETCH(QByteArray, line);
        window_->writeSettings("[History]\n" + line + "\n");
        window_->start();
        searchFor("Text1", "apple");
        settle();
        QVERIFY(!QFile::exists(historyFile()));
        QVERIFY(!isMarkedInMenu());
        menuEntry("historymnu")->trigger();
        QVERIFY(isMarkedInMenu());
    }

    void aSectionWithoutTheValueIsOn()
    {
        window_->writeSettings("[History]\nValues=\n[Else]\nValue=\n");
        window_->start();
        QVERIFY(isMarkedInMenu());
    }

    // Once the start waited for one more reading of the settings file.
    void theSwitchIsReadWhenTheMenuIsOpened()
    {
        window_->start();
        QVERIFY(!menuEntry("historymnu")->isChecked());
        QVERIFY(isMarkedInMenu());
        window_->writeSettings("[History]\nValue=off\n");
        QVERIFY(!isMarkedInMenu());
    }

    void theMenuHasItsEntriesBehindTheStatedOne()
    {
        window_->start();
        const QList<QAction*> entries = window_->control<QMenu>("viewmnu")->actions();
        QCOMPARE(entries[0]->objectName(), u"proxymnu"_s);
        QVERIFY(entries[1]->isSeparator());
        QCOMPARE(entries[2]->text(), u"&Keep History"_s);
        QVERIFY(entries[2]->isCheckable());
        QCOMPARE(entries[3]->text(), u"&Clear History"_s);
    }

    void everyTabKeepsWhatWasSearchedForByItsKind()
    {
        startWithHistory();
        for (const TabControls& tab : kTabs) {
            const char* field = fillIn(*window_, tab);
            QTest::keyClick(window_->control<QLineEdit>(field), Qt::Key_Return);
            waitForEnd(tab);
        }
        QTRY_COMPARE(history(), QByteArray("keywords\teditor\nkeywords\tpear\nkeywords\tgreen pear\nkeywords\tapple\n"
                                           "address\t127.0.0.1/orchard\nfile\treadme\n"));
#ifndef Q_OS_WIN
        QCOMPARE(QFile::permissions(historyFile()),
                 QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
#endif
        QCOMPARE(QDir(window_->folder()).entryList({u"Quarrynet.*"_s}, QDir::Files).size(), 2);
    }

    void entriesComeNewestFirstAndByWhatTheyContain()
    {
        startWithHistory("keywords\tgreen apple\nkeywords\tpear\nkeywords\tAPPLE pie\nfile\tapple.txt\n");
        window_->control<QLineEdit>("Text1")->setFocus();
        pressLetters("apple");
        QCOMPARE(offered(), QStringList({u"green apple"_s, u"APPLE pie"_s}));
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"apple"_s);
        pressLetters(" p");
        QCOMPARE(offered(), QStringList({u"APPLE pie"_s}));
        pressLetters("x");
        QVERIFY(!QApplication::activePopupWidget());
        press(Qt::Key_Backspace);
        QCOMPARE(offered(), QStringList({u"APPLE pie"_s}));
    }

    void theDownKeyOffersAllInAnEmptyField()
    {
        startWithHistory("file\tb\nfile\ta\nkeywords\tapple\n");
        window_->chooseTab(5);
        press(Qt::Key_Down);
        QCOMPARE(offered(), QStringList({u"b"_s, u"a"_s}));
        QCOMPARE(window_->control<QLineEdit>("Text11")->text(), QString());
    }

    void enterWithoutAChosenEntrySearchesForWhatIsTyped()
    {
        startWithHistory("keywords\tapple\n");
        window_->control<QLineEdit>("Text1")->setFocus();
        pressLetters("ap");
        QCOMPARE(offered().size(), 1);
        press(Qt::Key_Return);
        QVERIFY(!QApplication::activePopupWidget());
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().contains("&q=ap "));
        waitForEnd(kTabs[0]);
        QCOMPARE(window_->service.requests().size(), 1);
    }

    void enterOnAChosenEntrySearchesForItOnce()
    {
        startWithHistory("keywords\tapple pie\nkeywords\tapple\n");
        window_->control<QLineEdit>("Text1")->setFocus();
        pressLetters("ap");
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s); // passing an entry does not take it
        press(Qt::Key_Up);
        press(Qt::Key_Return);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"apple pie"_s);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().contains("&q=apple+pie "));
        waitForEnd(kTabs[0]);
        QCOMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->boxes.boxes().isEmpty() ||
                window_->boxes.texts() == QStringList(u"No site found for that keyword/s"_s));
    }

    // Enter in the address field leads to the keywords, and does so from the list as well.
    void enterOnAChosenAddressLeadsToTheKeywords()
    {
        startWithHistory("address\texample.org\n");
        window_->chooseTab(2);
        window_->control<QLineEdit>("Text4")->setFocus();
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_Return);
        QCOMPARE(window_->control<QLineEdit>("Text4")->text(), u"example.org"_s);
        QVERIFY(window_->control<QLineEdit>("Text5")->hasFocus());
        QVERIFY(window_->service.requests().isEmpty());
    }

    void aClickTakesAnEntryWithoutSearching()
    {
        startWithHistory("keywords\tapple pie\nkeywords\tapple\n");
        press(Qt::Key_Down);
        auto* list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QVERIFY(list);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(1, 0)).center());
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"apple"_s);
        QVERIFY(window_->control<QLineEdit>("Text1")->hasFocus());
        QVERIFY(window_->service.requests().isEmpty());
    }

    void aClickIntoTheEmptyFieldWithTheFocusOpensTheList()
    {
        startWithHistory("keywords\tpear\nkeywords\tapple\n");
        auto* field = window_->control<QLineEdit>("Text1");
        QVERIFY(field->hasFocus());
        QTest::mouseClick(field, Qt::LeftButton);
        QCOMPARE(offered(), QStringList({u"pear"_s, u"apple"_s}));
        QCOMPARE(field->text(), QString());
        press(Qt::Key_Escape);

        QTest::mouseClick(field, Qt::RightButton); // its own menu
        if (QWidget* menu = QApplication::activePopupWidget())
            menu->close();
        pressLetters("x");
        QTest::mouseClick(field, Qt::LeftButton); // places the cursor
        QVERIFY(!QApplication::activePopupWidget());
        QTest::mousePress(field, Qt::LeftButton);
        field->clear();
        QTest::mouseRelease(field, Qt::LeftButton, {}, QPoint(-50, -50));
        QVERIFY(!QApplication::activePopupWidget());
    }

    // The list would cover what is below.
    void aClickThatBringsTheFocusOpensNothing()
    {
        startWithHistory("address\texample.org\nkeywords\tpear\n");
        window_->chooseTab(2);
        auto* keywords = window_->control<QLineEdit>("Text5");
        QVERIFY(!keywords->hasFocus());
        QTest::mouseClick(keywords, Qt::LeftButton);
        QVERIFY(keywords->hasFocus());
        QVERIFY(!QApplication::activePopupWidget());
        QTest::mouseClick(keywords, Qt::LeftButton);
        QCOMPARE(offered(), QStringList(u"pear"_s));
    }

    // Some platforms give the press that closes a list to the control below the pointer.
    void aClickIntoTheFieldClosesTheOpenList()
    {
        startWithHistory("keywords\tpear\n");
        auto* field = window_->control<QLineEdit>("Text1");
        QTest::mouseClick(field, Qt::LeftButton);
        QWidget* list = QApplication::activePopupWidget();
        QVERIFY(list);
        const QPoint inside = list->mapFromGlobal(field->mapToGlobal(field->rect().center()));
        QTest::mousePress(list, Qt::LeftButton, {}, inside);
        QVERIFY(!QApplication::activePopupWidget());
        QTest::mouseClick(field, Qt::LeftButton);
        QVERIFY(!QApplication::activePopupWidget());
        QTest::mouseClick(field, Qt::LeftButton);
        QVERIFY(QApplication::activePopupWidget());
    }

    void theRightButtonOffersToRemoveAnEntry()
    {
        startWithHistory("keywords\tc\nkeywords\tb\nkeywords\ta\n");
        press(Qt::Key_Down);
        auto* list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QVERIFY(list);
        QMenu* menu = menuAt(*list, list->visualRect(list->model()->index(1, 0)).center());
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions()[0]->text(), u"&Remove from History"_s);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[0]).center());
        QCOMPARE(offered(), QStringList({u"c"_s, u"a"_s}));
        QCOMPARE(history(), QByteArray("keywords\tc\nkeywords\ta\n"));
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), QString());

        menu = menuAt(*list, list->visualRect(list->model()->index(0, 0)).center());
        QVERIFY(menu);
        QTest::keyClick(menu, Qt::Key_Escape); // removes nothing, and stops nothing
        QCOMPARE(offered().size(), 2);
    }

    void tabGoesOnWithoutTakingTheChosenEntry()
    {
        startWithHistory("keywords\tapple\n");
        pressLetters("ap");
        press(Qt::Key_Down);
        press(Qt::Key_Tab);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s);
        QVERIFY(window_->control<QPushButton>("Command1")->hasFocus());
    }

    void escapeClosesTheListAndStopsOnce()
    {
        startWithHistory("keywords\tapple\n");
        window_->service.stall();
        searchFor("Text1", "pear");
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->type("Text1", {});
        pressLetters("ap");
        QCOMPARE(offered().size(), 1);
        press(Qt::Key_Escape);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->boxes.texts(), QStringList(u"User cancel the operation"_s));
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s);
    }

    void escapeOnlyClosesTheListWhileNothingRuns()
    {
        startWithHistory("keywords\tapple\n");
        pressLetters("ap");
        press(Qt::Key_Down);
        press(Qt::Key_Escape);
        QVERIFY(!QApplication::activePopupWidget());
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s);
        QVERIFY(window_->control<QLineEdit>("Text1")->hasFocus());
    }

    void shortcutsActWhileTheListIsOpen_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<int>("tab");
        QTest::newRow("Ctrl+2") << int(Qt::Key_2) << Qt::KeyboardModifiers(Qt::ControlModifier) << 2;
        QTest::newRow("Alt+5") << int(Qt::Key_5) << Qt::KeyboardModifiers(Qt::AltModifier) << 5;
        QTest::newRow("Ctrl+Tab") << int(Qt::Key_Tab) << Qt::KeyboardModifiers(Qt::ControlModifier) << 2;
    }

    void shortcutsActWhileTheListIsOpen()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(int, tab);
        startWithHistory("keywords\tapple\n");
        pressLetters("ap");
        press(Qt::Key_Down);
        QCOMPARE(offered().size(), 1);
        QTest::keyClick(keyboard(), static_cast<Qt::Key>(key), modifiers);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->control<QTabBar>("TabStrip1")->currentIndex(), tab - 1);
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s);
    }

    void searchKeysSearchOnceForTheTypedTextWhileTheListIsOpen_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("F5") << int(Qt::Key_F5) << Qt::KeyboardModifiers();
        QTest::newRow("Alt+S") << int(Qt::Key_S) << Qt::KeyboardModifiers(Qt::AltModifier);
    }

    void searchKeysSearchOnceForTheTypedTextWhileTheListIsOpen()
    {
        QFETCH(int, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        startWithHistory("keywords\tapple\n");
        pressLetters("ap");
        press(Qt::Key_Down);
        QCOMPARE(offered().size(), 1);
        QTest::keyClick(keyboard(), static_cast<Qt::Key>(key), modifiers);
        QVERIFY(!QApplication::activePopupWidget());
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().contains("&q=ap "));
        waitForEnd(kTabs[0]);
        QCOMPARE(window_->service.requests().size(), 1);
    }

    void editingKeysLeaveTheListOpen()
    {
        startWithHistory("keywords\tapple\n");
        pressLetters("ap");
        QTest::keyClick(keyboard(), Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(offered().size(), 1);
        QCOMPARE(window_->control<QLineEdit>("Text1")->selectedText(), u"ap"_s);
        QTest::keyClick(keyboard(), Qt::Key_Control, Qt::ControlModifier);
        QTest::keyClick(keyboard(), Qt::Key_Alt, Qt::AltModifier);
        QCOMPARE(offered().size(), 1);
    }

    void escapeStopsAtOnceWhenNoListIsOpen()
    {
        startWithHistory("keywords\tapple\n");
        window_->service.stall();
        searchFor("Text1", "pear");
        QTRY_COMPARE(window_->service.requests().size(), 1);
        press(Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList(u"User cancel the operation"_s));
    }

    void deleteRemovesTheChosenEntry()
    {
        startWithHistory("keywords\tc\nkeywords\tb\nkeywords\ta\n");
        press(Qt::Key_Down);
        press(Qt::Key_Delete); // nothing is chosen yet
        QCOMPARE(offered().size(), 3);
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_Delete);
        QCOMPARE(offered(), QStringList({u"c"_s, u"a"_s}));
        QCOMPARE(history(), QByteArray("keywords\tc\nkeywords\ta\n"));
        press(Qt::Key_Delete);
        QCOMPARE(offered(), QStringList({u"c"_s}));
        press(Qt::Key_Delete);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(history(), QByteArray());
    }

    void aRefusedSearchIsNotKept()
    {
        startWithHistory();
        QTest::keyClick(window_->control<QLineEdit>("Text1"), Qt::Key_Return); // no keywords
        window_->chooseTab(2);
        window_->type("Text4", u"example.org"_s);
        QTest::mouseClick(window_->control<QPushButton>("Command2"), Qt::LeftButton); // no keywords
        QCOMPARE(window_->boxes.boxes().size(), 2);
        settle();
        QVERIFY(!QFile::exists(historyFile()));
    }

    // While the proxy is on, the page check opens no connection.
    void aPageCheckThatDoesNotStartIsNotKept()
    {
        window_->useServiceAsProxy();
        window_->start();
        menuEntry("historymnu")->trigger();
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, kTabs[1])), Qt::Key_Return);
        settle();
        QVERIFY(!QFile::exists(historyFile()));
    }

    void anAddressWithAPasswordIsNotKept()
    {
        startWithHistory();
        window_->chooseTab(2);
        window_->type("Text4", u"user:secret@127.0.0.1"_s);
        window_->type("Text5", u"apple"_s);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Return);
        QTRY_COMPARE(history(), QByteArray("keywords\tapple\n"));
    }

    // As a tour does.
    void aWindowThatRemembersNothingNeitherWritesNorOffersEntries()
    {
        window_->remembers = false;
        startWithHistory("keywords\tapple\n");
        searchFor("Text1", "pear");
        waitForEnd(kTabs[0]);
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
        window_->type("Text1", {});
        pressLetters("a");
        QVERIFY(!QApplication::activePopupWidget());
    }

    void switchedOffItWritesAndOffersNothingAndKeepsWhatItHas()
    {
        startWithHistory("keywords\tapple\n");
        menuEntry("historymnu")->trigger();
        QVERIFY(!menuEntry("historymnu")->isChecked());
        searchFor("Text1", "pear");
        waitForEnd(kTabs[0]);
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
        window_->type("Text1", {});
        pressLetters("a");
        QVERIFY(!QApplication::activePopupWidget());
        menuEntry("historymnu")->trigger();
        pressLetters("p");
        QCOMPARE(offered(), QStringList(u"apple"_s));
    }

    void theSwitchOutlivesTheWindowAndLeavesOtherSettings()
    {
        window_->writeSettings("; mine\n[ProxyHost]\nValue=proxy.example\nOther=1\n");
        window_->start();
        menuEntry("historymnu")->trigger();
        QFile file(window_->settingsFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray settings = file.readAll().replace('\r', "");
        QVERIFY(settings.startsWith("; mine\n[ProxyHost]\nValue=proxy.example\nOther=1\n"));
        QVERIFY(settings.contains("[History]\nValue=off\n"));
        file.close();
        window_->start(); // another window in the same folder
        QVERIFY(!isMarkedInMenu());
        menuEntry("historymnu")->trigger();
        window_->start();
        QVERIFY(isMarkedInMenu());
    }

    void clearDeletesTheFileAndWhatACrashHasLeft()
    {
        startWithHistory("keywords\tapple\n");
        for (const char* name : kLeftByCrashes)
            makeFile(historyFile() + QLatin1String(name));
        press(Qt::Key_Down);
        QCOMPARE(offered().size(), 1);
        menuEntry("clearhistorymnu")->trigger();
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(QDir(window_->folder()).entryList({u"Quarrynet.history*"_s}, QDir::Files), QStringList());
        press(Qt::Key_Down);
        QVERIFY(!QApplication::activePopupWidget());
        menuEntry("clearhistorymnu")->trigger();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // They were deleted because their names begin like the history's.
    void clearLeavesTheUsersOwnFiles()
    {
        startWithHistory("keywords\tapple\n");
        QStringList own;
        for (const char* name : {".bak", ".backup", ".old", ".tmp.bak", ".4711.tmp", ".txt"}) {
            own.append(u"Quarrynet.history"_s + QLatin1String(name));
            makeFile(historyFile() + QLatin1String(name));
        }
        own.sort();
        menuEntry("clearhistorymnu")->trigger();
        QCOMPARE(QDir(window_->folder()).entryList({u"Quarrynet.history*"_s}, QDir::Files, QDir::Name), own);
    }

    void aHistoryThatCannotBeClearedIsReported()
    {
        startWithHistory();
        QVERIFY(QDir().mkpath(historyFile() + u"/folder"_s));
        menuEntry("clearhistorymnu")->trigger();
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts().front().contains(historyFile()));
    }

    void twoWindowsLoseNothing()
    {
        startWithHistory();
        searchFor("Text1", "apple");
        waitForEnd(kTabs[0]);
        QTRY_COMPARE(history(), QByteArray("keywords\tapple\n"));
        Main second({window_->hosts, window_->shell, window_->folder().toStdString(), {}, {}, {}});
        QVERIFY(second.load());
        second.show();
        auto* field = second.findChild<QLineEdit*>(u"Text1"_s);
        field->setText(u"pear"_s);
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE(history(), QByteArray("keywords\tpear\nkeywords\tapple\n"));
        window_->activate();
        searchFor("Text1", "quince");
        QTRY_COMPARE(history(), QByteArray("keywords\tquince\nkeywords\tpear\nkeywords\tapple\n"));
        // One window switches it off, and the other obeys.
        second.findChild<QAction*>(u"historymnu"_s)->trigger();
        waitForEnd(kTabs[0]);
        searchFor("Text1", "plum");
        settle();
        QCOMPARE(history(), QByteArray("keywords\tquince\nkeywords\tpear\nkeywords\tapple\n"));
    }

    void theListHasTheFieldsFontAtEverySize_data()
    {
        QTest::addColumn<int>("points");
        for (const int points : {7, 8, 10, 14, 20, 24})
            QTest::addRow("%d", points) << points;
    }

    void theListHasTheFieldsFontAtEverySize()
    {
        QFETCH(int, points);
        QByteArray content;
        for (std::size_t i = 0; i < 30; ++i)
            content += "keywords\t" + numberedWord(i).toLatin1() + "\n";
        startWithHistory(content);
        auto* field = window_->control<QLineEdit>("Text1");
        QFont font = field->font();
        font.setPointSize(points);
        field->setFont(font);
        press(Qt::Key_Down);
        auto* list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QVERIFY(list);
        QCOMPARE(list->font().pointSize(), points);
        QVERIFY(list->sizeHintForRow(0) >= QFontMetrics(list->font()).height());
        QCOMPARE(list->width(), field->width());
        QVERIFY(list->viewport()->height() >= 10 * list->sizeHintForRow(0) ||
                list->height() + 100 > list->screen()->availableGeometry().height() / 2);
        savePicture(points, *list);
    }

private:
    static void makeFile(const QString& path)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("keywords\tapple\n") > 0);
    }

    // Presses the right button in the list as a user does. Returns the menu, or null.
    static QMenu* menuAt(QAbstractItemView& list, const QPoint& at)
    {
        QTest::mousePress(list.viewport(), Qt::RightButton, {}, at);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, list.viewport()->mapToGlobal(at));
        QApplication::sendEvent(list.viewport(), &event);
        QTest::mouseRelease(list.viewport(), Qt::RightButton, {}, at);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    bool isMarkedInMenu()
    {
        emit window_->control<QMenu>("viewmnu")->aboutToShow();
        return menuEntry("historymnu")->isChecked();
    }

    // With QUARRYNET_PICTURES set, saves what the test has made there, for people to look at.
    void savePicture(int points, QWidget& list)
    {
        const QString folder = qEnvironmentVariable("QUARRYNET_PICTURES");
        if (folder.isEmpty())
            return;
        QPixmap picture = window_->main().grab();
        const QPoint at = window_->main().mapFromGlobal(list.mapToGlobal(QPoint()));
        QPainter painter(&picture);
        painter.drawPixmap(at, list.grab());
        picture.save(folder + QStringLiteral("/history-%1.png").arg(points));
    }
};

QTEST_MAIN(HistoryTest)
#include "history_test.moc"
