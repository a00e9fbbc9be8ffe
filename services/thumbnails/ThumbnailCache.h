#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

namespace quarrynet::services {

/// Keeps thumbnails, and discards the least recently used ones when they exceed a limit. Failures are kept as well, so
/// that a picture that takes long to fail does so only once. Thread-safe.
class ThumbnailCache
{
public:
    using Thumbnail = std::optional<std::string>;

    /// `bytes` limits the size of all keys and thumbnails.
    explicit ThumbnailCache(std::size_t bytes) : limit_(bytes) {}

    /// Returns the entry for `key`, or the result of `make`, which is then kept. Waits when another thread is making
    /// the same one. When this thread's task (CurrentTask) is abandoned, returns nothing and keeps nothing.
    Thumbnail get(const std::string& key, const std::function<Thumbnail()>& make);

    /// Returns the size of all entries, as the limit counts it.
    std::size_t bytes() const;

private:
    struct Entry
    {
        std::string key;
        Thumbnail thumbnail;
    };
    static std::size_t sizeOf(const Entry& entry);
    void keep(Entry entry);

    std::size_t limit_;
    mutable std::mutex mutex_;
    std::condition_variable made_;
    std::list<Entry> entries_; ///< most recently used first
    std::unordered_map<std::string, std::list<Entry>::iterator> places_;
    std::set<std::string> underWay_;
    std::size_t bytes_ = 0;
};

} // namespace quarrynet::services
