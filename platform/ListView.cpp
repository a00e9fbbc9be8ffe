#include "platform/ListView.h"

#include <algorithm>
#include <utility>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include "platform/CellDelegate.h"
#include "platform/text_border.h"

namespace quarrynet {

ListViewModel::ListViewModel(QStringList headers, QObject* parent)
    : QAbstractTableModel(parent), headers_(std::move(headers))
{}

void ListViewModel::setRows(std::vector<Row> rows)
{
    if (rows.empty() && rows_.empty())
        return;
    // The view lays out all rows in one block of memory, and crashes if it cannot get it. This allocation throws before
    // that, where the caller can catch the exception.
    constexpr std::size_t kLayoutOfARow = 128; // bytes; about twice the actual size
    std::vector<char>().reserve(rows.size() * kLayoutOfARow);
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int ListViewModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ListViewModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

QVariant ListViewModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid())
        return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    const auto column = static_cast<std::size_t>(index.column());
    if (column >= row.size())
        return QString();
    return toLine(row[column]);
}

QVariant ListViewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return headers_.value(section);
}

ListView::ListView(QWidget* parent) : QTreeView(parent)
{
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
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setMinimumSectionSize(8);
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
}

void ListView::setColumnWidths(const std::vector<int>& widths)
{
    shares_.clear();
    for (const int width : widths)
        shares_.push_back(static_cast<double>(width) / std::max(1, this->width()));
    designShares_ = shares_;
    shareWidth();
}

void ListView::setColumnShares(const std::vector<double>& shares)
{
    constexpr double kNarrowest = 0.002;
    constexpr double kWidest = 10;
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

void ListView::setRows(std::vector<ListViewModel::Row> rows)
{
    model_->setRows(std::move(rows));
}

const std::vector<ListViewModel::Row>& ListView::rows() const
{
    return model_->rows();
}

std::vector<std::size_t> ListView::selectedRows() const
{
    std::vector<std::size_t> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(static_cast<std::size_t>(row));
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void ListView::mousePressEvent(QMouseEvent* event)
{
    releasesDoubleClick_ = false;
    const QModelIndex pressed = indexAt(event->position().toPoint());
    const bool selected = pressed.isValid() && selectionModel()->isSelected(pressed);
    pressed_ = selected ? pressed : QModelIndex();
    beforePress_ = selected ? selectionModel()->selection() : QItemSelection();
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

void ListView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        emit doubleClicked();
        return;
    }
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void ListView::copySelection() const
{
    QStringList lines;
    for (const std::size_t row : selectedRows()) {
        QStringList cells;
        for (int column = 0; column < model_->columnCount(); ++column)
            cells.append(model_->index(static_cast<int>(row), column).data().toString());
        lines.append(cells.join(u'\t'));
    }
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(u'\n'));
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
