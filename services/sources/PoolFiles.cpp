#include "sources/PoolFiles.h"

#include <algorithm>
#include <tuple>

#include "index/database.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kNodeBytes = 80; ///< memory for an entry or a folder besides its text

/// Returns the length of the part before the first "_", which version and architecture follow.
std::size_t stemLength(std::string_view name)
{
    return std::min(name.find('_'), name.size());
}

} // namespace

std::size_t PoolFiles::folderNumber(std::size_t site, std::string_view path)
{
    const std::string key = std::to_string(site) + "/" + std::string(path);
    const auto known = folderNumbers_.find(key);
    if (known != folderNumbers_.end())
        return known->second;
    if (!path.empty()) {
        // A folder is also an entry of its parent folder.
        const std::string_view whole = path.substr(0, path.size() - 1);
        const std::size_t slash = whole.rfind('/');
        const std::size_t split = slash == std::string_view::npos ? 0 : slash + 1;
        const std::size_t parent = folderNumber(site, whole.substr(0, split));
        entries_.push_back({parent, std::string(whole.substr(split)), 0, true});
    }
    bytes_ += 2 * (path.size() + kNodeBytes);
    folders_.push_back({site, std::string(path)});
    folderNumbers_.emplace(key, folders_.size() - 1);
    return folders_.size() - 1;
}

bool PoolFiles::add(std::string_view base, std::string_view file, std::int64_t size)
{
    while (!file.empty() && file.front() == '/')
        file.remove_prefix(1);
    const std::size_t slash = file.rfind('/');
    const std::size_t split = slash == std::string_view::npos ? 0 : slash + 1;
    if (split == file.size())
        return true;
    if (file.size() > kMaxPoolPath || bytes_ > kMaxPoolBytes ||
        static_cast<std::size_t>(std::count(file.begin(), file.end(), '/')) > kMaxPoolLevels)
        return false;
    bytes_ += file.size() - split + kNodeBytes;
    auto site = siteNumbers_.find(base);
    if (site == siteNumbers_.end()) {
        sites_.emplace_back(base);
        site = siteNumbers_.emplace(base, sites_.size() - 1).first;
    }
    entries_.push_back(
        {folderNumber(site->second, file.substr(0, split)), std::string(file.substr(split)), size, false});
    return true;
}

Outcome<Done> PoolFiles::write(IndexWriter& writer)
{
    std::vector<std::int64_t> siteRows;
    for (const std::string& site : sites_) {
        const Outcome<std::int64_t> row = writer.addFileSite(site, 0);
        if (!row)
            return row.error();
        siteRows.push_back(*row);
    }
    std::vector<std::int64_t> folderRows;
    for (const Folder& folder : folders_) {
        const Outcome<std::int64_t> row = writer.addFileFolder(siteRows[folder.site], folder.path);
        if (!row)
            return row.error();
        folderRows.push_back(*row);
    }
    std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
        return std::make_tuple(stemLength(a.name), a.directory, std::string_view(a.name), a.folder) <
               std::make_tuple(stemLength(b.name), b.directory, std::string_view(b.name), b.folder);
    });
    std::int64_t number = kFirstPackageFile;
    for (const Entry& entry : entries_) {
        FileEntry row{folderRows[entry.folder], entry.name};
        row.directory = entry.directory;
        if (!entry.directory)
            row.size = entry.size;
        Outcome<Done> added = writer.addFile(number++, row);
        if (!added)
            return added;
    }
    return Done{};
}

} // namespace quarrynet::services
