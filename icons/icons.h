#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

/// The pictures that the program carries in itself, in the sizes that common screens need. They need no image plug-in.
namespace quarrynet {

/// Returns the drawing `name` ("proxy", "stop") as an icon, or a null icon for an unknown name. A size that is not kept
/// is made from the next larger one. Needs a QApplication.
QIcon icon(const QString& name);

/// Returns the same as a picture of `size` device-independent pixels, `scale` device pixels each, or a null picture for
/// an unknown name.
QPixmap picture(const QString& name, QSize size, qreal scale);

} // namespace quarrynet
