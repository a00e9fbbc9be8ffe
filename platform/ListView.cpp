#include "platform/ListView.h"

#include <algorithm>
#include <utility>

#include <QHeaderView>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QToolTip>

#include "platform/CellDelegate.h"
#include "platform/FilterLine.h"
#include "platform/ListHeader.h"
#include "platform/cell_tip.h"
#include "platform/list_menu.h"
#include "platform/message_boxes.h"

namespace quarrynet {

namespace {

// What clear() keeps of rows, in bytes. Larger results are freed, as they were before a list kept any.
constexpr std::size_t kMostKept = std::size_t{64} << 20;

// A column's width as a fraction of the list's.
constexpr double kNarrowest = 0.002;
constexpr double kWidest = 10;

/// A selection whose changes cost in proportion to the rows. Where one range replaces many that lie apart, as when all
/// rows are selected after a filter was taken away, the toolkit compares each of them with each part of the one.
class RowSelection final : public QItemSelectionModel
{
public:
    using QItemSelectionModel::QItemSelectionModel;
    using QItemSelectionModel::select;

    void select(const QItemSelection& rows, SelectionFlags command) override
    {
        constexpr qsizetype kMany = 64;
        if (command.testFlag(Clear) && selection().size() > kMany)
            QItemSelectionModel::select(QItemSelection(), Clear);
        QItemSelectionModel::select(rows, command);
    }
};

std::size_t bytesOf(const std::vector<ListViewModel::Row>& rows)
{
    std::size_t bytes = 0;
    for (const ListViewModel::Row& row : rows) {
        for (const std::string& cell : row)
            bytes += sizeof(std::string) + cell.size();
    }
    return bytes;
}

} // namespace

ListView::ListView(QWidget* parent) : QTreeView(parent)
{
    header_ = new ListHeader(this); // before the font, whose change lays the list out
    setHeader(header_);
    header_->setSectionsClickable(true); // after setHeader, which switches it off
    QFont arial = font();
    arial.setFamily(QStringLiteral("Arial"));
    setFont(arial);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setMouseTracking(true);
    setTextElideMode(Qt::ElideRight);
    setItemDelegate(new CellDelegate(this));
    connect(header_, &QHeaderView::sectionClicked, this, &ListView::clickHeader);
    connect(header_, &QHeaderView::sectionDoubleClicked, this, &ListView::clickHeader); // the second of two fast clicks
    connect(header(), &QHeaderView::sectionResized, this, [this](int section, int, int width) {
        const auto index = static_cast<std::size_t>(section);
        if (!sharing_ && index < shares_.size() && this->width() > 0)
            shares_[index] = static_cast<double>(width) / this->width();
    });
}

void ListView::setColumns(const QStringList& headers)
{
    Q_ASSERT(!model_);
    model_ = new ListViewModel(headers, this);
    setModel(model_);
    delete selectionModel();
    setSelectionModel(new RowSelection(model_, this));
}

void ListView::setColumnWidths(const std::vector<int>& widths)
{
    shares_.clear();
    for (const int width : widths)
        shares_.push_back(static_cast<double>(width) / std::max(1, this->width()));
    designShares_ = shares_;
    shareWidth();
}

// The toolkit bounds columns in pixels: they can be wider than ten lists after a double click on a divider, and very
// narrow in a list that covers several screens.
std::vector<double> ListView::columnShares() const
{
    std::vector<double> shares;
    for (const double share : shares_)
        shares.push_back(std::clamp(share, kNarrowest, kWidest));
    return shares;
}

void ListView::setColumnShares(const std::vector<double>& shares)
{
    // Written so that a NaN is not usable.
    const bool usable =
        shares.size() == designShares_.size() &&
        std::all_of(shares.begin(), shares.end(), [](double share) { return share >= kNarrowest && share <= kWidest; });
    if (!usable)
        return;
    shares_ = shares;
    shareWidth();
}

bool ListView::captionsFit() const
{
    for (std::size_t i = 0; i < shares_.size(); ++i) {
        const QString caption = model_->headerData(static_cast<int>(i), Qt::Horizontal, Qt::DisplayRole).toString();
        if (header()->fontMetrics().horizontalAdvance(caption) >= shares_[i] * width())
            return false;
    }
    return true;
}

void ListView::halveColumns()
{
    constexpr int kMargin = 3; // 50 twips in whole pixels
    setColumnWidths({width() / 2 - kMargin, width() / 2 - kMargin});
}

void ListView::setAddressColumn(std::size_t column)
{
    addressColumn_ = column;
    model_->setDragData([this](const std::vector<std::size_t>& rows) { return dragData(rows); });
}

void ListView::setFigureColumn(int column)
{
    model_->setFigureColumn(column);
}

void ListView::setRows(std::vector<ListViewModel::Row> rows, const QString& subject)
{
    cleared_ = {};
    subject_ = subject;
    endArrangement();
    model_->setRows(std::move(rows));
    emit rowsChanged();
}

const std::vector<ListViewModel::Row>& ListView::rows() const
{
    return model_->rows();
}

void ListView::clear()
{
    if (rows().empty())
        return;
    cleared_ = model_->take();
    if (bytesOf(cleared_.rows) > kMostKept)
        cleared_ = {};
    endArrangement();
    emit rowsChanged();
}

void ListView::forgetRows()
{
    cleared_ = {};
    emit rowsChanged();
}

void ListView::setAwaiting(bool awaiting)
{
    if (awaiting == awaiting_)
        return;
    awaiting_ = awaiting;
    emit rowsChanged();
}

std::vector<std::size_t> ListView::selectedRows() const
{
    std::vector<int> shown;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            shown.push_back(row);
    }
    std::sort(shown.begin(), shown.end());
    shown.erase(std::unique(shown.begin(), shown.end()), shown.end());
    std::vector<std::size_t> rows;
    rows.reserve(shown.size());
    for (const int row : shown)
        rows.push_back(model_->originalRow(row));
    return rows;
}

bool ListView::canOpen() const
{
    return isSignalConnected(QMetaMethod::fromSignal(&ListView::doubleClicked));
}

void ListView::sortRows(std::optional<ListViewModel::Sorting> sorting)
{
    if (sorting == sorting_ || rows().empty())
        return;
    const auto show = [this] { showSorting(); }; // also if it is the old one: the header has changed its sign itself
    runOrReportMemory(
        window(),
        [&] {
            arrange(filter_, sorting);
            show();
        },
        show);
}

void ListView::showSorting()
{
    header_->setSortIndicatorShown(sorting_.has_value());
    if (!sorting_) {
        setAccessibleDescription({});
        return;
    }
    header_->setSortIndicator(sorting_->column, sorting_->order);
    const QString caption = model_->headers().value(sorting_->column);
    setAccessibleDescription(sorting_->order == Qt::AscendingOrder ? tr("Sorted by %1, ascending").arg(caption)
                                                                   : tr("Sorted by %1, descending").arg(caption));
}

void ListView::clickHeader(int column)
{
    if (!sorting_ || sorting_->column != column)
        sortRows(ListViewModel::Sorting{column, Qt::AscendingOrder});
    else if (sorting_->order == Qt::AscendingOrder)
        sortRows(ListViewModel::Sorting{column, Qt::DescendingOrder});
    else
        sortRows(std::nullopt);
}

void ListView::openFilter()
{
    if (rows().empty())
        return;
    if (!filterLine_) {
        filterLine_ = new FilterLine(*this);
        connect(filterLine_, &FilterLine::changed, this, &ListView::filterRows);
    }
    filterLine_->showCount(model_->rowCount(), rows().size());
    filterLine_->open();
    updateGeometries();
}

void ListView::filterRows(const QString& words)
{
    runOrReportMemory(window(), [&] {
        const QStringList filter = words.simplified().split(u' ', Qt::SkipEmptyParts);
        if (filter != filter_)
            arrange(filter, sorting_);
    });
    filterLine_->showCount(model_->rowCount(), rows().size());
    updateGeometries();
}

void ListView::arrange(const QStringList& filter, std::optional<ListViewModel::Sorting> sorting)
{
    std::vector<bool> selected(rows().size());
    for (const std::size_t row : selectedRows())
        selected[row] = true;
    const QModelIndex before = currentIndex();
    const std::size_t current = before.isValid() ? model_->originalRow(before.row()) : rows().size();
    model_->arrange(filter, sorting);
    filter_ = filter;
    sorting_ = sorting;

    // Rows that are hidden now are no longer selected: commands apply to what the user sees.
    QItemSelection selection;
    QModelIndex now;
    const int count = model_->rowCount();
    int start = -1; // the first row of a run of selected ones
    for (int row = 0; row <= count; ++row) {
        const bool isSelected = row < count && selected[model_->originalRow(row)];
        if (isSelected && start < 0)
            start = row;
        if (!isSelected && start >= 0) {
            selection.append({model_->index(start, 0), model_->index(row - 1, model_->columnCount() - 1)});
            start = -1;
        }
        if (row < count && model_->originalRow(row) == current)
            now = model_->index(row, before.column());
    }
    selectionModel()->setCurrentIndex(now, QItemSelectionModel::NoUpdate);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (now.isValid())
        scrollTo(now);
    else
        scrollToTop();
}

void ListView::endArrangement()
{
    filter_.clear();
    sorting_ = std::nullopt;
    showSorting();
    if (filterLine_)
        filterLine_->close();
}

bool ListView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && cellTips_) {
        showCellTip(*static_cast<QHelpEvent*>(event));
        return true;
    }
    return QTreeView::viewportEvent(event);
}

bool ListView::isCut(const QModelIndex& index) const
{
    const QRect cell = visualRect(index);
    return index.isValid() && (sizeHintForIndex(index).width() > cell.width() ||
                               cell.right() > viewport()->rect().right() || cell.left() < 0);
}

void ListView::showCellTip(const QHelpEvent& event)
{
    const QModelIndex index = indexAt(event.pos());
    if (isCut(index))
        QToolTip::showText(event.globalPos(), cellTip(index.data().toString(), *this), viewport(), visualRect(index));
    else
        QToolTip::hideText();
}

// The keyboard chooses rows and not cells, so the tip is for all cells of the row.
void ListView::showRowTip()
{
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return;
    scrollTo(current);
    QStringList cut;
    for (int column = 0; column < model_->columnCount(); ++column) {
        const QModelIndex cell = current.siblingAtColumn(column);
        if (isCut(cell))
            cut.append(cell.data().toString());
    }
    if (cut.isEmpty())
        return;
    const QRect row = visualRect(current.siblingAtColumn(0));
    QToolTip::showText(viewport()->mapToGlobal(row.bottomLeft()), cellsTip(cut, *this), viewport());
    showsRowTip_ = true;
}

void ListView::mousePressEvent(QMouseEvent* event)
{
    releasesDoubleClick_ = false;
    const QModelIndex pressed = indexAt(event->position().toPoint());
    const bool selected = pressed.isValid() && selectionModel()->isSelected(pressed);
    pressed_ = selected ? pressed : QModelIndex();
    beforePress_ = selected ? selectionModel()->selection() : QItemSelection();
    // Selected rows are dragged; elsewhere, moving the mouse selects.
    setDragEnabled(selected && hasAddresses() && event->modifiers() == Qt::NoModifier);
    QTreeView::mousePressEvent(event);
}

void ListView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!std::exchange(releasesDoubleClick_, false)) {
        QTreeView::mouseReleaseEvent(event);
        return;
    }
    const QItemSelection kept = selectionModel()->selection();
    QTreeView::mouseReleaseEvent(event);
    selectionModel()->select(kept, QItemSelectionModel::ClearAndSelect);
}

void ListView::mouseDoubleClickEvent(QMouseEvent* event)
{
    // The first click has changed the selection: without a key it left only its own row, with Ctrl all others.
    const int row = indexAt(event->position().toPoint()).row();
    const bool onSelected = pressed_.isValid() && row == pressed_.row();
    const QItemSelection before = beforePress_;
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    if (onSelected)
        selectionModel()->select(before, QItemSelectionModel::ClearAndSelect);
    releasesDoubleClick_ = true;
    emit doubleClicked();
}

void ListView::mouseMoveEvent(QMouseEvent* event)
{
    QTreeView::mouseMoveEvent(event);
    emit mouseMoved();
}

void ListView::startDrag(Qt::DropActions actions)
{
    runOrReportMemory(window(), [&] { QTreeView::startDrag(actions); });
}

void ListView::keyPressEvent(QKeyEvent* event)
{
    if (std::exchange(showsRowTip_, false))
        QToolTip::hideText();
    if (event->key() == Qt::Key_F1 && event->modifiers() == Qt::ShiftModifier) {
        showRowTip();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        emit doubleClicked();
        return;
    }
    if (event->key() == Qt::Key_Escape && filterLine_)
        filterLine_->close(); // and the key goes on to the window, which stops a search
    if (event->matches(QKeySequence::Copy)) {
        copyRows();
        return;
    }
    // Not every platform makes a menu event from these keys.
    if (event->key() == Qt::Key_Menu || (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)) {
        showMenu();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void ListView::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Mouse)
        showListMenu(*this, event->globalPos());
    else
        showMenu();
}

void ListView::showMenu()
{
    const QModelIndex current = currentIndex();
    if (current.isValid())
        scrollTo(current);
    const QRect row = current.isValid() ? visualRect(current.siblingAtColumn(0)) : QRect();
    showListMenu(*this, viewport()->mapToGlobal(row.isValid() ? row.bottomLeft() : QPoint()));
}

void ListView::focusInEvent(QFocusEvent* event)
{
    QTreeView::focusInEvent(event);
    const bool tabbed = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (tabbed && model_->rowCount() > 0 && !selectionModel()->hasSelection())
        setCurrentIndex(model_->index(0, 0));
}

void ListView::resizeEvent(QResizeEvent* event)
{
    shareWidth(); // first, because the base class sets the scroll bars for the columns
    QTreeView::resizeEvent(event);
}

void ListView::moveEvent(QMoveEvent* event)
{
    QTreeView::moveEvent(event);
    updateGeometries();
}

void ListView::updateGeometries()
{
    const bool filtering = filterLine_ && filterLine_->isOpen();
    header_->setRoomBelow(filtering ? filterLine_->wantedHeight() : 0);
    QTreeView::updateGeometries();
    if (!filtering)
        return;
    const QRect room = header_->roomBelow();
    filterLine_->setGeometry({header_->mapTo(filterLine_->parentWidget(), room.topLeft()), room.size()});
}

void ListView::shareWidth()
{
    const QScopedValueRollback<bool> guard(sharing_, true);
    for (std::size_t i = 0; i < shares_.size(); ++i)
        header()->resizeSection(static_cast<int>(i), static_cast<int>(shares_[i] * width()));
    // A scroll bar takes its room from the last column, whose end would otherwise be out of sight.
    const int hidden = header()->length() - viewport()->width();
    if (hidden > 0 && header()->length() <= width()) {
        const int last = header()->count() - 1;
        header()->resizeSection(last, header()->sectionSize(last) - hidden);
    }
}

} // namespace quarrynet
