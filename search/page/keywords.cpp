#include "search/page/keywords.h"

#include <cstddef>

namespace quarrynet {

std::vector<std::string> keywordEntries(std::string_view typed)
{
    std::vector<std::string> entries;
    std::size_t from = 0;
    for (std::size_t blank = typed.find(' '); blank != std::string_view::npos; blank = typed.find(' ', from)) {
        entries.emplace_back(typed.substr(from, blank + 1 - from));
        from = blank + 1;
    }
    entries.emplace_back(typed.substr(from)).push_back(' ');
    return entries;
}

} // namespace quarrynet
