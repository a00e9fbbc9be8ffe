#pragma once

#include <map>

#include <QStringList>
#include <QWidget>

#include "TextPlaces.h"

/// The texts that a widget paints, in pieces and as lines.
class PaintedText final
{
public:
    explicit PaintedText(QWidget& widget)
    {
        const TextPlaces painted(widget);
        for (const TextPlaces::Text& piece : painted.texts()) {
            texts_.append(piece.text);
            lines_[qRound(piece.start.y())][piece.start.x()] += piece.text;
        }
    }

    /// All pieces, joined by "|" in the order in which they are painted.
    QString texts() const { return texts_.join(u'|'); }

    /// Returns the line that contains `part` as a reader sees it: its pieces from left to right. Empty if none does.
    QString lineWith(const QString& part) const
    {
        for (const auto& [y, pieces] : lines_) {
            if (const QString line = joined(pieces); line.contains(part))
                return line;
        }
        return {};
    }

    /// Returns where that line begins, in pixels from the left; -1 if there is none.
    double leftOf(const QString& part) const
    {
        for (const auto& [y, pieces] : lines_) {
            if (joined(pieces).contains(part))
                return pieces.begin()->first;
        }
        return -1;
    }

private:
    static QString joined(const std::map<double, QString>& pieces)
    {
        QString line;
        for (const auto& [x, piece] : pieces)
            line += piece;
        return line;
    }

    QStringList texts_;
    std::map<int, std::map<double, QString>> lines_;
};
