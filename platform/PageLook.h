#pragma once

#include <QColor>
#include <QFont>
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

    /// The design of a cell, in pixels before the zoom. Its width is at least kCellEms of the font.
    static constexpr int kPictureHeight = 120;
    static constexpr int kCellWidth = 144;
    static constexpr int kCellEms = 10;
    static constexpr int kGap = 8;
    static constexpr int kPadding = 4;
    static constexpr int kCaptionLines = 4; // of a picture without the focus
    static constexpr int kEmptyWidth = 96;  // of the frame in place of a picture
    static constexpr int kEmptyHeight = 72;
};

} // namespace quarrynet
