#pragma once

#include <vector>

#include <QAbstractTextDocumentLayout>
#include <QTextObjectInterface>

#include "platform/PageLook.h"

namespace quarrynet {

/// Lays out the paragraphs of a document as cells of a grid, with as many columns as the document's width has room for.
/// Each paragraph is a picture, a line separator and a caption. A caption has at most PageLook::kCaptionLines lines,
/// except that of the current cell.
class GalleryLayout final : public QAbstractTextDocumentLayout, public QTextObjectInterface
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(GalleryLayout)
    Q_INTERFACES(QTextObjectInterface)

public:
    GalleryLayout(QTextDocument* document, const PageLook& look);

    void setLook(const PageLook& look);
    /// Draws a frame in place of picture `number` from now on. The numbers count from 0.
    void setMissing(int number);
    /// Makes a cell the current one, or none if `number` is -1.
    void setCurrent(int number);
    int current() const { return current_; }

    /// Returns the cell to which an arrow key, Home or End leads from the current cell, or -1 for any other key and in
    /// an empty document.
    int neighbor(int key) const;

    void draw(QPainter* painter, const PaintContext& context) override;
    int hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const override;
    int pageCount() const override { return 1; }
    QSizeF documentSize() const override { return size_; }
    QRectF frameBoundingRect(QTextFrame* frame) const override;
    QRectF blockBoundingRect(const QTextBlock& block) const override;

    // A picture in a cell.
    QSizeF intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) override;
    void drawObject(QPainter* painter, const QRectF& place, QTextDocument* document, int position,
                    const QTextFormat& format) override;

protected:
    void documentChanged(int from, int removed, int added) override;

private:
    struct Cell
    {
        QRectF place;
        bool cut = false;     // the caption has more lines
        bool missing = false; // the picture
    };

    void arrange();
    double fill(const QTextBlock& block, Cell& cell) const;
    double padding() const { return PageLook::kPadding * look_.zoom; }
    bool isEmpty() const;

    PageLook look_;
    std::vector<Cell> cells_; // one for each paragraph
    int columns_ = 1;
    int current_ = -1;
    QSizeF size_;
};

} // namespace quarrynet
