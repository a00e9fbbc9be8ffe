#pragma once

#include <string>
#include <vector>

#include <QAbstractTableModel>
#include <QItemSelection>
#include <QTreeView>

namespace quarrynet {

/// The rows of a list view, kept as bytes and converted to text only when a row is read.
class ListViewModel final : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ListViewModel)

public:
    /// A row's cells; missing cells at its end are empty.
    using Row = std::vector<std::string>;

    ListViewModel(QStringList headers, QObject* parent);

    void setRows(std::vector<Row> rows);
    const std::vector<Row>& rows() const { return rows_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QStringList headers_;
    std::vector<Row> rows_;
};

/// A list view in report form: columns with headers, whole rows selected, and columns that keep their share of the
/// width when the list is resized. A double click on one of several selected rows applies to all of them and keeps the
/// selection. The copy keys copy the selected rows as shown, with tabs between cells and line feeds between rows.
class ListView final : public QTreeView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ListView)

public:
    explicit ListView(QWidget* parent = nullptr);

    /// Sets the columns. Call once, before rows are shown.
    void setColumns(const QStringList& headers);

    /// Sets each column's width in pixels, for the list's current width.
    void setColumnWidths(const std::vector<int>& widths);

    /// Returns each column's width as a fraction of the list's.
    const std::vector<double>& columnShares() const { return shares_; }

    /// Sets them. Does nothing unless there is a usable number for each column: no column narrower than a
    /// five-hundredth of the list or ten times as wide.
    void setColumnShares(const std::vector<double>& shares);

    /// Returns whether the columns differ from what setColumnWidths() has set.
    bool areColumnsMoved() const { return shares_ != designShares_; }

    /// Gives the columns their share of the width as setColumnWidths() has set it.
    void resetColumns() { setColumnShares(designShares_); }

    /// Returns whether the captions fit in columns of the widths that were set. A list without widths has room.
    bool captionsFit() const;

    /// Gives each of two columns half the list's width minus 50 twips for the frame.
    void halveColumns();

    void setRows(std::vector<ListViewModel::Row> rows);
    const std::vector<ListViewModel::Row>& rows() const;
    void clear() { setRows({}); }

    /// Returns the indexes of the selected rows, in ascending order.
    std::vector<std::size_t> selectedRows() const;

signals:
    /// A double click anywhere in the list, or Enter while it has the focus.
    void doubleClicked();
    void mouseMoved();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void shareWidth();
    void copySelection() const;

    ListViewModel* model_ = nullptr;
    std::vector<double> shares_; // each column's fraction of the list's width
    std::vector<double> designShares_;
    bool sharing_ = false;
    QItemSelection beforePress_;       // the selection when a button was pressed on a selected row
    QPersistentModelIndex pressed_;    // a cell of that row
    bool releasesDoubleClick_ = false; // the next release belongs to a double click
};

} // namespace quarrynet
