#include "platform/ProgramStyle.h"

#include <algorithm>

#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <QPainter>

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

void ProgramStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    auto* label = qobject_cast<QLabel*>(widget);
    if (!label || !label->isRightToLeft() || (label->alignment() & Qt::AlignHorizontal_Mask) != Qt::AlignLeft)
        return;
    label->setAlignment((label->alignment() & Qt::AlignVertical_Mask) | Qt::AlignRight | Qt::AlignAbsolute);
}

void ProgramStyle::drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                                const QString& text, QPalette::ColorRole role) const
{
    if (QGuiApplication::isRightToLeft()) {
        // The alignment is meant for the direction so far.
        const bool isLeftToRight =
            (flags & Qt::TextForceLeftToRight) != 0 ||
            (!(flags & Qt::TextForceRightToLeft) && painter->layoutDirection() == Qt::LeftToRight);
        const auto alignment = static_cast<Qt::Alignment>(flags & (Qt::AlignHorizontal_Mask | Qt::AlignVertical_Mask));
        const Qt::Alignment shown =
            QStyle::visualAlignment(isLeftToRight ? Qt::LeftToRight : Qt::RightToLeft, alignment) | Qt::AlignAbsolute;
        flags &=
            ~(Qt::AlignHorizontal_Mask | Qt::AlignVertical_Mask | Qt::TextForceLeftToRight | Qt::TextForceRightToLeft);
        flags |= static_cast<int>(shown);
        flags |= text.isRightToLeft() ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    }
    QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, role);
}

} // namespace quarrynet
