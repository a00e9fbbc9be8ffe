#include "platform/system_menu.h"

#ifdef _WIN32
#include <windows.h>

#include <QWidget>
#endif

namespace quarrynet {

#ifdef _WIN32

void removeLastSystemMenuEntry(QWidget& window)
{
    const auto handle = reinterpret_cast<HWND>(window.winId());
    HMENU menu = GetSystemMenu(handle, FALSE);
    const int count = GetMenuItemCount(menu);
    if (count <= 0)
        return;
    RemoveMenu(menu, static_cast<UINT>(count - 1), MF_BYPOSITION);
    DrawMenuBar(handle);
}

#else

void removeLastSystemMenuEntry(QWidget& /*window*/) {}

#endif

} // namespace quarrynet
