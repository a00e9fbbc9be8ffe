#include "icons/icons.h"

#include <QFile>

// The drawings are registered by an object of a static library, which the linker drops unless something names it. The
// macro declares a function of the global namespace, so it cannot stand in ours.
static void registerDrawings()
{
    Q_INIT_RESOURCE(icons);
}

namespace quarrynet {

QIcon icon(const QString& name)
{
    registerDrawings();
    const QString path = QStringLiteral(":/icons/%1.svg").arg(name);
    return QFile::exists(path) ? QIcon(path) : QIcon();
}

QPixmap picture(const QString& name, QSize size, qreal scale)
{
    return icon(name).pixmap(size, scale);
}

} // namespace quarrynet
