#include "live/RemotePictures.h"

namespace quarrynet::services {

namespace {

constexpr int kTokenDigits = 16;

/// No address contains a blank.
std::string keyOf(const RemotePicture& picture)
{
    return picture.address + " " + picture.thumbnail;
}

} // namespace

std::string RemotePictures::tokenOf(const RemotePicture& picture)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    std::string key = keyOf(picture);
    if (const auto known = tokens_.find(key); known != tokens_.end())
        return known->second;
    if (order_.size() >= kMost) {
        const auto oldest = pictures_.find(order_.front());
        tokens_.erase(keyOf(oldest->second));
        pictures_.erase(oldest);
        order_.pop_front();
    }
    std::string token;
    for (int i = 0; i < kTokenDigits; ++i)
        token.push_back("0123456789abcdef"[random_() & 15U]);
    pictures_[token] = picture;
    tokens_[std::move(key)] = token;
    order_.push_back(token);
    return token;
}

std::optional<RemotePicture> RemotePictures::find(std::string_view token)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = pictures_.find(token);
    return found == pictures_.end() ? std::nullopt : std::optional(found->second);
}

} // namespace quarrynet::services
