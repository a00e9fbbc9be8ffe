#pragma once

#include <QProxyStyle>

class QStyleOptionSlider;

namespace quarrynet {

/// The desktop's own style with some corrections.
class ProgramStyle final : public QProxyStyle
{
public:
    // Omits one picture that no toolbar of this program ever shows. To read it, Qt loads every installed image format,
    // which takes a sixth of the start-up time.
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const override;

    // Gives menu entries in large fonts the width that they need.
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;

    // Centres the entries of the window's menu bar. They begin below this margin, and there is no other way to move
    // them. A style of the bar's own would not change when the desktop's style does.
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;

    using QProxyStyle::polish;

    // Gives texts the contrast that people need to read them, where the desktop's colours have less. This runs at each
    // change of those colours.
    void polish(QPalette& palette) override;

    // In a window that reads from right to left, labels begin at the right. Qt aligns them by the direction of their
    // text, and English captions would be at the wrong end of their places.
    void polish(QWidget* widget) override;

    // In such a window, draws each text in its own direction. Otherwise the colons and dots of English captions would
    // be at the wrong end.
    void drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                      const QString& text, QPalette::ColorRole role) const override;

    // Draws the thumb, the tick marks and the groove of a slider that can be moved in colours that stand out. Otherwise
    // the thumb differs little from that of a disabled one, and in dark colours all three differ little from the
    // window.
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;

private:
    void drawSlider(const QStyleOptionSlider& slider, QPainter& painter, const QWidget* widget) const;
    QImage imageOf(const QStyleOptionSlider& slider, const QPainter& painter, const QWidget* widget) const;
};

} // namespace quarrynet
