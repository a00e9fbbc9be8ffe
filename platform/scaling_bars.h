#pragma once

#include <utility>
#include <vector>

#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>

/// The window's bars. Stock widgets would not adapt when the layout changes their size.
namespace quarrynet {

/// A tab strip whose labels are never cut: if they do not fit at the wanted font size, the font is reduced.
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

/// A toolbar whose pictures scale with its height.
class ToolBar final : public QToolBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ToolBar)

public:
    explicit ToolBar(QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;
};

/// A menu bar of a fixed height. ProgramStyle centres its entries vertically.
class MenuBar final : public QMenuBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MenuBar)

public:
    MenuBar(int height, QWidget* parent);

    /// Returns the height of an entry in the current style and font.
    int entryHeight() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void fit();
};

/// A status bar of panels that are as high as the bar. A stock bar has margins that leave no room for text in a low
/// bar.
class StatusBar final : public QStatusBar
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StatusBar)

public:
    explicit StatusBar(QWidget* parent = nullptr);

    /// Adds a panel at the right. Its part of the width is `share` divided by the sum of all shares.
    void addPanel(QLabel& panel, int share);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    std::vector<std::pair<QLabel*, int>> panels_;
    int shares_ = 0; // of all panels
};

} // namespace quarrynet
