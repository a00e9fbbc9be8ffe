#pragma once

#include <string>
#include <vector>

#include <QAbstractTableModel>
#include <QItemSelection>
#include <QTreeView>

namespace quarrynet {

/// The rows of a list view: bytes as they were cut, turned into text only when a row is looked at.
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

/// A list view in report form: columns with headers, whole rows selected, columns keeping their share of the width when
/// the list is resized. A double click on one of several selected rows is one on all of them, and leaves them selected.
/// The copy keys copy the selected rows as they are shown, cells parted by tabs and rows by line feeds.
class ListView final : public QTreeView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ListView)

public:
    explicit ListView(QWidget* parent = nullptr);

    /// Sets the columns; to be called once, before rows are shown.
    void setColumns(const QStringList& headers);

    /// Sets each column's width in pixels, at the list's present width.
    void setColumnWidths(const std::vector<int>& widths);

    /// Gives each of two columns half the list's width, less 50 twips for the frame.
    void halveColumns();

    void setRows(std::vector<ListViewModel::Row> rows);
    const std::vector<ListViewModel::Row>& rows() const;
    void clear() { setRows({}); }

    /// Indexes of the selected rows, ascending.
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
    std::vector<double> shares_; // each column's width as a part of the list's
    bool sharing_ = false;
    QItemSelection beforePress_;       // what was selected when a button went down on a selected row
    QPersistentModelIndex pressed_;    // a cell of that row
    bool releasesDoubleClick_ = false; // the release to come is a double click's
};

} // namespace quarrynet
