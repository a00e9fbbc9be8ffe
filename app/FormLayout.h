#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QRect>

#include "app/ChangeSize.h"

class QMainWindow;
class QWidget;

namespace quarrynet {

/// Gives ChangeSize access to the main window and its controls, in twips (15 per device-independent pixel).
///
/// Height and width exclude the title bar. The layout reserves the caption allowance for the menu bar; the controls
/// share the rest.
class FormLayout final : public LayoutForm
{
public:
    static constexpr int kTwipsPerPixel = 15;
    static constexpr int kMenuBarHeight = 26; // the caption allowance of 400 twips in whole pixels

    /// `controls` are the controls to place; the form's other objects have no geometry to keep. `resized` runs after
    /// setHeight and setWidth while the form is hidden, because Qt delays its resize events.
    FormLayout(QMainWindow& form, const std::vector<QWidget*>& controls, std::function<void()> resized);
    ~FormLayout() override;

    /// Moves and resizes each control, in one step, to the place that ChangeSize has written; in a language that reads
    /// from right to left, to the mirror image of that place.
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
    bool autoRedraw_ = false; // only kept: Qt buffers the painting of every window
};

/// Reduces the form's font if the desktop's is so large that a control's text would not fit its place in the design.
/// All font sizes of the layout follow from the form's font, so texts then fit at every size of the design's
/// proportions. Call before ChangeSize::Init.
void fitFont(QMainWindow& form, const std::vector<QWidget*>& controls);

} // namespace quarrynet
