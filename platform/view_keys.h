#pragma once

#include <QKeyEvent>

namespace quarrynet {

/// Keys that a page view swallows, because they would lead away from its page or load it again: Alt with anything,
/// Ctrl+N, Ctrl+R and F5. (Backspace is swallowed too, but not in a page's field.)
inline bool leadsAway(const QKeyEvent& key)
{
    const bool control = key.modifiers().testFlag(Qt::ControlModifier);
    return key.key() == Qt::Key_Alt || key.modifiers().testFlag(Qt::AltModifier) || key.key() == Qt::Key_F5 ||
           (control && (key.key() == Qt::Key_N || key.key() == Qt::Key_R));
}

} // namespace quarrynet
