#pragma once

#include <QKeyEvent>

namespace quarrynet {

/// Returns whether a page view discards `key` because it would leave the page or reload it: Alt with any key, Ctrl+N,
/// Ctrl+R and F5. (Backspace is discarded too, except in a page's field.)
inline bool leadsAway(const QKeyEvent& key)
{
    const bool control = key.modifiers().testFlag(Qt::ControlModifier);
    return key.key() == Qt::Key_Alt || key.modifiers().testFlag(Qt::AltModifier) || key.key() == Qt::Key_F5 ||
           (control && (key.key() == Qt::Key_N || key.key() == Qt::Key_R));
}

} // namespace quarrynet
