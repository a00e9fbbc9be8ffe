#pragma once

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

} // namespace quarrynet
