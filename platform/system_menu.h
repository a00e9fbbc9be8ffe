#pragma once

class QWidget;

namespace quarrynet {

/// Removes the entry Close from the system menu of a top-level window whose native window exists, so that the
/// user cannot close it. Does nothing on systems without such menus; there, the window must reject close events.
void removeCloseFromSystemMenu(QWidget& window);

} // namespace quarrynet
