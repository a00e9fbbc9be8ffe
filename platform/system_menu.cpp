#include "platform/system_menu.h"

#ifdef _WIN32
#include <windows.h>

#include <QWidget>
#endif

namespace quarrynet {

#ifdef _WIN32

void removeCloseFromSystemMenu(QWidget& window)
{
    const auto handle = reinterpret_cast<HWND>(window.winId());
    HMENU menu = GetSystemMenu(handle, FALSE);
    // Close is the last entry, unless another program or the system has added its own.
    int entry = GetMenuItemCount(menu) - 1;
    while (entry >= 0 && GetMenuItemID(menu, entry) != SC_CLOSE)
        --entry;
    if (entry < 0)
        return;
    RemoveMenu(menu, static_cast<UINT>(entry), MF_BYPOSITION);
    DrawMenuBar(handle);
}

#else

void removeCloseFromSystemMenu(QWidget& /*window*/) {}

#endif

} // namespace quarrynet
