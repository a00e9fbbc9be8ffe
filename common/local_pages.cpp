#include "common/local_pages.h"

#include <array>

namespace quarrynet {

namespace {

#ifdef _WIN32
constexpr char kSeparator = '\\';
constexpr std::string_view kSeparators = "\\/";
#else
constexpr char kSeparator = '/';
constexpr std::string_view kSeparators = "/";
#endif

constexpr std::array<std::string_view, 53> kBlankLines = {
    "<html><head>",
    "<SCRIPT LANGUAGE=JAVASCRIPT>",
    "var oLastBtn=0;",
    "bIsMenu = false;",
    "//No RIGHT CLICK************************",
    "// ****************************",
    "    if (window.Event)",
    "    document.captureEvents(Event.MOUSEUP);",
    "    function nocontextmenu()",
    "    {",
    "    event.cancelBubble = true;",
    "    event.returnValue = false;",
    "    return false;",
    "    }",
    "    function norightclick(e)",
    "    {",
    "    if (window.Event)",
    "    {",
    "    if (e.which !=1)",
    "    return false;",
    "    }",
    "    else",
    "    if (event.button !=1)",
    "    {",
    "    event.cancelBubble = true;",
    "    event.returnValue = false;",
    "    return false;",
    "    }",
    "    }",
    "    document.oncontextmenu = nocontextmenu;",
    "    document.onmousedown = norightclick;",
    "    //**************************************",
    "    // ****************************",
    "    // Block backspace onKeyDown************ & vbcrlf",
    "    // ***************************",
    "     function onKeyDown() {",
    "        if ( (event.altKey) || ((event.keyCode == 8) &&",
    R"(                    (event.srcElement.type != "text" &&)",
    R"(                    event.srcElement.type != "textarea" &&)",
    R"(                    event.srcElement.type != "password")) ||)",
    "                    ((event.ctrlKey) && ((event.keyCode == 78) || (event.keyCode == 82)) ) ||",
    "        ",
    "        ",
    "                    (event.keyCode == 116) ) {",
    "                event.keyCode = 0;",
    "                event.returnValue = false;",
    "            }",
    "         }",
    "</SCRIPT>",
    "</HEAD>",
    R"(<BODY onKeyDown="onKeyDown();" MARGINHEIGHT="0" MARGINWIDTH="0" TOPMARGIN="0" LEFTMARGIN="0">)",
    "</body>",
    "</html>",
};

// Deliberate: this line of the blank page has no line end, so the next one continues it. Both are comments of the
// script, and the file's bytes are fixed.
constexpr std::size_t kOpenLine = 34;

} // namespace

std::string framePage(std::string_view source)
{
    std::string page = "<HTML><frameset rows=100% border=0><frame noresize scrolling=auto name=blank src=";
    page.append(source);
    page.append("></frame></frameset></HTML>");
    return page;
}

std::string blankFramePage()
{
    return framePage(kBlankPageName);
}

std::string blankPage()
{
    std::string page;
    for (std::size_t line = 1; line <= kBlankLines.size(); ++line) {
        page.append(kBlankLines[line - 1]);
        if (line != kOpenLine)
            page.append("\r\n");
    }
    return page;
}

std::string pathInFolder(std::string_view folder, std::string_view name)
{
    std::string path(folder);
    if (folder.empty() || kSeparators.find(folder.back()) == std::string_view::npos)
        path.push_back(kSeparator);
    path.append(name);
    return path;
}

} // namespace quarrynet
