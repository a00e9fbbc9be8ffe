#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace quarrynet::services {

/// A picture of the internet that the image search listed.
struct RemotePicture
{
    std::string address;   ///< http or https
    std::string thumbnail; ///< address of a smaller one; may be empty
};

/// The pictures of the internet that the image search has listed lately, by the tokens that stand for them in its
/// pages. The services fetch, and redirect to, only what is in here. Tokens are random, so that other users of the
/// machine cannot find out what was searched. Several threads may use it.
class RemotePictures
{
public:
    static constexpr std::size_t kMost = 8 * 1024;

    /// Returns the token (hexadecimal digits) of a picture; a picture keeps its token while it is in the table.
    std::string tokenOf(const RemotePicture& picture);
    /// Returns the picture of a token, or nothing if the token was never given or is too old.
    std::optional<RemotePicture> find(std::string_view token);

private:
    std::mutex mutex_;
    std::random_device random_;
    std::map<std::string, RemotePicture, std::less<>> pictures_;
    std::map<std::string, std::string> tokens_; ///< by both addresses
    std::list<std::string> order_;              ///< tokens, oldest first
};

} // namespace quarrynet::services
