#include "search/image/gallery.h"

#include <array>
#include <string_view>

#include "common/local_pages.h"

namespace quarrynet {

namespace {

constexpr std::array<std::string_view, 43> kHead = {
    "<html><head>",
    "<SCRIPT LANGUAGE=JAVASCRIPT>",
    "var oLastBtn=0;",
    "bIsMenu = false;",
    "if (window.Event)",
    "document.captureEvents(Event.MOUSEUP);",
    "function nocontextmenu()",
    "{",
    "event.cancelBubble = true;",
    "event.returnValue = false;",
    "return false;",
    "}",
    "function norightclick(e)",
    "{",
    "if (window.Event)",
    "{",
    "if (e.which !=1)",
    "return false;",
    "}",
    "else",
    "if (event.button !=1)",
    "{",
    "event.cancelBubble = true;",
    "event.returnValue = false;",
    "return false;",
    "}",
    "}",
    "document.oncontextmenu = nocontextmenu;",
    "document.onmousedown = norightclick;",
    "function onKeyDown() {",
    "if ( (event.altKey) || ((event.keyCode == 8) &&",
    R"((event.srcElement.type != "text" &&)",
    R"(event.srcElement.type != "textarea" &&)",
    R"(event.srcElement.type != "password")) ||)",
    "((event.ctrlKey) && ((event.keyCode == 78) || (event.keyCode == 82)) ) ||",
    "(event.keyCode == 116) ) {",
    "event.keyCode = 0;",
    "event.returnValue = false;",
    "}",
    "}",
    "</SCRIPT>",
    "</HEAD>",
    R"(<BODY onKeyDown="onKeyDown();" MARGINHEIGHT="0" MARGINWIDTH="0" TOPMARGIN="0" LEFTMARGIN="0">)",
};

} // namespace

std::string galleryPage(const std::vector<std::string>& addresses, const std::vector<std::string>& thumbnails)
{
    std::string page;
    for (const std::string_view line : kHead)
        page.append(line).append("\r\n");
    for (std::size_t i = 0; i < thumbnails.size(); ++i) {
        const std::string_view address = i < addresses.size() ? std::string_view(addresses[i]) : std::string_view();
        page.append("<p align=center><a href=\"http://").append(address).append("\" target=\"_blank\"><img src=\"");
        page.append(thumbnails[i]).append("\"><br>http://").append(address).append("</a><p>\r\n");
    }
    return page;
}

std::string galleryFramePage()
{
    return framePage(kGalleryPageName);
}

} // namespace quarrynet
