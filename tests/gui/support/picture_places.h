#pragma once

#include <algorithm>

#include <QImage>
#include <QRect>

/// Returns the smallest rectangle of `image` with all pixels of this colour; empty if there is none.
inline QRect placeOf(const QImage& image, const QColor& color)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    const QRgb wanted = color.rgb();
    QRect place;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        const auto* end = line + pixels.width();
        const auto* first = std::find(line, end, wanted);
        if (first == end)
            continue;
        const auto* last = end - 1;
        while (*last != wanted)
            --last;
        place |= QRect(QPoint(static_cast<int>(first - line), y), QPoint(static_cast<int>(last - line), y));
    }
    return place;
}

/// Returns the number of pixels of this colour.
inline qsizetype countOf(const QImage& image, const QColor& color)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    qsizetype count = 0;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        count += std::count(line, line + pixels.width(), color.rgb());
    }
    return count;
}

/// Returns whether the pixels of this colour surround `inner`, as those of a frame around it do.
inline bool isFramed(const QImage& image, const QRect& inner, const QColor& color)
{
    return placeOf(image, color).contains(inner.adjusted(-1, -1, 1, 1));
}
