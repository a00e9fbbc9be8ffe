#include "platform/ListHeader.h"

namespace quarrynet {

ListHeader::ListHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent)
{
    // As a tree view makes its own header.
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setStretchLastSection(false);
    setSectionsMovable(false);
    setMinimumSectionSize(8);
}

void ListHeader::setRoomBelow(int height)
{
    if (height == 0 && room_ == 0)
        return;
    room_ = height;
    setViewportMargins(0, 0, 0, height);
    // A tree view gives its header this height, and begins its rows below it.
    setMinimumHeight(height > 0 ? sizeHint().height() + height : 0);
}

QRect ListHeader::roomBelow() const
{
    return {0, height() - room_, width(), room_};
}

} // namespace quarrynet
