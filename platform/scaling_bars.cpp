#include "platform/scaling_bars.h"

#include <algorithm>

namespace quarrynet {

TabStrip::TabStrip(QWidget* parent) : QTabBar(parent)
{
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setDrawBase(false);
    setExpanding(true);
}

void TabStrip::setWantedFontSize(int points)
{
    wantedPoints_ = points;
    fit();
}

void TabStrip::resizeEvent(QResizeEvent* event)
{
    fit();
    QTabBar::resizeEvent(event);
}

void TabStrip::fit()
{
    if (wantedPoints_ <= 0 || (fittedSize_ == size() && fittedPoints_ == wantedPoints_))
        return;
    fittedSize_ = size();
    fittedPoints_ = wantedPoints_;
    // In half points: a whole one is a large step at the sizes at which the labels are tight.
    for (int halves = 2 * wantedPoints_; halves >= 4; --halves) {
        QFont smaller = font();
        smaller.setPointSizeF(halves / 2.0);
        setFont(smaller);
        int width = 0;
        int height = 0;
        for (int i = 0; i < count(); ++i) {
            width += tabSizeHint(i).width();
            height = std::max(height, tabSizeHint(i).height());
        }
        if (width <= this->width() && height <= this->height())
            return;
    }
}

ToolBar::ToolBar(QWidget* parent) : QToolBar(parent)
{
    setMovable(false);
    setFloatable(false);
    setToolButtonStyle(Qt::ToolButtonIconOnly);
}

void ToolBar::resizeEvent(QResizeEvent* event)
{
    const int side = std::max(8, height() * 5 / 8);
    setIconSize(QSize(side, side));
    QToolBar::resizeEvent(event);
}

} // namespace quarrynet
