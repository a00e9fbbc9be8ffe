#pragma once

class QWidget;

namespace quarrynet {

/// Takes the last entry, which is Close, out of the system menu of a top-level window that has been created, so that
/// its user cannot close it. Does nothing where windows have no such menu: there the window has to refuse to close.
void removeLastSystemMenuEntry(QWidget& window);

} // namespace quarrynet
