#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QRect>

#include "app/ChangeSize.h"

class QMainWindow;
class QWidget;

namespace quarrynet {

/// Shows the main window and its controls to ChangeSize, in twips: 15 to a device-independent pixel.
///
/// Height and width are the window's without its title bar. Of them the layout sets the caption allowance apart, and
/// that is the menu bar's height; the controls share out the rest.
class FormLayout final : public LayoutForm
{
public:
    static constexpr int kTwipsPerPixel = 15;
    static constexpr int kMenuBarHeight = 26; // the caption allowance of 400 twips in whole pixels

    /// `controls` are what is placed; the other objects of the form have no geometry to keep.
    FormLayout(QMainWindow& form, const std::vector<QWidget*>& controls, std::function<void()> resized);
    ~FormLayout() override;

    /// Puts the controls where ChangeSize has written them, each moved and resized at once.
    void apply();

    double height() const override;
    double width() const override;
    void setHeight(double height) override;
    void setWidth(double width) override;
    double fontSize() const override;
    bool maximised() const override;
    double screenHeight() const override;
    double screenWidth() const override;
    bool autoRedraw() const override { return autoRedraw_; }
    void setAutoRedraw(bool on) override { autoRedraw_ = on; }
    std::size_t count() const override { return controls_.size(); }
    LayoutControl& control(std::size_t index) override;

private:
    class Control;

    QMainWindow& form_;
    std::vector<std::unique_ptr<Control>> controls_;
    std::function<void()> resized_;
    double fontSize_;
    bool autoRedraw_ = false; // Qt paints every window into a picture of its own, so there is nothing to switch
};

/// Lowers the form's font where the desktop's is so large that the text of a control would not fit its place in the
/// design. All sizes of the layout follow from the form's font, so this keeps the texts whole at every size of the form
/// that keeps the design's proportions. To be called before the layout is recorded.
void fitFont(QMainWindow& form, const std::vector<QWidget*>& controls);

} // namespace quarrynet
