#include "thumbnails/ThumbnailCache.h"

#include <chrono>
#include <utility>

#include "ground/CurrentTask.h"

namespace quarrynet::services {

namespace {

/// Interval at which a waiting thread checks whether its task is abandoned.
constexpr std::chrono::milliseconds kAskInterval(50);

} // namespace

std::size_t ThumbnailCache::sizeOf(const Entry& entry)
{
    // The map holds the key too; the rest is for the nodes.
    constexpr std::size_t kNodes = 200;
    return 2 * entry.key.size() + (entry.thumbnail ? entry.thumbnail->size() : 0) + kNodes;
}

void ThumbnailCache::keep(Entry entry)
{
    const std::size_t size = sizeOf(entry);
    if (size > limit_)
        return;
    while (bytes_ + size > limit_) {
        bytes_ -= sizeOf(entries_.back());
        places_.erase(entries_.back().key);
        entries_.pop_back();
    }
    bytes_ += size;
    entries_.push_front(std::move(entry));
    places_.emplace(entries_.front().key, entries_.begin());
}

ThumbnailCache::Thumbnail ThumbnailCache::get(const std::string& key, const std::function<Thumbnail()>& make)
{
    {
        std::unique_lock lock(mutex_);
        while (!made_.wait_for(lock, kAskInterval, [&] { return underWay_.count(key) == 0; })) {
            if (CurrentTask::abandoned())
                return std::nullopt;
        }
        const auto found = places_.find(key);
        if (found != places_.end()) {
            entries_.splice(entries_.begin(), entries_, found->second);
            return found->second->thumbnail;
        }
        underWay_.insert(key);
    }
    const auto finish = [&](const Thumbnail* thumbnail) {
        const std::lock_guard lock(mutex_);
        underWay_.erase(key);
        if (thumbnail != nullptr)
            keep({key, *thumbnail});
        made_.notify_all();
    };
    try {
        Thumbnail thumbnail = make();
        // An abandoned attempt says nothing about the picture.
        finish(CurrentTask::abandoned() ? nullptr : &thumbnail);
        return thumbnail;
    } catch (...) {
        finish(nullptr);
        throw;
    }
}

std::size_t ThumbnailCache::bytes() const
{
    const std::lock_guard lock(mutex_);
    return bytes_;
}

} // namespace quarrynet::services
