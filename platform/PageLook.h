#pragma once

#include <algorithm>

#include <QColor>
#include <QFont>
#include <QFontInfo>
#include <QString>

namespace quarrynet {

/// How the views draw a gallery: in the desktop's colours and font, at the user's zoom.
struct PageLook
{
    QColor background;
    QColor text; // this and the next three are readable on the background
    QColor link;
    QColor focus; // of the frame around the picture that has the focus
    QColor line;  // of the frame in place of a picture that did not load
    QColor plate; // behind pictures, which may be dark drawings without a background
    QFont font;   // before the zoom
    double zoom = 1;
    bool rightToLeft = false;
    QString noPicture; // shown in place of a picture that did not load

    bool operator==(const PageLook& other) const
    {
        return background == other.background && text == other.text && link == other.link && focus == other.focus &&
               line == other.line && plate == other.plate && font == other.font && zoom == other.zoom &&
               rightToLeft == other.rightToLeft && noPicture == other.noPicture;
    }

    /// The design of a cell, in pixels before the zoom. In a small window, whose font is small, it shrinks with the
    /// font; in a large one its width grows, because captions need it.
    static constexpr int kPictureHeight = 120;
    static constexpr int kCellWidth = 144;
    static constexpr int kEmptyWidth = 96; // of the frame in place of a picture
    static constexpr int kEmptyHeight = 72;
    static constexpr int kFullFont = 12; // has the whole of these
    static constexpr int kCellEms = 10;  // minimum width
    static constexpr int kGap = 8;
    static constexpr int kPadding = 4;
    static constexpr int kCaptionLines = 4; // of a picture without the focus

    /// The part of a picture's address that its tool tip shows, in UTF-16 units, and the length of the tip's lines. A
    /// caption breaks at any place, a tip's line does not.
    static constexpr int kTipLength = 800;
    static constexpr int kTipLine = 80;

    int fontSize() const { return QFontInfo(font).pixelSize(); }
    int shrunk(int pixels) const { return pixels * std::min(fontSize(), kFullFont) / kFullFont; }
    int cellWidth() const { return std::max(shrunk(kCellWidth), kCellEms * fontSize()); }
};

} // namespace quarrynet
