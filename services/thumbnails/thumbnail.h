#pragma once

#include <QByteArray>

#include "thumbnails/picture_format.h"

namespace quarrynet::services {

/// The picture, scaled to at most 120 by 120 pixels, as PNG when parts of it are transparent, else as JPEG; drawings
/// are drawn in that size, small pictures stay as they are. Empty when `content` is none, or is larger than what is
/// reasonable. Needs a QGuiApplication for the letters in drawings.
QByteArray makeThumbnail(PictureFormat format, const QByteArray& content);

/// Loads the readers of all formats, and the fonts that drawings may use, so that makeThumbnail() opens no file.
void loadPictureReaders();

/// Returns an SVG text without what makes its reader open files: references to pictures outside of it, style sheets,
/// document types, and pictures within it that are none of the raster formats, by their content, for such a picture
/// would be read as a drawing of its own. Empty when it is not well formed, or too large or too deep to be drawn.
QByteArray selfContainedSvg(const QByteArray& content);

} // namespace quarrynet::services
