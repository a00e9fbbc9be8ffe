#include "platform/ProgramStyle.h"

#include <algorithm>

#include <QIcon>

namespace quarrynet {

QIcon ProgramStyle::standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const
{
    // This is the arrow for buttons that do not fit. All fit, even at the window's minimum size.
    if (picture == SP_ToolBarHorizontalExtensionButton || picture == SP_ToolBarVerticalExtensionButton)
        return {};
    return QProxyStyle::standardIcon(picture, option, widget);
}

QSize ProgramStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                     const QWidget* widget) const
{
    QSize needed = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_MenuItem) {
        // The Fusion style draws a column for check marks as wide as four fifths of the entry's height, but reserves
        // only this fixed width.
        constexpr int kCountedOn = 21;
        needed.rwidth() += std::max(0, needed.height() * 4 / 5 - kCountedOn);
    }
    return needed;
}

} // namespace quarrynet
