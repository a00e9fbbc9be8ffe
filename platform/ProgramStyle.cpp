#include "platform/ProgramStyle.h"

#include <algorithm>
#include <array>

#include <QBitmap>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QRegion>
#include <QStyleOptionSlider>

#include "platform/contrast.h"
#include "platform/scaling_bars.h"

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

int ProgramStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    const int value = QProxyStyle::pixelMetric(metric, option, widget);
    const auto* bar = metric == PM_MenuBarVMargin ? qobject_cast<const MenuBar*>(widget) : nullptr;
    if (!bar)
        return value;
    const int spare = bar->height() - bar->entryHeight();
    return std::max(value, spare / 2 - pixelMetric(PM_MenuBarPanelWidth, option, widget));
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
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_Slider && slider && slider->state.testFlag(State_Enabled))
        drawSlider(*slider, *painter, widget);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

// Draws the parts from back to front.
void ProgramStyle::drawSlider(const QStyleOptionSlider& slider, QPainter& painter, const QWidget* widget) const
{
    const QColor around = slider.palette.color(QPalette::Window);
    const QColor line = readableOn(around, slider.palette.color(QPalette::Mid), kShapeContrast);
    QStyleOptionSlider part = slider;
    painter.save();
    if (slider.subControls.testFlag(SC_SliderTickmarks)) {
        part.subControls = SC_SliderTickmarks;
        QImage marks = imageOf(part, painter, widget);
        QPainter ink(&marks);
        ink.setCompositionMode(QPainter::CompositionMode_SourceIn);
        ink.fillRect(slider.rect, line);
        ink.end();
        painter.drawImage(0, 0, marks);
    }
    if (slider.subControls.testFlag(SC_SliderGroove)) {
        part.subControls = SC_SliderGroove;
        const QImage groove = imageOf(part, painter, widget);
        painter.drawImage(0, 0, groove);
        const double scale = groove.devicePixelRatio();
        const QRectF drawn = QRegion(QBitmap::fromImage(groove.createAlphaMask())).boundingRect();
        painter.setPen(line);
        painter.drawRect(QRectF(drawn.topLeft() / scale, drawn.size() / scale).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    if (slider.subControls.testFlag(SC_SliderHandle)) {
        part.subControls = SC_SliderHandle;
        QProxyStyle::drawComplexControl(CC_Slider, &part, &painter, widget);
        const QRectF thumb =
            QRectF(subControlRect(CC_Slider, &slider, SC_SliderHandle, widget)).adjusted(1.5, 2.5, -1.5, -2.5);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(readableOn(around, slider.palette.color(QPalette::Highlight), kShapeContrast));
        painter.drawRoundedRect(thumb, 2, 2);
    }
    painter.restore();
}

// Returns what the desktop's style draws of a slider, on a transparent ground and with the origin of `painter`.
QImage ProgramStyle::imageOf(const QStyleOptionSlider& slider, const QPainter& painter, const QWidget* widget) const
{
    const double scale = painter.device()->devicePixelRatioF();
    const QSizeF size(slider.rect.right() + 1, slider.rect.bottom() + 1);
    QImage image((size * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter on(&image);
    QProxyStyle::drawComplexControl(CC_Slider, &slider, &on, widget);
    return image;
}

} // namespace quarrynet
