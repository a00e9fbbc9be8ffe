#include "crawl/listed_directory.h"

#include <algorithm>
#include <utility>

#include "ground/ascii.h"

namespace quarrynet::services {

bool canBeListedName(std::string_view name)
{
    return !name.empty() && name.size() <= kMaxListedName && name != "." && name != ".." &&
           std::none_of(name.begin(), name.end(), [](char c) { return c == '/' || isAsciiControl(c); });
}

ListedDirectory refusedDirectory(std::string reason)
{
    ListedDirectory directory;
    directory.refused = true;
    directory.reason = std::move(reason);
    return directory;
}

} // namespace quarrynet::services
