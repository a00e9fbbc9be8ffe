#include "platform/FigureLabel.h"

#include <QPainter>
#include <QStyle>

#include "platform/text_border.h"

namespace quarrynet {

void FigureLabel::setCaption(std::string_view caption, std::string_view unit)
{
    const std::size_t kept = caption.ends_with(unit) ? unit.size() : 0;
    const QString shownUnit = toLine(caption.substr(caption.size() - kept));
    unitLength_ = shownUnit.size();
    setText(toLine(caption.substr(0, caption.size() - kept)) + shownUnit);
}

void FigureLabel::paintEvent(QPaintEvent* event)
{
    const QRect room = contentsRect().marginsRemoved({margin(), margin(), margin(), margin()});
    if (fontMetrics().horizontalAdvance(text()) <= room.width()) {
        QLabel::paintEvent(event);
        return;
    }
    const QString unit = text().right(unitLength_);
    const int left = room.width() - fontMetrics().horizontalAdvance(unit);
    const QString figure = fontMetrics().elidedText(text().chopped(unitLength_), Qt::ElideRight, left);
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, room, static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment())),
                          palette(), isEnabled(), figure + unit, foregroundRole());
}

} // namespace quarrynet
