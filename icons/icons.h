#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

/// The drawings that the program carries in itself. They are vector drawings: sharp at every size and scale.
namespace quarrynet {

/// The drawing `icons/NAME.svg`, without folder and suffix ("proxy", "stop"). An unknown name gives a null icon. Needs
/// a QGuiApplication.
QIcon icon(const QString& name);

/// The same as a picture of `size` device-independent pixels, `scale` device pixels each. An unknown name gives a null
/// picture.
QPixmap picture(const QString& name, QSize size, qreal scale);

} // namespace quarrynet
