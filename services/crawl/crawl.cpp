#include "crawl/crawl.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "text/markup.h"

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMaxFailures = 3; // in succession
constexpr std::size_t kProgressStep = 100;
constexpr std::size_t kMaxPath = 4096;
constexpr std::size_t kNodeBytes = 96; ///< approximate memory for a stored text besides its bytes

/// Listings of the directories above: size and hash of each text.
struct Ancestor
{
    std::size_t size = 0;
    std::size_t hash = 0;
    std::shared_ptr<const Ancestor> above;
};

struct Pending
{
    std::string path;
    std::size_t depth = 0;
    std::shared_ptr<const Ancestor> above;
};

struct Link
{
    std::size_t file = 0; ///< index into Crawl::files
    std::string target;
};

bool repeatsOneAbove(const std::shared_ptr<const Ancestor>& above, std::size_t size, std::size_t hash)
{
    for (const Ancestor* ancestor = above.get(); ancestor != nullptr; ancestor = ancestor->above.get()) {
        if (ancestor->size == size && ancestor->hash == hash)
            return true;
    }
    return false;
}

/// Returns the path that a link in `folder` leads to, relative to the login directory, without a trailing slash, or
/// nothing when it leads outside.
std::optional<std::string> linkedPath(std::string_view folder, std::string_view target)
{
    std::vector<std::string_view> parts;
    const auto walk = [&parts](std::string_view path) {
        while (!path.empty()) {
            const std::size_t end = std::min(path.find('/'), path.size());
            const std::string_view part = path.substr(0, end);
            path.remove_prefix(std::min(end + 1, path.size()));
            if (part == "..") {
                if (parts.empty())
                    return false;
                parts.pop_back();
            } else if (!part.empty() && part != ".") {
                parts.push_back(part);
            }
        }
        return true;
    };
    if ((target.substr(0, 1) != "/" && !walk(folder)) || !walk(target))
        return std::nullopt;
    std::string path;
    for (const std::string_view part : parts) {
        path += path.empty() ? "" : "/";
        path += part;
    }
    return path;
}

class Crawler
{
public:
    Crawler(std::string_view start, const CrawlLimits& limits, const CrawlTools& tools)
        : start_(start), limits_(limits), tools_(tools), begin_(tools.now()), nextTurn_(begin_)
    {}

    Outcome<Crawl> run();

private:
    void keepRate();
    void take(const Pending& place, const ListedDirectory& directory);
    void takeEntry(const Pending& place, std::size_t folder, const ListedEntry& entry,
                   const std::shared_ptr<const Ancestor>& self);
    void resolveLinks();

    std::string start_;
    CrawlLimits limits_;
    const CrawlTools& tools_;
    Clock::time_point begin_;
    Clock::time_point nextTurn_;
    std::deque<Pending> pending_;
    std::set<std::string> entered_; ///< "unique" facts
    std::vector<Link> links_;
    std::size_t bytes_ = 0; ///< memory, as the limit counts it
    Crawl crawl_;
};

void Crawler::keepRate()
{
    const Clock::time_point now = tools_.now();
    if (now < nextTurn_)
        tools_.wait(nextTurn_ - now);
    nextTurn_ = std::max(now, nextTurn_) + Clock::duration(std::chrono::seconds(1)) / std::max(1U, limits_.rate);
}

Outcome<Crawl> Crawler::run()
{
    std::size_t failures = 0;
    std::size_t listed = 0;
    pending_.push_back({start_, 0, nullptr});
    for (; !pending_.empty() && crawl_.cut.empty(); pending_.pop_front()) {
        keepRate();
        if (tools_.now() - begin_ >= limits_.time) {
            crawl_.cut = "the time limit was reached";
            break;
        }
        const Pending& place = pending_.front();
        const Outcome<ListedDirectory> directory = tools_.list(place.path);
        failures = directory ? 0 : failures + 1;
        const bool isFirst = listed++ == 0;
        if (!directory && (isFirst || failures == kMaxFailures))
            return directory.error();
        if (isFirst && directory->refused)
            return Failure{"the server refuses to list this directory" +
                           (directory->reason.empty() ? "" : ": " + directory->reason)};
        if (!directory || directory->refused)
            ++crawl_.refused;
        else
            take(place, *directory);
        if (listed % kProgressStep == 0)
            tools_.progress(withSeparators(static_cast<std::int64_t>(listed)) + " directories, " +
                            withSeparators(static_cast<std::int64_t>(crawl_.files.size())) + " names");
    }
    resolveLinks();
    return std::move(crawl_);
}

void Crawler::take(const Pending& place, const ListedDirectory& directory)
{
    const std::size_t hash = std::hash<std::string>()(directory.listing);
    if (!directory.listing.empty() && repeatsOneAbove(place.above, directory.listing.size(), hash))
        return;
    const auto self = std::make_shared<const Ancestor>(Ancestor{directory.listing.size(), hash, place.above});
    crawl_.folders.push_back(place.path.substr(start_.size()));
    std::set<std::string_view> names;
    for (const ListedEntry& entry : directory.entries) {
        if (crawl_.files.size() >= limits_.entries) {
            crawl_.cut = "the maximum number of names was reached";
            return;
        }
        if (bytes_ >= limits_.bytes) {
            crawl_.cut = "the memory limit was reached";
            return;
        }
        if (names.insert(entry.name).second)
            takeEntry(place, crawl_.folders.size() - 1, entry, self);
    }
}

void Crawler::takeEntry(const Pending& place, std::size_t folder, const ListedEntry& entry,
                        const std::shared_ptr<const Ancestor>& self)
{
    const bool isDirectory = entry.kind == ListedEntry::Kind::Directory;
    crawl_.files.push_back({folder, entry.name, entry.size, isDirectory});
    bytes_ += entry.name.size() + kNodeBytes;
    if (entry.kind == ListedEntry::Kind::Link) {
        links_.push_back({crawl_.files.size() - 1, entry.target});
        bytes_ += entry.target.size() + kNodeBytes;
    }
    const bool isNew = isDirectory && (entry.unique.empty() || entered_.insert(entry.unique).second);
    if (isDirectory)
        bytes_ += entry.unique.size() + kNodeBytes;
    if (isNew && place.depth < limits_.depth && place.path.size() + entry.name.size() < kMaxPath) {
        pending_.push_back({place.path + entry.name + "/", place.depth + 1, self});
        // The directory becomes a folder of the result.
        bytes_ += 2 * (pending_.back().path.size() + kNodeBytes);
    }
}

/// Gives links the type and size of their targets, as far as the crawl saw them. A link to a link stays unknown.
void Crawler::resolveLinks()
{
    if (links_.empty())
        return;
    std::set<std::size_t> isLink;
    for (const Link& link : links_)
        isLink.insert(link.file);
    // The keys are hashes, because the paths are much longer than the stored names.
    const auto pathOf = [this](const CrawledFile& file) { return start_ + crawl_.folders[file.folder] + file.name; };
    std::unordered_map<std::size_t, std::size_t> places;
    for (std::size_t i = 0; i < crawl_.files.size(); ++i) {
        if (isLink.count(i) == 0)
            places.emplace(std::hash<std::string>()(pathOf(crawl_.files[i])), i);
    }
    const std::string startFolder = start_.substr(0, start_.empty() ? 0 : start_.size() - 1);
    for (const Link& link : links_) {
        CrawledFile& file = crawl_.files[link.file];
        const std::optional<std::string> path = linkedPath(start_ + crawl_.folders[file.folder], link.target);
        if (!path || link.target.empty())
            continue;
        const auto found = places.find(std::hash<std::string>()(*path));
        if (found != places.end() && pathOf(crawl_.files[found->second]) == *path) {
            file.directory = crawl_.files[found->second].directory;
            file.size = crawl_.files[found->second].size;
        } else {
            file.directory = *path == startFolder;
        }
    }
}

} // namespace

Outcome<Crawl> crawl(std::string_view start, const CrawlLimits& limits, const CrawlTools& tools)
{
    return Crawler(start, limits, tools).run();
}

} // namespace quarrynet::services
