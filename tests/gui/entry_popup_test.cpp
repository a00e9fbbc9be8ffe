#include <QMenu>
#include <QPainter>

#include "HistoryFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// Tests the list of earlier entries below a field: its keys, the mouse, and its look.
class EntryPopupTest final : public HistoryFixture
{
    Q_OBJECT

private slots:
    void init() { makeWindow(); }
    void cleanup() { window_.reset(); }

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
        verifyOneSearchForTypedText();
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
        verifyOneSearchForTypedText();
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
        for (int i = 0; i < 30; ++i)
            content += "keywords\tword " + QByteArray::number(i) + "\n";
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
    void verifyOneSearchForTypedText()
    {
        QVERIFY(!QApplication::activePopupWidget());
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().contains("&q=ap "));
        waitForEnd(kTabs[0]);
        QCOMPARE(window_->service.requests().size(), 1);
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

QTEST_MAIN(EntryPopupTest)
#include "entry_popup_test.moc"
