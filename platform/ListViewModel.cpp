#include "platform/ListViewModel.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

#include <QCollator>

#include "common/cell_figure.h"
#include "platform/text_border.h"
#include "platform/text_folding.h"

namespace quarrynet {

namespace {

// The part of a text that decides its place among others, in UTF-16 units. It bounds the memory of the keys.
constexpr qsizetype kLongestKey = 256;

// Sorts `rows` by their keys (keys[i] belongs to rows[i]). A row without a key comes last in both directions.
template <class Key, class Less>
void sortByKeys(std::vector<std::uint32_t>& rows, const std::vector<std::optional<Key>>& keys, Qt::SortOrder order,
                Less less)
{
    std::vector<std::size_t> places(rows.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
        if (!keys[a] || !keys[b])
            return keys[a].has_value() && !keys[b].has_value();
        return order == Qt::AscendingOrder ? less(*keys[a], *keys[b]) : less(*keys[b], *keys[a]);
    });
    std::vector<std::uint32_t> sorted;
    sorted.reserve(rows.size());
    for (const std::size_t place : places)
        sorted.push_back(rows[place]);
    rows = std::move(sorted);
}

} // namespace

ListViewModel::ListViewModel(QStringList headers, QObject* parent)
    : QAbstractTableModel(parent), headers_(std::move(headers))
{}

void ListViewModel::setRows(std::vector<Row> rows)
{
    if (rows.empty() && shown_.rows.empty())
        return;
    // The view lays out all rows in one block of memory, and crashes if it cannot get it. This allocation throws before
    // that, where the caller can catch the exception.
    constexpr std::size_t kLayoutOfARow = 128; // bytes; about twice the actual size
    std::vector<char>().reserve(rows.size() * kLayoutOfARow);
    beginResetModel();
    shown_ = {std::move(rows), std::nullopt};
    endResetModel();
}

ListViewModel::Shown ListViewModel::take()
{
    beginResetModel();
    Shown taken = std::exchange(shown_, {});
    endResetModel();
    return taken;
}

void ListViewModel::arrange(const QStringList& words, std::optional<Sorting> sorting)
{
    std::optional<std::vector<std::uint32_t>> order;
    if (!words.isEmpty() || sorting) {
        QStringList foldedWords;
        for (const QString& word : words)
            foldedWords.append(folded(word));
        order.emplace();
        for (std::size_t row = 0; row < shown_.rows.size(); ++row) {
            if (words.isEmpty() || contains(row, foldedWords))
                order->push_back(static_cast<std::uint32_t>(row));
        }
        if (sorting)
            sort(*order, *sorting);
    }
    beginResetModel();
    shown_.order = std::move(order);
    endResetModel();
}

bool ListViewModel::contains(std::size_t row, const QStringList& words) const
{
    QString text;
    for (int column = 0; column < columnCount(); ++column)
        text += cell(row, column) + u'\n'; // no word of a filter has a line end, so none matches across cells
    text = folded(text);
    return std::all_of(words.begin(), words.end(), [&](const QString& word) { return text.contains(word); });
}

void ListViewModel::sort(std::vector<std::uint32_t>& rows, Sorting sorting) const
{
    if (sorting.column == figureColumn_) {
        std::vector<std::optional<double>> keys;
        keys.reserve(rows.size());
        for (const std::uint32_t row : rows)
            keys.push_back(cellFigure(cell(row, sorting.column).toStdString()));
        sortByKeys(rows, keys, sorting.order, std::less<>());
        return;
    }
    QCollator collator;
    collator.setNumericMode(true);
#ifdef Q_OS_WIN
    // The end of the toolkit's sort keys is not initialized there, so equal texts have different keys.
    using Key = QString;
    const auto keyOf = [](const QString& text) { return text; };
    const auto less = [&collator](const Key& a, const Key& b) { return collator.compare(a, b) < 0; };
#else
    using Key = QCollatorSortKey;
    const auto keyOf = [&collator](const QString& text) { return collator.sortKey(text); };
    const auto less = std::less<>();
#endif
    std::vector<std::optional<Key>> keys;
    keys.reserve(rows.size());
    for (const std::uint32_t row : rows) {
        const QString text = folded(cell(row, sorting.column).left(kLongestKey)).trimmed();
        if (text.isEmpty())
            keys.emplace_back();
        else
            keys.emplace_back(keyOf(text));
    }
    sortByKeys(rows, keys, sorting.order, less);
}

std::size_t ListViewModel::originalRow(int shown) const
{
    const auto row = static_cast<std::size_t>(shown);
    return shown_.order ? (*shown_.order)[row] : row;
}

QString ListViewModel::cell(const Row& row, int column)
{
    const auto index = static_cast<std::size_t>(column);
    return index < row.size() ? toLine(row[index]) : QString();
}

int ListViewModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid())
        return 0;
    return static_cast<int>(shown_.order ? shown_.order->size() : shown_.rows.size());
}

int ListViewModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

QVariant ListViewModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid())
        return {};
    return cell(originalRow(index.row()), index.column());
}

QVariant ListViewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return headers_.value(section);
}

Qt::ItemFlags ListViewModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.isValid() && dragData_ ? flags | Qt::ItemIsDragEnabled : flags;
}

QMimeData* ListViewModel::mimeData(const QModelIndexList& indexes) const
{
    if (!dragData_)
        return nullptr;
    std::vector<int> dragged;
    for (const QModelIndex& index : indexes) {
        if (index.column() == 0)
            dragged.push_back(index.row());
    }
    std::sort(dragged.begin(), dragged.end()); // as they are shown
    std::vector<std::size_t> rows;
    rows.reserve(dragged.size());
    for (const int row : dragged)
        rows.push_back(originalRow(row));
    return dragData_(rows).release();
}

} // namespace quarrynet
