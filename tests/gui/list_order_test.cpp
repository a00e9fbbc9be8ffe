#include <QCollator>
#include <QHeaderView>

#include "clicks.h"
#include "filled_lists.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

void clickHeader(ListView& list, int column)
{
    QHeaderView* header = list.header();
    const int x = header->sectionViewportPosition(column) + header->sectionSize(column) / 2;
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->viewport()->height() / 2));
}

QStringList reversed(QStringList list)
{
    std::reverse(list.begin(), list.end());
    return list;
}

} // namespace

/// Tests how rows are sorted, also while some are hidden, and that they lead to the same addresses all the same.
class ListOrderTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }
    void cleanup() { window_.reset(); }

    void aThirdClickOnACaptionRestoresThePagesOrder_data() { addListRows(); }
    void aThirdClickOnACaptionRestoresThePagesOrder()
    {
        QFETCH(int, tag);
        ListView* list = filled();
        const QStringList page = window_->rows(tabOf(tag).list);
        const QRect place = list->geometry();
        const QRect captions = list->header()->geometry();
        const int width = list->columnWidth(0);
        QStringList sorted = columnOf(*list, 0);
        QCollator collator; // whether 2 comes before 10 depends on the system and its language
        collator.setNumericMode(true);
        std::stable_sort(sorted.begin(), sorted.end(), [&collator](const QString& a, const QString& b) {
            return collator.compare(a.toCaseFolded(), b.toCaseFolded()) < 0;
        });

        clickHeader(*list, 0);
        QCOMPARE(columnOf(*list, 0), sorted);
        QVERIFY(list->header()->isSortIndicatorShown());
        QCOMPARE(list->accessibleDescription(), u"Sorted by %1, ascending"_s.arg(caption(*list)));
        clickHeader(*list, 0);
        QCOMPARE(reversed(columnOf(*list, 0)), sorted);
        QVERIFY(columnOf(*list, 0) != sorted);
        QCOMPARE(list->accessibleDescription(), u"Sorted by %1, descending"_s.arg(caption(*list)));
        clickHeader(*list, 0);
        QCOMPARE(window_->rows(tabOf(tag).list), page);
        QVERIFY(!list->header()->isSortIndicatorShown());
        QCOMPARE(list->accessibleDescription(), QString());

        QCOMPARE(list->geometry(), place);
        QCOMPARE(list->header()->geometry(), captions);
        QCOMPARE(list->columnWidth(0), width);
    }

    // Two of three fast clicks are a double click for the toolkit.
    void fastClicksCountAsClicks()
    {
        ListView* list = fillList(*window_, tabOf(1));
        const int x = list->header()->sectionViewportPosition(0) + 20;
        QWidget* captions = list->header()->viewport();
        doubleClick(captions, QPoint(x, captions->height() / 2));
        QCOMPARE(list->sorting(), (ListViewModel::Sorting{0, Qt::DescendingOrder}));
    }

    void anEmptyListIsNotSorted()
    {
        auto* list = window_->control<ListView>("ListView1");
        clickHeader(*list, 0);
        QVERIFY(!list->sorting());
        QVERIFY(!list->header()->isSortIndicatorShown());
    }

    void sizesAreSortedAsNumbersAndUnknownOnesAreLast()
    {
        auto* list = window_->control<ListView>("ListView4");
        window_->chooseTab(5);
        list->setRows({{"a", "", "<Dir>"},
                       {"b", "", "1,000 KB"},
                       {"c", "", "1.5 MB"},
                       {"d", "", "900"},
                       {"e", "", ""},
                       {"f", "", "<Dir>"},
                       {"g", "", "1000 kb"}});
        clickHeader(*list, 2);
        QCOMPARE(columnOf(*list, 0).join(QString()), u"dbgcaef"_s);
        clickHeader(*list, 2);
        QCOMPARE(columnOf(*list, 0).join(QString()), u"cbgdaef"_s);
    }

    void textsAreSortedRegardlessOfCaseAndEmptyOnesAreLast()
    {
        auto* list = window_->control<ListView>("ListView1");
        list->setRows({{"b"}, {""}, {"C"}, {"a"}, {" "}, {"A"}, {"B"}});
        clickHeader(*list, 0);
        QCOMPARE(columnOf(*list, 0), u"a|A|b|B|C|| "_s.split(u'|'));
        clickHeader(*list, 0);
        QCOMPARE(columnOf(*list, 0), u"C|b|B|a|A|| "_s.split(u'|'));
    }

    void sortingWorksFromTheMenu_data() { addListRows(); }
    void sortingWorksFromTheMenu()
    {
        ListView* list = filled();
        const QStringList page = columnOf(*list, 0);
        const auto choose = [&](int entry) {
            QTest::keyClick(list, Qt::Key_Menu);
            auto* sorting = menuOf(*list)->findChild<QMenu*>(u"ListSort"_s);
            sorting->actions()[entry]->trigger();
            menuOf(*list)->close();
            QTRY_VERIFY(!menuOf(*list));
        };
        choose(2); // after the page's order and a line
        const QStringList ascending = columnOf(*list, 0);
        choose(3);
        QCOMPARE(columnOf(*list, 0), reversed(ascending));
        QCOMPARE(list->sorting(), (ListViewModel::Sorting{0, Qt::DescendingOrder}));
        choose(0);
        QCOMPARE(columnOf(*list, 0), page);
    }

    // The hidden lists keep the page's order.
    void sortedRowsLeadWhereTheyDidBefore()
    {
        for (const int tag : {1, 5}) {
            ListView* list = fillList(*window_, tabOf(tag));
            const QStringList page = window_->rows(tabOf(tag).list);
            QHash<QString, std::string> addresses;
            for (int row = 0; row < page.size(); ++row)
                addresses[page[row]] = opened(*list, row);
            clickHeader(*list, 0);
            clickHeader(*list, 0);
            const QStringList sorted = window_->rows(tabOf(tag).list);
            QVERIFY(sorted != page);
            for (int row = 0; row < sorted.size(); ++row)
                QCOMPARE(opened(*list, row), addresses[sorted[row]]);
        }
    }

    void sortedAndFilteredDownloadsAreResolvedByTheirOwnLinks()
    {
        ListView* list = fillList(*window_, tabOf(4));
        const std::vector<std::string> links = window_->control<HiddenListBox>("List10")->items();
        const QStringList names = columnOf(*list, 0);
        clickHeader(*list, 0);
        clickHeader(*list, 0);
        filterRows(*list, names[1].section(u' ', 0, 0));
        const QString name = columnOf(*list, 0)[0];
        const auto row = static_cast<std::size_t>(names.indexOf(name));
        window_->service.stall();
        const qsizetype before = window_->service.requests().size();
        clickRow(*list, 0);
        doubleClick(list->viewport(), list->visualRect(list->model()->index(0, 0)).center());
        QTRY_VERIFY(window_->service.requests().size() > before);
        const QByteArray tail = QByteArray::fromStdString(links[row]).split('=').last();
        QVERIFY2(window_->service.lastRequestLine().contains(tail), window_->service.lastRequestLine());
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
    }

    void severalRowsAreOpenedInTheOrderThatIsShown()
    {
        ListView* list = fillList(*window_, tabOf(1));
        clickHeader(*list, 1);
        clickHeader(*list, 1);
        list->selectAll();
        QTest::keyClick(list, Qt::Key_Return);
        std::vector<std::string> expected;
        for (const QString& address : columnOf(*list, 0))
            expected.push_back(address.toStdString());
        QCOMPARE(window_->shell.opened, expected);
    }

    void theSelectionFollowsItsRows()
    {
        ListView* list = fillList(*window_, tabOf(1));
        clickRow(*list, 0);
        clickRow(*list, 3, Qt::ControlModifier);
        clickHeader(*list, 1);
        std::vector<std::size_t> selected = list->selectedRows();
        std::sort(selected.begin(), selected.end());
        QCOMPARE(selected, (std::vector<std::size_t>{0, 3}));
        filterRows(*list, QString::fromStdString(list->rows()[3][0]));
        QCOMPARE(list->model()->rowCount(), 1);
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{3});
        filterRows(*list, QString::fromStdString(list->rows()[1][0]));
        QCOMPARE(list->model()->rowCount(), 1);
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>());
        filterRows(*list, {}); // rows that come back are not selected again
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>());
    }

    void theLineAndASortingWorkTogether()
    {
        auto* list = window_->control<ListView>("ListView1");
        list->setRows({{"c1"}, {"x"}, {"a1"}, {"b1"}});
        clickHeader(*list, 0);
        filterRows(*list, u"1"_s);
        QCOMPARE(columnOf(*list, 0).join(QString()), u"a1b1c1"_s);
        clickHeader(*list, 0);
        QCOMPARE(columnOf(*list, 0).join(QString()), u"c1b1a1"_s);
        clickHeader(*list, 0);
        QCOMPARE(columnOf(*list, 0).join(QString()), u"c1a1b1"_s);
        filterRows(*list, {});
        QCOMPARE(columnOf(*list, 0).join(QString()), u"c1xa1b1"_s);
    }

    void bothEndWithTheNextRows_data() { addListRows(); }
    void bothEndWithTheNextRows()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        ListView* list = filled();
        const QStringList page = window_->rows(tab.list);
        const int top = list->viewport()->geometry().top();
        clickHeader(*list, 0);
        filterRows(*list, u"a"_s);
        fillList(*window_, tab);
        QCOMPARE(window_->rows(tab.list), page);
        QVERIFY(!list->sorting());
        QVERIFY(!list->header()->isSortIndicatorShown());
        QVERIFY(!filterWords(*list)->isVisible());
        QCOMPARE(list->viewport()->geometry().top(), top);
        // The line is empty when it opens again.
        QTest::keyClick(list, Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(filterWords(*list)->text(), QString());
        QCOMPARE(window_->rows(tab.list), page);
    }

    void bothEndWithTheNextPage()
    {
        ListView* list = fillList(*window_, tabOf(1));
        auto* slider = window_->control<QSlider>("Slider1");
        slider->setEnabled(true);
        clickHeader(*list, 0);
        filterRows(*list, u"a"_s);
        QTest::keyClick(slider, Qt::Key_Right);
        QVERIFY(!list->sorting());
        QVERIFY(!filterWords(*list)->isVisible());
        QTRY_VERIFY(!list->rows().empty());
        QCOMPARE(list->model()->rowCount(), static_cast<int>(list->rows().size()));
    }

    void tenThousandRowsKeepTheirAddresses()
    {
        auto* list = window_->control<ListView>("ListView1");
        std::vector<ListViewModel::Row> rows;
        for (int i = 0; i < 10'000; ++i)
            rows.push_back({"http://host/" + std::to_string((i * 7919) % 10'000), "row " + std::to_string(i)});
        list->setRows(rows);
        clickHeader(*list, 0);
        filterRows(*list, u"77"_s);
        list->selectAll();
        for (const std::size_t row : list->selectedRows())
            QVERIFY((rows[row][0] + rows[row][1]).find("77") != std::string::npos);
        QVERIFY(list->selectedRows().size() > 100);
    }

    // The toolkit used to compare each of many selected ranges with each part of the one that replaced them: four times
    // the time for twice the rows.
    void oneRangeReplacesManyAsAWhole()
    {
        auto* list = window_->control<ListView>("ListView1");
        list->setRows(std::vector<ListViewModel::Row>(1000, ListViewModel::Row{"http://host/", "row"}));
        QItemSelection apart;
        for (int row = 0; row < 1000; row += 2)
            apart.select(list->model()->index(row, 0), list->model()->index(row, 1));
        list->selectionModel()->select(apart, QItemSelectionModel::ClearAndSelect);
        QCOMPARE(list->selectedRows().size(), std::size_t(500));
        qsizetype ranges = 0;
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, list,
                [&](const QItemSelection& selected) { ranges += selected.size(); });
        list->selectAll();
        QCOMPARE(list->selectedRows().size(), std::size_t(1000));
        QCOMPARE(ranges, 1);
    }

private:
    ListView* filled()
    {
        QFETCH(int, tag);
        return fillList(*window_, tabOf(tag));
    }

    static QString caption(const ListView& list) { return list.model()->headerData(0, Qt::Horizontal).toString(); }

    std::string opened(ListView& list, int row)
    {
        window_->shell.opened.clear();
        clickRow(list, row);
        QTest::keyClick(&list, Qt::Key_Return);
        return window_->shell.opened.empty() ? std::string() : window_->shell.opened.back();
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(ListOrderTest)
#include "list_order_test.moc"
