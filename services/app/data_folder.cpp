#include "app/data_folder.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "ground/Descriptor.h"
#include "ground/folder_entries.h"
#include "index/index_place.h"

namespace quarrynet::services {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 6> kOwnFiles{"index.sqlite", "index.sqlite.new", "index.sqlite-journal",
                                                    "index.lock",   kCrawlRecords,      kCrawlLock};

/// Opens `path` without following a link at its end. Returns an empty descriptor on failure.
Descriptor openItself(const fs::path& path)
{
    return Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
}

bool holdsOwnFilesOnly(const fs::path& folder)
{
    bool own = true;
    const std::error_code error = forEachEntry(folder.string(), [&own](const std::string& name) {
        own = own && std::find(kOwnFiles.begin(), kOwnFiles.end(), name) != kOwnFiles.end();
    });
    return own && !error;
}

/// Calls `change` with a descriptor of each of the program's own files in `folder`, and of the folder itself if it
/// contains nothing else.
void forEachOwn(const fs::path& folder, const std::function<void(int descriptor, bool isFolder)>& change)
{
    const bool whole = holdsOwnFilesOnly(folder);
    for (const std::string_view name : kOwnFiles) {
        const Descriptor file = openItself(folder / name);
        struct stat status
        {};
        if (file && ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1)
            change(file.number(), false);
    }
    if (!whole)
        return;
    const Descriptor itself(::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY));
    if (itself)
        change(itself.number(), true);
}

/// Changes only what belongs to this user.
void keepPrivate(const fs::path& folder)
{
    forEachOwn(folder, [](int descriptor, bool isFolder) {
        struct stat status
        {};
        if (::fstat(descriptor, &status) == 0 && status.st_uid == ::geteuid())
            ::fchmod(descriptor, isFolder ? 0700 : 0600);
    });
}

} // namespace

void handOver(const std::string& folder, uid_t user, gid_t group)
{
    forEachOwn(folder, [user, group](int descriptor, bool) {
        struct stat status
        {};
        if (::fstat(descriptor, &status) == 0 && status.st_uid == 0 && ::fchown(descriptor, user, group) != 0)
            return; // the first to read the index reports the error
    });
}

Outcome<std::string> dataFolderPath(const std::string& chosen)
{
    return chosen.empty() ? usualDataFolder() : Outcome<std::string>(chosen);
}

Outcome<std::string> openDataFolder(const std::string& chosen)
{
    const Outcome<std::string> path = dataFolderPath(chosen);
    if (!path)
        return path.error();
    const std::filesystem::path folder = *path;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        return Failure{"cannot create the folder " + folder.string() + ": " + error.message()};
    if (!std::filesystem::is_directory(folder, error))
        return Failure{folder.string() + (error ? " cannot be used: " + error.message() : " is not a folder")};
    keepPrivate(folder);
    return folder.string();
}

} // namespace quarrynet::services
