#pragma once

#include <optional>

#include <QKeyEvent>
#include <QWheelEvent>

namespace quarrynet {

/// Returns whether a page view discards `key` because it would leave the page or reload it: Alt with any key, Ctrl+N,
/// Ctrl+R and F5. (Backspace is discarded too, except in a page's field.)
inline bool leadsAway(const QKeyEvent& key)
{
    const bool control = key.modifiers().testFlag(Qt::ControlModifier);
    return key.key() == Qt::Key_Alt || key.modifiers().testFlag(Qt::AltModifier) || key.key() == Qt::Key_F5 ||
           (control && (key.key() == Qt::Key_N || key.key() == Qt::Key_R));
}

/// A change of a page view's zoom.
enum class Zoom
{
    In,
    Out,
    Reset
};

/// Returns the change that `key` asks for: Ctrl+Plus (or Ctrl+Equal, the same key without Shift on many keyboards),
/// Ctrl+Minus or Ctrl+0.
inline std::optional<Zoom> zoomOf(const QKeyEvent& key)
{
    if ((key.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != Qt::ControlModifier)
        return std::nullopt;
    switch (key.key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return Zoom::In;
    case Qt::Key_Minus:
        return Zoom::Out;
    case Qt::Key_0:
        return Zoom::Reset;
    default:
        return std::nullopt;
    }
}

/// Turns a wheel's movement with Ctrl into zoom changes. A touchpad moves by less than a step at a time.
class WheelZoom
{
public:
    /// Returns whether the event zooms. Calls `change` at most once.
    template <class Change>
    bool take(const QWheelEvent& wheel, const Change& change)
    {
        if (wheel.modifiers() != Qt::ControlModifier)
            return false;
        turned_ += wheel.angleDelta().y();
        if (turned_ >= QWheelEvent::DefaultDeltasPerStep)
            change(Zoom::In);
        else if (turned_ <= -QWheelEvent::DefaultDeltasPerStep)
            change(Zoom::Out);
        else
            return true;
        turned_ = 0;
        return true;
    }

private:
    int turned_ = 0; // in eighths of a degree, since the last change
};

} // namespace quarrynet
