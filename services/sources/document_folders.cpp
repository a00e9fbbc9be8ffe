#include "sources/document_folders.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <utility>
#include <vector>

#include "ground/ascii.h"
#include "ground/folder_entries.h"
#include "ground/percent_coding.h"
#include "thumbnails/picture_format.h"

namespace quarrynet::services {

namespace fs = std::filesystem;

namespace {

struct Folder
{
    std::string path; ///< below the root, empty or ending in "/"
    std::size_t depth = 0;
};

/// One walk through a root.
class Walk
{
public:
    Walk(std::string root, const std::function<bool(std::string_view)>& wanted,
         const std::function<void(const std::string&)>& take)
        : root_(std::move(root)), wanted_(wanted), take_(take)
    {}

    LeftOut run()
    {
        std::error_code error;
        if (!fs::exists(root_, error) && !error)
            return {};
        pending_.push_back({});
        while (!pending_.empty()) {
            const Folder folder = std::move(pending_.back());
            pending_.pop_back();
            list(folder);
        }
        return std::move(left_);
    }

private:
    void list(const Folder& folder)
    {
        const std::string path = root_ + "/" + folder.path;
        const std::error_code error =
            forEachEntry(path, [this, &folder](const std::string& name) { takeEntry(folder, name); });
        if (error)
            left_.add(path, error.message());
    }

    void takeEntry(const Folder& folder, const std::string& name)
    {
        if (name.front() == '.')
            return;
        const std::string path = root_ + "/" + folder.path + name;
        struct stat status
        {};
        if (::lstat(path.c_str(), &status) != 0) {
            left_.add(path, std::strerror(errno));
        } else if (S_ISDIR(status.st_mode)) {
            if (folder.depth < kMaxFolderDepth)
                pending_.push_back({folder.path + name + "/", folder.depth + 1});
            else
                left_.add(path, "its path is too deep");
        } else if (S_ISREG(status.st_mode) && wanted_(name) && status.st_nlink == 1) {
            take_(folder.path + name);
        }
    }

    std::string root_;
    const std::function<bool(std::string_view)>& wanted_;
    const std::function<void(const std::string&)>& take_;
    std::vector<Folder> pending_;
    LeftOut left_;
};

} // namespace

void LeftOut::add(std::string_view path, std::string_view reason)
{
    if (count++ == 0)
        first = std::string(path) + ": " + std::string(reason);
}

void LeftOut::add(const LeftOut& others)
{
    if (count == 0)
        first = others.first;
    count += others.count;
}

LeftOut findFiles(const std::string& root, const std::function<bool(std::string_view)>& wanted,
                  const std::function<void(const std::string&)>& take)
{
    return Walk(root, wanted, take).run();
}

LeftOut findHtmlFiles(const std::string& root, const std::function<void(const std::string&)>& take)
{
    const auto isHtml = [](std::string_view name) {
        return endsWithIgnoringCase(name, ".html") || endsWithIgnoringCase(name, ".htm") ||
               endsWithIgnoringCase(name, ".xhtml");
    };
    return findFiles(root, isHtml, take);
}

std::optional<std::string> pathSeenFrom(std::string_view page, std::string_view address)
{
    address = address.substr(0, address.find_first_of("?#"));
    if (address.empty() || address.front() == '/' ||
        address.substr(0, address.find('/')).find(':') != std::string::npos)
        return std::nullopt;
    // The folder of the page: empty or ending in "/".
    std::string path(page.substr(0, page.rfind('/') + 1));
    const std::string decoded = decodePercent(address);
    for (std::size_t at = 0; at <= decoded.size();) {
        const std::size_t end = std::min(decoded.find('/', at), decoded.size());
        const std::string part = decoded.substr(at, end - at);
        at = end + 1;
        if (part == "..") {
            if (path.empty())
                return std::nullopt;
            path.resize(path.size() - 1);
            path.resize(path.rfind('/') + 1);
        } else if (!part.empty() && part != ".") {
            path += part + (end < decoded.size() ? "/" : "");
        }
    }
    return path;
}

} // namespace quarrynet::services
