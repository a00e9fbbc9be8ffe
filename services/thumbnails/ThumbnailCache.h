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

/// Thumbnails that were made before, the least recently used ones thrown away when there are too many. That a picture
/// has none is kept as well, so that one that takes long to fail fails once. From any thread.
class ThumbnailCache
{
public:
    using Thumbnail = std::optional<std::string>;

    /// `bytes` bounds the keys and thumbnails together.
    explicit ThumbnailCache(std::size_t bytes) : limit_(bytes) {}

    /// Returns what is kept for `key`, or what `make` gives, which is then kept. Who asks for a key that is being made
    /// waits for it. Where this thread's task (CurrentTask) is abandoned, nothing is returned or kept.
    Thumbnail get(const std::string& key, const std::function<Thumbnail()>& make);

    /// What is held now, as the limit counts it.
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
    std::list<Entry> entries_; ///< the most recently used one first
    std::unordered_map<std::string, std::list<Entry>::iterator> places_;
    std::set<std::string> underWay_;
    std::size_t bytes_ = 0;
};

} // namespace quarrynet::services
