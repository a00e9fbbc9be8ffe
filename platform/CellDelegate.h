#pragma once

#include <QStyledItemDelegate>

namespace quarrynet {

/// Draws a list's cells. In a window that reads from right to left, a cell begins at the right and its text reads in
/// its own direction, so that an address keeps its order.
class CellDelegate final : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CellDelegate)

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace quarrynet
