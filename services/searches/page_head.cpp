#include "searches/page_head.h"

#include "text/markup.h"

namespace quarrynet::services {

std::string pageHead(std::string_view title, Language language, std::string_view style)
{
    std::string head = "<!DOCTYPE html>\n<html lang=\"";
    head.append(codeOf(language)).append("\">\n<head><meta charset=\"utf-8\"><title>");
    head.append(escapeText(translated(title, language)))
        .append("</title>\n<style>:root { color-scheme: light dark } ")
        .append(style);
    return head + "</style>\n</head>\n<body>\n";
}

std::string submitButton(Language language)
{
    return "<input type=\"submit\" value=\"" + escapeAttribute(translated("Search", language)) + "\">";
}

} // namespace quarrynet::services
