#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "common/runtime_error.h"

namespace quarrynet {

/// What ChangeSize reads and writes of a control. A line is positioned by its end points `X1`, `Y1` and `X2`, `Y2`,
/// everything else by the box of `Top`, `Left`, `Height` and `Width`. Lengths are twips, font sizes points.
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

    /// The property's value, or nothing where this kind of control has no such property.
    virtual std::optional<double> read(LayoutProperty property) const = 0;

    /// Sets the property; does nothing where this kind of control has no such property.
    virtual void write(LayoutProperty property, std::int32_t value) = 0;
};

/// A form as the layout sees it. Lengths are twips. A form that changes its size, by setHeight and setWidth too, has to
/// call ChangeSize::FormResize before it returns.
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

    /// Whether the form paints into a picture of its own, which keeps it from flickering while controls move.
    virtual bool autoRedraw() const = 0;
    virtual void setAutoRedraw(bool on) = 0;

    /// The controls, in an order that never changes; `index` is below count().
    virtual std::size_t count() const = 0;
    virtual LayoutControl& control(std::size_t index) = 0;
};

/// What Init does about the screen that the form stands on.
enum class ScreenFit : std::uint8_t
{
    Scale, // as much of this screen as the design takes of the screen that it was drawn on
    Keep,
};

/// Keeps one form's layout in proportion to its size: Init records the geometry of the design, FormResize places every
/// control anew from those records. A single step that cannot be carried out (a control without the property, a record
/// that does not fit 16 bits) is skipped in silence: that is what lets one loop treat every kind of control alike.
class ChangeSize
{
public:
    /// Records the form and its controls, then sizes the form for its screen, unless it is maximised or told to Keep
    /// it. The first FormResize that follows does nothing, and with Scale that is the one that setHeight raises.
    /// Gives Overflow, with nothing recorded, when the form's size or its number of controls does not fit 16 bits.
    std::optional<RuntimeError> Init(LayoutForm& form, ScreenFit fit = ScreenFit::Scale);

    /// Places all controls for the form's present size, which grows to half the recorded size first where it is below
    /// that. Gives DivisionByZero or Overflow, with the controls untouched, for a size that has no ratio to the
    /// recorded one: a height of exactly 400 twips, a width of 0.
    std::optional<RuntimeError> FormResize(LayoutForm& form);

private:
    struct Record
    {
        std::int16_t top = 0; // of a line, as for the next three: Y1, X1, Y2, X2
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
