#include "platform/ProgramStyle.h"

#include <QIcon>

namespace quarrynet {

QIcon ProgramStyle::standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const
{
    // The arrow for buttons that do not fit: even at the window's minimum size all do.
    if (picture == SP_ToolBarHorizontalExtensionButton || picture == SP_ToolBarVerticalExtensionButton)
        return {};
    return QProxyStyle::standardIcon(picture, option, widget);
}

} // namespace quarrynet
