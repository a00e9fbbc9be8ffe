#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QAbstractTableModel>
#include <QMimeData>
#include <QStringList>

namespace quarrynet {

/// The rows of a list view, kept as bytes in the page's order and converted to text only when a row is read.
///
/// A filter and a sorting select which rows are shown and in which order. They leave the rows themselves as they are,
/// so an index into rows() means the same row whatever is shown.
class ListViewModel final : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ListViewModel)

public:
    /// A row's cells; missing cells at its end are empty. Cells beyond the columns are kept, but not shown.
    using Row = std::vector<std::string>;

    struct Sorting
    {
        int column;
        Qt::SortOrder order;
        bool operator==(const Sorting&) const = default;
    };

    /// Rows, and the indexes of those that are shown, in their order. Without indexes all are shown as they are.
    struct Shown
    {
        std::vector<Row> rows;
        std::optional<std::vector<std::uint32_t>> order;
    };

    /// Makes the data of a drag from the indexes (into rows()) of the dragged rows; null if they cannot be dragged.
    using DragData = std::function<std::unique_ptr<QMimeData>(const std::vector<std::size_t>&)>;

    ListViewModel(QStringList headers, QObject* parent);

    /// Replaces the rows and shows all of them in their order.
    void setRows(std::vector<Row> rows);
    const std::vector<Row>& rows() const { return shown_.rows; }
    const Shown& shown() const { return shown_; }

    /// Removes all rows and returns them with the order in which they were shown.
    Shown take();

    /// Cells of this column are compared as numbers (see cellFigure), others as texts.
    void setFigureColumn(int column) { figureColumn_ = column; }

    /// Makes rows draggable.
    void setDragData(DragData make) { dragData_ = std::move(make); }

    /// Shows the rows that contain each of `words` in some cell, regardless of letter case, in the order of `sorting`,
    /// or in the page's order without one. Rows that compare equal keep the page's order; cells without a number in the
    /// figures' column, and empty cells in the others, come last in both directions.
    void arrange(const QStringList& words, std::optional<Sorting> sorting);

    /// Returns the index into rows() of a row that is shown.
    std::size_t originalRow(int shown) const;

    /// Returns the text of a cell of rows()[row] as it is shown.
    QString cell(std::size_t row, int column) const { return cell(shown_.rows[row], column); }
    static QString cell(const Row& row, int column);

    const QStringList& headers() const { return headers_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

private:
    bool contains(std::size_t row, const QStringList& words) const;
    void sort(std::vector<std::uint32_t>& rows, Sorting sorting) const;

    QStringList headers_;
    Shown shown_;
    int figureColumn_ = -1;
    DragData dragData_;
};

} // namespace quarrynet
