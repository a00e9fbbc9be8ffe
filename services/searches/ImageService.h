#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"
#include "index/word_search.h"
#include "thumbnails/ThumbnailCache.h"
#include "thumbnails/Thumbnailer.h"

namespace quarrynet::services {

/// A picture that the image search found.
struct ImageHit
{
    std::string address;   ///< without its scheme, as the program cuts it out of the page
    std::string thumbnail; ///< path of the thumbnail on this host
    std::string caption;   ///< its path below the folder, UTF-8
};

using ImageAnswer = WordAnswer<ImageHit>;

/// The image search, with ten results per page, and its pictures:
///   /images?...&start=N&...&q=WORDS[&sa=N]        a results page
///   /images?q=tbn:ID:HOST/pictures/FOLDER/PATH    a thumbnail; the ID changes with the file
///   /pictures/FOLDER/PATH                         the picture itself
/// Only indexed files are served, and only while they are still pictures inside their folder.
class ImageService
{
public:
    static constexpr int kPageSize = 10;
    static constexpr std::size_t kCacheBytes = 32 * 1024 * 1024;

    /// `host` serves the pictures; it includes the port unless that is 80. A null `thumbnailer` disables thumbnails.
    ImageService(IndexPool& index, std::string host, Thumbnailer* thumbnailer)
        : index_(index), host_(std::move(host)), thumbnailer_(thumbnailer)
    {}

    HttpResponse answer(const HttpRequest& request);

    /// Runs the search for typed words. Returns no hits when there are no words or no matches.
    Outcome<ImageAnswer> search(std::string_view typed, std::int64_t start);

private:
    HttpResponse searchPage(std::string_view query);
    HttpResponse thumbnail(std::string_view place);
    HttpResponse picture(std::string_view place);
    Outcome<std::shared_ptr<const OpenFile>> fileAt(std::string_view place);

    IndexPool& index_;
    std::string host_;
    Thumbnailer* thumbnailer_;
    ThumbnailCache cache_{kCacheBytes};
};

/// Returns the results page in the layout that the program parses. Without hits it contains no thumbnail marker,
/// whatever was typed.
std::string imageResultsPage(const ImageAnswer& answer, std::string_view typed);

} // namespace quarrynet::services
