#include "platform/CellDelegate.h"

namespace quarrynet {

void CellDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->direction == Qt::LeftToRight || option->text.isRightToLeft())
        return;
    option->direction = Qt::LeftToRight;
    option->displayAlignment = (option->displayAlignment & Qt::AlignVertical_Mask) | Qt::AlignRight;
}

} // namespace quarrynet
