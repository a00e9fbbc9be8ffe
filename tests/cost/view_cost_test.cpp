#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QItemSelection>
#include <QKeyEvent>

#include "platform/ListView.h"
#include "platform/PlainPageView.h"
#include "platform/text_border.h"
#include "platform/text_folding.h"
#include "tests/cost/step_counter.h"

/// Compares the cost of the views for single and double numbers of rows, pictures or bytes. The toolkit's loops do not
/// count, but its queries to the model do, and the memory that it copies and allocates.
using namespace quarrynet;
using namespace quarrynet::cost;

namespace {

constexpr std::size_t kRows = 10'000;
constexpr int kColumns = 5;

class NoPictures final : public PictureSource
{
public:
    void fetch(const QUrl&, QObject*, std::function<void(const Picture&)>) override {}
};

class ViewCost : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static int count = 1;
        static char name[] = "view_cost_test";
        static char* arguments[] = {name, nullptr};
        application_ = new QApplication(count, arguments);
    }
    static void TearDownTestSuite() { delete std::exchange(application_, nullptr); }

    static std::vector<ListViewModel::Row> rowsOf(std::size_t count, const std::string& text)
    {
        return std::vector<ListViewModel::Row>(count, ListViewModel::Row(kColumns, text));
    }

    static std::unique_ptr<ListView> shownList(std::vector<ListViewModel::Row> rows)
    {
        auto list = std::make_unique<ListView>();
        list->resize(600, 300);
        list->setColumns(QString(kColumns, u'x').split(QString(), Qt::SkipEmptyParts));
        list->setColumnWidths({100, 100, 100, 100, 100});
        list->show();
        list->setRows(std::move(rows));
        paint(*list);
        return list;
    }

    static void paint(QWidget& widget)
    {
        QImage image(widget.size(), QImage::Format_RGB32);
        widget.render(&image);
    }

    /// Returns the cost of `action` on a visible list of rows.
    static void expectProportionalList(const std::string& what, const std::function<void(ListView&)>& action,
                                       double most = kMostGrowth)
    {
        expectProportional(
            what,
            [&](std::size_t count) {
                const std::unique_ptr<ListView> list = shownList(rowsOf(count, "some text of a cell"));
                return stepsOf([&] { action(*list); });
            },
            kRows, most);
    }

private:
    static inline QApplication* application_ = nullptr;
};

} // namespace

TEST_F(ViewCost, ShowingRows)
{
    for (const std::size_t length : {1U, 100U}) {
        expectProportional(
            "rows of " + std::to_string(length) + " bytes a cell",
            [&](std::size_t count) {
                const std::vector<ListViewModel::Row> rows = rowsOf(count, std::string(length, 'x'));
                return stepsOf([&] { shownList(rows); });
            },
            kRows);
    }
    expectProportional("a long cell", [](std::size_t length) {
        const std::vector<ListViewModel::Row> rows = rowsOf(1, std::string(length, 'x'));
        return stepsOf([&] { shownList(rows); });
    });
}

TEST_F(ViewCost, WhatShowsASmallPartAsksForNoMore)
{
    constexpr double kTheSame = 1.2;
    expectProportionalList(
        "painting", [](ListView& list) { paint(list); }, kTheSame);
    expectProportionalList(
        "scrolling to the end",
        [](ListView& list) {
            list.scrollToBottom();
            paint(list);
        },
        kTheSame);
}

TEST_F(ViewCost, ResizingSelectingAndCopying)
{
    expectProportionalList("resizing", [](ListView& list) {
        list.resize(700, 400);
        paint(list);
    });
    expectProportionalList("selecting all", [](ListView& list) {
        list.selectAll();
        paint(list);
        EXPECT_EQ(list.selectedRows().size(), list.rows().size());
    });
    expectProportionalList("asking for every second row", [](ListView& list) {
        QItemSelection selection;
        for (int row = 0; row < list.model()->rowCount(); row += 2)
            selection.append(QItemSelectionRange(list.model()->index(row, 0), list.model()->index(row, kColumns - 1)));
        list.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
        EXPECT_EQ(list.selectedRows().size(), (list.rows().size() + 1) / 2);
    });
    expectProportionalList("copying", [](ListView& list) {
        list.selectAll();
        QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
        QApplication::sendEvent(&list, &copy);
        EXPECT_FALSE(QApplication::clipboard()->text().isEmpty());
    });
    expectProportionalList("clearing", [](ListView& list) { list.clear(); });
}

TEST_F(ViewCost, SortingAndFiltering)
{
    const auto mixedRows = [](std::size_t count) {
        std::vector<ListViewModel::Row> rows;
        for (std::size_t i = 0; i < count; ++i)
            rows.push_back({"name " + std::to_string(i * 7919 % count), std::to_string(i * 31 % count) + " KB"});
        return rows;
    };
    for (const int column : {0, 1, 4}) {
        expectProportional(
            "sorting by column " + std::to_string(column),
            [&](std::size_t count) {
                const std::unique_ptr<ListView> list = shownList(mixedRows(count));
                list->setFigureColumn(1);
                list->selectAll();
                return stepsOf([&] {
                    list->sortRows(ListViewModel::Sorting{column, Qt::DescendingOrder});
                    paint(*list);
                    EXPECT_EQ(list->selectedRows().size(), list->rows().size());
                });
            },
            kRows);
    }
    expectProportional(
        "filtering",
        [&](std::size_t count) {
            ListViewModel model({QStringLiteral("A"), QStringLiteral("B")}, nullptr);
            model.setRows(mixedRows(count));
            return stepsOf([&] {
                model.arrange({QStringLiteral("7"), QStringLiteral("k")}, std::nullopt);
                EXPECT_LT(model.rowCount(), static_cast<int>(count));
            });
        },
        kRows);
    expectProportionalList("the rows to save", [](ListView& list) { csvText(list.table()); });
    expectProportionalList("keeping the rows of a stopped search", [](ListView& list) {
        list.clear();
        EXPECT_TRUE(list.isSavable());
    });
}

TEST_F(ViewCost, PlainGallery)
{
    const auto show = [](std::size_t pictures, const std::string& text) {
        NoPictures source;
        PlainPageView view({source, [](const QByteArray&) {}, [](const QString&) {}, [](Zoom) {}}, nullptr);
        view.resize(600, 300);
        view.show();
        return stepsOf([&] {
            view.showPage({}, std::vector<GalleryPicture>(pictures, {text, "http://engine.example/" + text}));
            paint(view);
        });
    };
    for (const std::string pattern : {"x", "&amp;", "&", "\xff", "\xc3\xa9", "<table>", " "}) {
        expectProportional(
            "addresses of a gallery, " + pattern, [&](std::size_t length) { return show(10, filled(pattern, length)); },
            64 * 1024);
    }
    expectProportional(
        "pictures of a gallery", [&](std::size_t pictures) { return show(pictures, "host/a.jpg"); }, kRows);
}

TEST_F(ViewCost, BytesToText)
{
    for (const std::string pattern : {"x", "\xc3\xa9", "\xff", "\xc3", "\n", "\xf0\x9f\x98\x80", "e\xcc\x81",
                                      "\xcc\x81", "\xe2\x80\xae", "x\xff", "\xe2\x80\x8d"}) {
        const auto make = [&](std::size_t length) { return filled(pattern, length); };
        expectProportionalText("text, " + pattern, make, [](const std::string& bytes) { toText(bytes); });
        expectProportionalText("line, " + pattern, make, [](const std::string& bytes) { toLine(bytes); });
        expectProportionalText("bytes, " + pattern, make, [](const std::string& bytes) { toBytes(toText(bytes)); });
        expectProportionalText("folding, " + pattern, make,
                               [](const std::string& bytes) { folded(QString::fromUtf8(bytes)); });
    }
}
