#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "live/RemotePictures.h"
#include "live/fetch.h"
#include "thumbnails/ThumbnailCache.h"
#include "thumbnails/Thumbnailer.h"

namespace quarrynet::services {

/// Returns whether the redirect of a picture is followed: to another http or https address, but not from https to http.
bool mayRedirectPicture(std::string_view from, std::string_view to);

/// Fetches pictures of the internet and makes their thumbnails. Only raster pictures are decoded, chosen by their
/// content. Several threads may use it; none waits for another one's picture.
class RemoteThumbnails
{
public:
    struct Limits
    {
        /// For one picture, from its request to its last byte, including the wait for a thread that fetches the same.
        std::chrono::milliseconds time = std::chrono::milliseconds(2500);
        std::size_t bytes = 8 * 1024 * 1024; ///< of one picture
        std::size_t cacheBytes = 32 * 1024 * 1024;
    };

    /// The limits for a Thumbnailer of remote pictures. It is not the one of local pictures, which hostile ones could
    /// delay.
    static Thumbnailer::Limits thumbnailerLimits()
    {
        return {std::chrono::milliseconds(500), 4, std::chrono::milliseconds(500)};
    }

    /// `pool` decides which hosts are reached.
    RemoteThumbnails(FetchPool& pool, Thumbnailer& thumbnailer) : RemoteThumbnails(pool, thumbnailer, Limits{}) {}
    RemoteThumbnails(FetchPool& pool, Thumbnailer& thumbnailer, Limits limits)
        : pool_(pool), thumbnailer_(thumbnailer), limits_(limits), cache_(limits.cacheBytes)
    {}

    /// Returns a PNG or JPEG picture of at most 120 by 120 pixels: of the picture's own thumbnail if it has one that
    /// can be shown, otherwise of the picture. Returns nothing when neither can be fetched and decoded in time, or this
    /// thread's task (CurrentTask) is abandoned. Caches the thumbnails, and which pictures could not
    /// be shown.
    std::optional<std::string> get(const RemotePicture& picture);

private:
    using Clock = std::chrono::steady_clock;
    std::optional<std::string> make(const RemotePicture& picture, Clock::time_point end);

    FetchPool& pool_;
    Thumbnailer& thumbnailer_;
    Limits limits_;
    ThumbnailCache cache_;
};

} // namespace quarrynet::services
