#include "platform/ProgramStyle.h"

#include <algorithm>
#include <array>

#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QStyleOptionSlider>

#include "platform/contrast.h"

namespace quarrynet {

namespace {

// Some styles draw a selection with a gradient, or lighter than its colour.
constexpr double kSelectionContrast = 5.5;

struct Pair
{
    QPalette::ColorRole text;
    QPalette::ColorRole background;
};

constexpr std::array kPairs = {
    Pair{QPalette::WindowText, QPalette::Window},    Pair{QPalette::Text, QPalette::Base},
    Pair{QPalette::ButtonText, QPalette::Button},    Pair{QPalette::ToolTipText, QPalette::ToolTipBase},
    Pair{QPalette::PlaceholderText, QPalette::Base}, Pair{QPalette::Link, QPalette::Base},
    Pair{QPalette::LinkVisited, QPalette::Base},
};

} // namespace

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
        constexpr unsigned kReplaced = static_cast<unsigned>(Qt::AlignHorizontal_Mask) | Qt::AlignVertical_Mask |
                                       Qt::TextForceLeftToRight | Qt::TextForceRightToLeft;
        flags = static_cast<int>(static_cast<unsigned>(flags) & ~kReplaced);
        flags |= static_cast<int>(shown);
        flags |= text.isRightToLeft() ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    }
    QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, role);
}

void ProgramStyle::polish(QPalette& palette)
{
    QProxyStyle::polish(palette);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        for (const auto& [text, background] : kPairs) {
            const QColor wanted = palette.color(group, text);
            const QColor readable = readableOn(palette.color(group, background), wanted);
            if (readable.rgb() != wanted.rgb())
                palette.setColor(group, text, readable);
        }
        const QColor selection = palette.color(group, QPalette::Highlight);
        const QColor selected = palette.color(group, QPalette::HighlightedText);
        if (contrastRatio(selection, selected) < kSelectionContrast)
            palette.setColor(group, QPalette::Highlight, readableOn(selected, selection, kSelectionContrast));
    }
}

void ProgramStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                      const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_Slider || !slider || !option->state.testFlag(State_Enabled) ||
        !option->subControls.testFlag(SC_SliderHandle))
        return;
    const QColor around = option->palette.color(QPalette::Window);
    const QColor color = readableOn(around, option->palette.color(QPalette::Highlight), kShapeContrast);
    const QRectF thumb =
        QRectF(subControlRect(control, slider, SC_SliderHandle, widget)).adjusted(1.5, 2.5, -1.5, -2.5);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    painter->drawRoundedRect(thumb, 2, 2);
    painter->restore();
}

} // namespace quarrynet
