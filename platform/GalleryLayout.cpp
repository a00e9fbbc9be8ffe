#include "platform/GalleryLayout.h"

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QPixmap>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

namespace quarrynet {

GalleryLayout::GalleryLayout(QTextDocument* document, const PageLook& look)
    : QAbstractTextDocumentLayout(document), look_(look)
{
    registerHandler(QTextFormat::ImageObject, this);
}

void GalleryLayout::setLook(const PageLook& look)
{
    look_ = look;
    arrange();
}

void GalleryLayout::setMissing(int number)
{
    if (number < 0 || static_cast<std::size_t>(number) >= cells_.size())
        return;
    Cell& cell = cells_[static_cast<std::size_t>(number)];
    cell.missing = true;
    emit update(cell.place);
}

void GalleryLayout::setCurrent(int number)
{
    if (number == current_)
        return;
    current_ = number;
    arrange();
}

bool GalleryLayout::isEmpty() const
{
    return document()->characterCount() <= 1; // a document always has one paragraph
}

int GalleryLayout::neighbor(int key) const
{
    const int last = static_cast<int>(cells_.size()) - 1;
    const bool first = current_ < 0 || current_ > last;
    if (isEmpty())
        return -1;
    const int forward = look_.rightToLeft ? -1 : 1;
    switch (key) {
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    case Qt::Key_Right:
        return first ? 0 : std::clamp(current_ + forward, 0, last);
    case Qt::Key_Left:
        return first ? 0 : std::clamp(current_ - forward, 0, last);
    case Qt::Key_Up:
        return first ? 0 : current_ < columns_ ? current_ : current_ - columns_;
    case Qt::Key_Down:
        if (first)
            return 0;
        // The last row may be shorter.
        return current_ / columns_ == last / columns_ ? current_ : std::min(current_ + columns_, last);
    default:
        return -1;
    }
}

void GalleryLayout::documentChanged(int /*from*/, int /*removed*/, int /*added*/)
{
    arrange();
}

void GalleryLayout::arrange()
{
    cells_.resize(static_cast<std::size_t>(document()->blockCount()));
    const double gap = PageLook::kGap * look_.zoom;
    const double width = std::max(document()->textWidth(), 1.0);
    const double narrowest = look_.cellWidth() * look_.zoom;
    columns_ = std::max(1, static_cast<int>(std::floor((width - gap) / (narrowest + gap))));
    const double cellWidth = std::max((width - gap) / columns_ - gap, 1.0);

    double top = gap;
    double height = 0;
    int number = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next(), ++number) {
        const int column = number % columns_;
        if (column == 0 && number > 0) {
            top += height + gap;
            height = 0;
        }
        const double left = gap + (look_.rightToLeft ? columns_ - 1 - column : column) * (cellWidth + gap);
        Cell& cell = cells_[static_cast<std::size_t>(number)];
        cell.place = QRectF(left, top, cellWidth, 0);
        cell.place.setHeight(fill(block, cell));
        height = std::max(height, cell.place.height());
    }
    size_ = isEmpty() ? QSizeF(width, 0) : QSizeF(width, top + height + gap);
    emit documentSizeChanged(size_);
    emit update();
}

// Breaks the paragraph into lines and returns the cell's height.
double GalleryLayout::fill(const QTextBlock& block, Cell& cell) const
{
    QTextLayout& text = *block.layout();
    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    text.setTextOption(option);
    text.setPosition(cell.place.topLeft());
    const int most = block.blockNumber() == current_ ? block.length() + 1 : PageLook::kCaptionLines + 1;
    double height = padding();
    text.beginLayout();
    QTextLine line;
    for (int i = 0; i < most && (line = text.createLine()).isValid(); ++i) {
        line.setLineWidth(std::max(cell.place.width() - 2 * padding(), 1.0));
        line.setPosition({padding(), height});
        height += line.height() + (i == 0 ? padding() : 0);
    }
    text.endLayout();
    const QTextLine last = text.lineCount() > 0 ? text.lineAt(text.lineCount() - 1) : QTextLine();
    cell.cut = last.isValid() && last.textStart() + last.textLength() < block.length() - 1;
    return height + padding();
}

void GalleryLayout::draw(QPainter* painter, const PaintContext& context)
{
    painter->setPen(look_.link);
    for (QTextBlock block = document()->begin(); block.isValid() && !isEmpty(); block = block.next()) {
        const Cell& cell = cells_[static_cast<std::size_t>(block.blockNumber())];
        if (context.clip.isValid() && !context.clip.intersects(cell.place))
            continue;
        const bool current = block.blockNumber() == current_;
        QList<QTextLayout::FormatRange> selected;
        for (const Selection& selection : context.selections) {
            const int start = std::max(selection.cursor.selectionStart() - block.position(), 0);
            const int end = std::min(selection.cursor.selectionEnd() - block.position(), block.length() - 1);
            if (start < end && !current)
                selected.append({start, end - start, selection.format});
        }
        const QTextLayout& text = *block.layout();
        text.draw(painter, {}, selected, context.clip);
        if (cell.cut) {
            const QString dots(QChar(0x2026));
            QRectF place = text.lineAt(text.lineCount() - 1).naturalTextRect().translated(text.position());
            place.setLeft(place.right() - QFontMetricsF(document()->defaultFont()).horizontalAdvance(dots));
            painter->fillRect(place, look_.background);
            painter->setFont(document()->defaultFont());
            painter->drawText(place, Qt::AlignCenter | Qt::TextDontClip, dots);
        }
        if (current) {
            painter->save();
            painter->setPen(QPen(look_.focus, 2));
            painter->setBrush(Qt::NoBrush);
            painter->drawRect(cell.place);
            painter->restore();
        }
    }
}

int GalleryLayout::hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const
{
    int nearest = -1;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const QTextLayout& text = *block.layout();
        const QRectF& place = cells_[static_cast<std::size_t>(block.blockNumber())].place;
        if (!place.contains(point)) {
            if (place.top() <= point.y())
                nearest = block.position();
            continue;
        }
        const QPointF inside = point - text.position();
        for (int i = 0; i < text.lineCount(); ++i) {
            const QTextLine line = text.lineAt(i);
            if (line.naturalTextRect().contains(inside))
                return block.position() + line.xToCursor(inside.x(), QTextLine::CursorOnCharacter);
            if (inside.y() >= line.y())
                nearest = block.position() + line.xToCursor(inside.x());
        }
        break;
    }
    return accuracy == Qt::ExactHit ? -1 : std::max(nearest, 0);
}

QRectF GalleryLayout::frameBoundingRect(QTextFrame* /*frame*/) const
{
    return {QPointF(), size_};
}

QRectF GalleryLayout::blockBoundingRect(const QTextBlock& block) const
{
    const auto number = static_cast<std::size_t>(std::max(block.blockNumber(), 0));
    return block.isValid() && number < cells_.size() ? cells_[number].place : QRectF();
}

QSizeF GalleryLayout::intrinsicSize(QTextDocument* document, int position, const QTextFormat& /*format*/)
{
    const double width = blockBoundingRect(document->findBlock(position)).width() - 2 * padding();
    return {std::max(width, 1.0), look_.shrunk(PageLook::kPictureHeight) * look_.zoom};
}

void GalleryLayout::drawObject(QPainter* painter, const QRectF& place, QTextDocument* document, int position,
                               const QTextFormat& format)
{
    const QUrl name(format.toImageFormat().name());
    const auto picture = document->resource(QTextDocument::ImageResource, name).value<QPixmap>();
    painter->save();
    if (picture.width() > 1 || picture.height() > 1) {
        QSizeF size = QSizeF(picture.size()) * look_.zoom;
        if (size.width() > place.width() || size.height() > place.height())
            size.scale(place.size(), Qt::KeepAspectRatio);
        QRectF shown(QPointF(), size);
        shown.moveCenter(place.center());
        shown.moveBottom(place.bottom());
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->fillRect(shown, look_.plate);
        painter->drawPixmap(shown, picture, QRectF(picture.rect()));
    } else {
        QRectF frame(0, 0, look_.shrunk(PageLook::kEmptyWidth) * look_.zoom,
                     look_.shrunk(PageLook::kEmptyHeight) * look_.zoom);
        frame.moveCenter(place.center());
        frame.moveBottom(place.bottom());
        const bool missing = cells_[static_cast<std::size_t>(document->findBlock(position).blockNumber())].missing;
        painter->setPen(QPen(look_.line, 1, missing ? Qt::DashLine : Qt::SolidLine));
        painter->drawRect(frame);
        if (missing) {
            painter->setPen(look_.text);
            painter->setFont(document->defaultFont());
            painter->drawText(frame, Qt::AlignCenter | Qt::TextWordWrap, look_.noPicture);
        }
    }
    painter->restore();
}

} // namespace quarrynet
