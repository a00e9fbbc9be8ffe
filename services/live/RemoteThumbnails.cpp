#include "live/RemoteThumbnails.h"

#include <utility>

#include "ground/CurrentTask.h"
#include "ground/ascii.h"
#include "thumbnails/picture_format.h"

namespace quarrynet::services {

namespace {

/// Thrown through the cache, which then keeps nothing: the picture may come the next time.
struct NotNow
{};

bool mayComeLater(const Fetched& fetched)
{
    switch (fetched.fault) {
    case Fetched::Fault::None:
        return fetched.status >= 500 || fetched.status == 408 || fetched.status == 429;
    case Fetched::Fault::TooLarge:
    case Fetched::Fault::Redirect:
        return false;
    default:
        return true;
    }
}

} // namespace

bool mayRedirectPicture(std::string_view from, std::string_view to)
{
    const bool secure = startsWithIgnoringCase(to, "https://");
    return secure || (startsWithIgnoringCase(to, "http://") && !startsWithIgnoringCase(from, "https://"));
}

std::optional<std::string> RemoteThumbnails::get(const RemotePicture& picture)
{
    // The time includes the wait for another thread that fetches the same picture.
    const Clock::time_point end = Clock::now() + limits_.time;
    try {
        return cache_.get(picture.thumbnail + "\n" + picture.address, [&] { return make(picture, end); });
    } catch (const NotNow&) {
        return std::nullopt;
    }
}

std::optional<std::string> RemoteThumbnails::make(const RemotePicture& picture, Clock::time_point end)
{
    if (Clock::now() >= end)
        throw NotNow();
    bool later = false;
    for (const std::string* address : {&picture.thumbnail, &picture.address}) {
        if (address->empty())
            continue;
        Fetched fetched;
        fetched.fault = Fetched::Fault::TimeOut;
        Fetches fetches(pool_);
        FetchOrder order;
        order.address = *address;
        order.maxBytes = limits_.bytes;
        order.end = end;
        order.accept = "image/webp, image/png, image/jpeg, image/gif";
        order.mayRedirect = mayRedirectPicture;
        fetches.start(std::move(order), [&fetched](Fetched result) { fetched = std::move(result); });
        if (!fetches.run([end] { return Clock::now() < end; }))
            throw NotNow();
        later = later || mayComeLater(fetched);
        if (fetched.fault != Fetched::Fault::None || fetched.status != 200)
            continue;
        const std::string_view beginning = std::string_view(fetched.body).substr(0, kPictureBeginning);
        const std::optional<PictureFormat> format = pictureFormat(beginning);
        // A drawing is a program of sorts, and only those of this machine are worth its cost.
        if (!format || *format == PictureFormat::Svg)
            continue;
        std::optional<std::string> made = thumbnailer_.ask(*format, std::string_view(fetched.body));
        if (made && !made->empty())
            return made;
        later = later || !made;
    }
    if (later)
        throw NotNow();
    return std::nullopt;
}

} // namespace quarrynet::services
