#include "app/ChangeSize.h"

#include <cmath>
#include <limits>

#include "common/numbers.h"

namespace quarrynet {

namespace {

// The screen that the window was designed on, without its task bar.
constexpr double kDesignScreenHeight = 7290;
constexpr double kDesignScreenWidth = 9690;

// The caption and the menu bar do not grow with the window.
constexpr double kCaptionAllowance = 400;

void record(std::int16_t& entry, std::optional<double> value)
{
    if (!value)
        return;
    if (const Result<std::int16_t> whole = roundToInt16(*value))
        entry = *whole;
}

// Returns the largest whole number up to `value`, or nothing when it does not fit 32 bits; the step is then skipped.
std::optional<std::int32_t> floorOf(double value)
{
    const double whole = std::floor(value);
    if (!(whole >= std::numeric_limits<std::int32_t>::min() && whole <= std::numeric_limits<std::int32_t>::max()))
        return std::nullopt;
    return static_cast<std::int32_t>(whole);
}

void place(LayoutControl& control, LayoutProperty property, std::int16_t entry, double ratio)
{
    if (const std::optional<std::int32_t> value = floorOf(entry / ratio))
        control.write(property, *value);
}

// Raises an odd size to the next even one.
void placeFont(LayoutControl& control, std::int16_t entry, double ratio)
{
    const std::optional<std::int32_t> size = floorOf(entry / ratio);
    if (size && *size < std::numeric_limits<std::int32_t>::max())
        control.write(LayoutProperty::FontSize, *size + *size % 2);
}

Result<double> ratioOf(double initial, double current)
{
    if (current == 0)
        return initial == 0 ? RuntimeError::Overflow : RuntimeError::DivisionByZero;
    return initial / current;
}

} // namespace

std::optional<RuntimeError> ChangeSize::Init(LayoutForm& form, ScreenFit fit)
{
    const Result<std::int16_t> height = roundToInt16(form.height());
    const Result<std::int16_t> width = roundToInt16(form.width());
    const std::size_t count = form.count();
    if (!height || !width || !roundToInt16(static_cast<double>(count) - 1))
        return RuntimeError::Overflow;
    initialHeight_ = *height;
    initialWidth_ = *width;
    firstResizePending_ = true;
    records_.assign(count, Record{});

    for (std::size_t i = 0; i < count; ++i) {
        const LayoutControl& control = form.control(i);
        Record& entry = records_[i];
        if (control.isLine()) {
            record(entry.top, control.read(LayoutProperty::Y1));
            record(entry.left, control.read(LayoutProperty::X1));
            record(entry.height, control.read(LayoutProperty::Y2));
            record(entry.width, control.read(LayoutProperty::X2));
        } else {
            record(entry.top, control.read(LayoutProperty::Top));
            record(entry.left, control.read(LayoutProperty::Left));
            record(entry.height, control.read(LayoutProperty::Height));
            record(entry.width, control.read(LayoutProperty::Width));
            // All controls get the form's own font size, so they share one from the first scaling on.
            record(entry.fontSize, form.fontSize());
            record(entry.rightMargin, control.read(LayoutProperty::RightMargin));
        }
    }

    if (fit == ScreenFit::Scale && !form.maximised()) {
        form.setHeight(form.screenHeight() * form.height() / kDesignScreenHeight);
        form.setWidth(form.screenWidth() * form.width() / kDesignScreenWidth);
    }
    return std::nullopt;
}

std::optional<RuntimeError> ChangeSize::FormResize(LayoutForm& form)
{
    const bool autoRedraw = form.autoRedraw();
    form.setAutoRedraw(true);
    if (firstResizePending_) {
        // This is the notification of the form's first sizing. AutoRedraw stays on afterwards.
        firstResizePending_ = false;
        return std::nullopt;
    }

    const float leastHeight = static_cast<float>(initialHeight_) / 2;
    if (static_cast<double>(leastHeight) > form.height())
        form.setHeight(static_cast<double>(leastHeight));
    const float leastWidth = static_cast<float>(initialWidth_) / 2;
    if (static_cast<double>(leastWidth) > form.width())
        form.setWidth(static_cast<double>(leastWidth));

    // Recorded size divided by current size. Lengths are divided by these ratios.
    const Result<double> ratioH = ratioOf(initialHeight_ - kCaptionAllowance, form.height() - kCaptionAllowance);
    if (!ratioH)
        return ratioH.error();
    const Result<double> ratioW = ratioOf(initialWidth_, form.width());
    if (!ratioW)
        return ratioW.error();

    for (std::size_t i = 0; i < records_.size() && i < form.count(); ++i) {
        LayoutControl& control = form.control(i);
        const Record& entry = records_[i];
        if (control.isLine()) {
            place(control, LayoutProperty::Y1, entry.top, *ratioH);
            place(control, LayoutProperty::X1, entry.left, *ratioW);
            place(control, LayoutProperty::Y2, entry.height, *ratioH);
            place(control, LayoutProperty::X2, entry.width, *ratioW);
        } else {
            place(control, LayoutProperty::Top, entry.top, *ratioH);
            place(control, LayoutProperty::Left, entry.left, *ratioW);
            place(control, LayoutProperty::Height, entry.height, *ratioH);
            place(control, LayoutProperty::Width, entry.width, *ratioW);
            placeFont(control, entry.fontSize, *ratioW);
            // Deliberate: a rich text's margin follows the height, although it is a horizontal length.
            place(control, LayoutProperty::RightMargin, entry.rightMargin, *ratioH);
        }
    }
    form.setAutoRedraw(autoRedraw);
    return std::nullopt;
}

} // namespace quarrynet
