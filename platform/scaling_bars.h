#pragma once

#include <utility>
#include <vector>

#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>

/// The window's bars, as far as stock widgets do not follow when the layout changes their size.
namespace quarrynet {

/// A tab strip on which all tabs stay readable in full: where the labels do not fit at the wanted font size, the font
/// gives way.
class TabStrip final : public QTabBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TabStrip)

public:
    explicit TabStrip(QWidget* parent = nullptr);

    void setWantedFontSize(int points);

protected:
    void resizeEvent(QResizeEvent* event) override;
    // Tabs reach down to the frame below the strip.
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }

private:
    void fit();

    int wantedPoints_ = 0;
    QSize fittedSize_;
    int fittedPoints_ = 0;
};

/// A toolbar whose pictures keep their share of its height.
class ToolBar final : public QToolBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ToolBar)

public:
    explicit ToolBar(QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;
};

/// A menu bar of a fixed height, with its entries in the middle of it rather than at its top.
class MenuBar final : public QMenuBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MenuBar)

public:
    MenuBar(int height, QWidget* parent);
};

/// A status bar that consists of panels and has them as high as itself: a stock one keeps margins that leave no room
/// for a text where the bar is low.
class StatusBar final : public QStatusBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StatusBar)

public:
    explicit StatusBar(QWidget* parent = nullptr);

    /// Adds a panel at the right, which gets `share` of the sum of all shares of the width.
    void addPanel(QLabel& panel, int share);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    std::vector<std::pair<QLabel*, int>> panels_;
    int shares_ = 0; // of all panels
};

} // namespace quarrynet
