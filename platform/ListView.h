#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QItemSelection>
#include <QTreeView>

#include "common/table_text.h"
#include "platform/ListViewModel.h"

namespace quarrynet {

class FilterLine;
class ListHeader;

/// A list view in report form: columns with headers, whole rows selected, and columns that keep their share of the
/// width when the list is resized. A double click on one of several selected rows applies to all of them and keeps the
/// selection.
///
/// A click on a caption sorts by that column, a second one in the other direction, a third one restores the page's
/// order. openFilter() opens a line that hides rows. Both end when the rows are replaced. The right button and the menu
/// key open a menu with the list's commands (see showListMenu). Selected rows can be dragged as addresses. A command
/// that runs out of memory has a message box and changes nothing.
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

    /// Returns each column's width as a fraction of the list's, or the closest one that setColumnShares() accepts.
    std::vector<double> columnShares() const;

    /// Sets each column's width as a fraction of the list's. Ignores all of them unless each is usable: no column
    /// narrower than a five-hundredth of the list or ten times as wide.
    void setColumnShares(const std::vector<double>& shares);

    /// Returns whether the columns differ from what setColumnWidths() has set.
    bool areColumnsMoved() const { return shares_ != designShares_; }

    /// Gives the columns their share of the width as setColumnWidths() has set it.
    void resetColumns() { setColumnShares(designShares_); }

    /// Returns whether the captions fit in columns of the widths that were set. A list without widths has room.
    bool captionsFit() const;

    /// Gives each of two columns half the list's width minus 50 twips for the frame.
    void halveColumns();

    /// Names the cell of each row that holds its address; it may lie beyond the columns. Call at most once.
    void setAddressColumn(std::size_t column);

    /// Names the column that is sorted by numbers.
    void setFigureColumn(int column);

    /// Sets whether the whole text of a cell that is cut off is its tool tip.
    void setCellTips(bool on) { cellTips_ = on; }

    /// Replaces the rows. `subject` are the words that were searched for.
    void setRows(std::vector<ListViewModel::Row> rows, const QString& subject = {});
    const std::vector<ListViewModel::Row>& rows() const;

    /// Removes all rows. They can still be saved until the next call of setRows or forgetRows, except while results are
    /// awaited.
    void clear();

    /// Sets whether results are awaited. Whoever saves meanwhile would take the rows of before for them.
    void setAwaiting(bool awaiting);

    /// Frees the rows that clear() kept.
    void forgetRows();

    /// Returns the indexes into rows() of the selected rows, in the order in which they are shown.
    std::vector<std::size_t> selectedRows() const;

    /// Returns whether the rows lead to addresses, and whether a double click does anything.
    bool hasAddresses() const { return addressColumn_.has_value(); }
    bool canOpen() const;

    /// Puts the addresses of the selected rows on the clipboard, one a line, without formulas (see harmlessCell).
    void copyAddresses() const;

    /// Puts the selected rows on the clipboard as they are shown: as text, with tabs between cells and line feeds
    /// between rows, and as an HTML table.
    void copyRows() const;

    /// Returns the rows as they are shown, or those of before as they were shown if hasRowsOfBefore(), with their
    /// addresses in a further column. The title is empty.
    Table table() const;

    /// Returns whether table() has rows.
    bool isSavable() const { return !rows().empty() || hasRowsOfBefore(); }

    /// Returns whether the list is empty because a search, which was stopped or failed, took its rows away.
    bool hasRowsOfBefore() const { return rows().empty() && !awaiting_ && !cleared_.rows.empty(); }

    /// Returns the words that were searched for to find the rows of table().
    const QString& subject() const { return subject_; }

    std::optional<ListViewModel::Sorting> sorting() const { return sorting_; }

    /// Sorts the rows that are shown, or restores the page's order.
    void sortRows(std::optional<ListViewModel::Sorting> sorting);

    /// Opens the line that filters the rows. Does nothing without rows.
    void openFilter();

signals:
    /// A double click anywhere in the list, or Enter while it has the focus, or "Open" in its menu.
    void doubleClicked();
    void mouseMoved();

    /// Rows were replaced or removed.
    void rowsChanged();

    /// The user asked in the list's menu for the rows to be saved.
    void saveWanted();

protected:
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void updateGeometries() override;

private:
    struct Address
    {
        QString text; // one line
        bool isOpenable = false;
    };

    void shareWidth();
    void clickHeader(int column);
    void showMenu();
    bool isCut(const QModelIndex& index) const;
    void showCellTip(const QHelpEvent& event);
    void showRowTip();
    void endArrangement();
    void filterRows(const QString& words);
    void arrange(const QStringList& filter, std::optional<ListViewModel::Sorting> sorting);
    void showSorting();
    std::unique_ptr<QMimeData> rowsData() const;
    Address addressOf(const ListViewModel::Row& row) const;
    std::unique_ptr<QMimeData> dragData(const std::vector<std::size_t>& rows) const;
    Table headedTable() const; // without rows
    std::vector<std::string> shownCells(const ListViewModel::Row& row) const;
    Table tableOf(const ListViewModel::Shown& shown) const;

    ListViewModel* model_ = nullptr;
    ListHeader* header_ = nullptr;
    FilterLine* filterLine_ = nullptr; // made when it is first opened
    QStringList filter_;
    std::optional<ListViewModel::Sorting> sorting_;
    std::optional<std::size_t> addressColumn_;
    ListViewModel::Shown cleared_; // what clear() removed
    QString subject_;
    bool awaiting_ = false;
    bool cellTips_ = false;
    bool showsRowTip_ = false;   // the next key hides it
    std::vector<double> shares_; // each column's fraction of the list's width
    std::vector<double> designShares_;
    bool sharing_ = false;
    QItemSelection beforePress_;       // the selection when a button was pressed on a selected row
    QPersistentModelIndex pressed_;    // a cell of that row
    bool releasesDoubleClick_ = false; // the next release belongs to a double click
};

} // namespace quarrynet
