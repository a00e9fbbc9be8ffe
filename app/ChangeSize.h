#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "common/runtime_error.h"

namespace quarrynet {

/// A property of a control that ChangeSize reads and writes. A line is positioned by its end points `X1`, `Y1` and
/// `X2`, `Y2`, everything else by the box of `Top`, `Left`, `Height` and `Width`. Lengths are in twips, font sizes in
/// points.
enum class LayoutProperty : std::uint8_t
{
    Top,
    Left,
    Height,
    Width,
    FontSize,
    RightMargin,
    X1,
    Y1,
    X2,
    Y2,
};

/// A control as the layout sees it.
class LayoutControl
{
public:
    virtual ~LayoutControl() = default;

    virtual bool isLine() const = 0;

    /// Returns the property's value, or nothing if this kind of control has no such property.
    virtual std::optional<double> read(LayoutProperty property) const = 0;

    /// Sets the property. Does nothing if this kind of control has no such property.
    virtual void write(LayoutProperty property, std::int32_t value) = 0;
};

/// A form as the layout sees it. Lengths are in twips. A form must call ChangeSize::FormResize after each change of its
/// size, also before setHeight and setWidth return.
class LayoutForm
{
public:
    virtual ~LayoutForm() = default;

    virtual double height() const = 0;
    virtual double width() const = 0;
    virtual void setHeight(double height) = 0;
    virtual void setWidth(double width) = 0;
    virtual double fontSize() const = 0;
    virtual bool maximised() const = 0;

    virtual double screenHeight() const = 0;
    virtual double screenWidth() const = 0;

    /// Returns whether the form paints into a buffer, which avoids flicker while controls move.
    virtual bool autoRedraw() const = 0;
    virtual void setAutoRedraw(bool on) = 0;

    /// Gives access to the controls, in a fixed order; `index` is less than count().
    virtual std::size_t count() const = 0;
    virtual LayoutControl& control(std::size_t index) = 0;
};

/// How Init fits the form to its screen.
enum class ScreenFit : std::uint8_t
{
    Scale, // to the share of this screen that the design has of the screen it was drawn on
    Keep,
};

/// Keeps one form's layout in proportion to its size: Init records the geometry of the design, FormResize places every
/// control from those records. A step that fails (a control without the property, a record that does not fit 16 bits)
/// is skipped silently, so that one loop can treat all kinds of controls alike.
class ChangeSize
{
public:
    /// Records the form and its controls, then scales the form to its screen unless `fit` is Keep or the form is
    /// maximised. The next FormResize does nothing; with Scale, setHeight causes it. Returns Overflow, with nothing
    /// recorded, when the form's size or its number of controls does not fit 16 bits.
    std::optional<RuntimeError> Init(LayoutForm& form, ScreenFit fit = ScreenFit::Scale);

    /// Places all controls for the form's current size, after enlarging the form to at least half the recorded size.
    /// Returns DivisionByZero or Overflow, with the controls unchanged, for a size without a ratio to the recorded one:
    /// a height of exactly 400 twips, or a width of 0.
    std::optional<RuntimeError> FormResize(LayoutForm& form);

private:
    struct Record
    {
        std::int16_t top = 0; // for a line, these four hold Y1, X1, Y2 and X2
        std::int16_t left = 0;
        std::int16_t height = 0;
        std::int16_t width = 0;
        std::int16_t fontSize = 0;
        std::int16_t rightMargin = 0;
    };

    std::int16_t initialHeight_ = 0;
    std::int16_t initialWidth_ = 0;
    std::vector<Record> records_;
    bool firstResizePending_ = false;
};

} // namespace quarrynet
