#include "ground/folder_entries.h"

#include <cerrno>
#include <dirent.h>
#include <memory>

namespace quarrynet {

std::error_code forEachEntry(const std::string& folder, const std::function<void(const std::string& name)>& take)
{
    struct Close
    {
        void operator()(DIR* open) const { ::closedir(open); }
    };
    const std::unique_ptr<DIR, Close> open(::opendir(folder.c_str()));
    if (open == nullptr)
        return {errno, std::generic_category()};
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(open.get());
        if (entry == nullptr)
            return {errno, std::generic_category()};
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            take(name);
    }
}

} // namespace quarrynet
