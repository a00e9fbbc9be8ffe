#include "platform/scaling_bars.h"

#include <algorithm>

#include <QEvent>
#include <QLayout>
#include <QStyle>
#include <QStyleOptionMenuItem>

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

QSize TabStrip::tabSizeHint(int index) const
{
    return {QTabBar::tabSizeHint(index).width(), height()};
}

void TabStrip::fit()
{
    if (wantedPoints_ <= 0 || (fittedSize_ == size() && fittedPoints_ == wantedPoints_))
        return;
    fittedSize_ = size();
    fittedPoints_ = wantedPoints_;
    // In half points, because a whole point is a large step at small sizes. Every size tried loads a font, so after the
    // wanted size the search continues at the size that its result suggests.
    const int wanted = 2 * wantedPoints_;
    for (int halves = wanted; halves >= 4;) {
        QFont smaller = font();
        smaller.setPointSizeF(halves / 2.0);
        setFont(smaller);
        int needed = 1;
        int high = 1;
        for (int i = 0; i < count(); ++i) {
            const QSize tab = QTabBar::tabSizeHint(i);
            needed += tab.width();
            high = std::max(high, tab.height());
        }
        if (needed <= width() && high <= height())
            return;
        const double share = std::min(static_cast<double>(width()) / needed, static_cast<double>(height()) / high);
        halves = halves == wanted ? std::min(wanted - 1, static_cast<int>(wanted * share)) : halves - 1;
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
    // The layout was computed before this event, with the old picture size.
    layout()->invalidate();
    layout()->setGeometry(rect());
}

MenuBar::MenuBar(int height, QWidget* parent) : QMenuBar(parent)
{
    setNativeMenuBar(false); // a native bar leaves the window, whose layout needs the bar's height
    setFixedHeight(height);
    fit();
}

int MenuBar::entryHeight() const
{
    QStyleOptionMenuItem entry;
    entry.initFrom(this);
    return style()->sizeFromContents(QStyle::CT_MenuBarItem, &entry, QSize(1, fontMetrics().height()), this).height();
}

void MenuBar::changeEvent(QEvent* event)
{
    QMenuBar::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        fit();
}

void MenuBar::fit()
{
    for (double points = QFontInfo(font()).pointSizeF(); points > 1 && entryHeight() > maximumHeight(); --points) {
        QFont smaller = font();
        smaller.setPointSizeF(points);
        setFont(smaller);
    }
}

StatusBar::StatusBar(QWidget* parent) : QStatusBar(parent)
{
    setSizeGripEnabled(false);
}

void StatusBar::addPanel(QLabel& panel, int share)
{
    panel.setParent(this);
    panel.setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    panels_.emplace_back(&panel, share);
    shares_ += share;
}

void StatusBar::resizeEvent(QResizeEvent* event)
{
    constexpr int kGap = 2;
    QStatusBar::resizeEvent(event);
    int before = 0;
    for (const auto& [panel, share] : panels_) {
        const int left = kGap + (width() - kGap) * before / shares_;
        before += share;
        const int right = (width() - kGap) * before / shares_;
        panel->setGeometry(QStyle::visualRect(layoutDirection(), rect(), QRect(left, 0, right - left, height() - 1)));
    }
}

} // namespace quarrynet
