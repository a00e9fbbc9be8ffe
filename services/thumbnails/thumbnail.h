#pragma once

#include <QByteArray>

#include "thumbnails/picture_format.h"

namespace quarrynet::services {

/// Returns the picture, scaled to at most 120 by 120 pixels, as PNG if it has transparent parts, else as JPEG. Drawings
/// are rendered at that size; small pictures are not enlarged. Returns an empty array when `content` is not a picture,
/// or is too large. Needs a QGuiApplication for text in drawings.
QByteArray makeThumbnail(PictureFormat format, const QByteArray& content);

/// Loads the readers of all formats, and the fonts that drawings may use, so that makeThumbnail() opens no file.
void loadPictureReaders();

/// Returns an SVG text without anything that makes its reader open files: references to external pictures, style
/// sheets, document types, and embedded pictures whose content is not a raster format, because the reader would read
/// them as drawings of their own. Returns an empty array when the text is malformed, or too large or too deep to
/// render.
QByteArray selfContainedSvg(const QByteArray& content);

} // namespace quarrynet::services
