#pragma once

class QPoint;

namespace quarrynet {

class ListView;

/// Opens the menu of a list's commands at `place`, in the screen's coordinates, unless it is open already. It works
/// with the selected rows; entries that have nothing to work with are disabled. Returns at once.
void showListMenu(ListView& list, const QPoint& place);

} // namespace quarrynet
