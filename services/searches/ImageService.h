#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"
#include "index/word_search.h"
#include "live/Gatherer.h"
#include "live/RemotePictures.h"
#include "live/RemoteThumbnails.h"
#include "thumbnails/ThumbnailCache.h"
#include "thumbnails/Thumbnailer.h"

namespace quarrynet::services {

/// A picture that the image search found.
struct ImageHit
{
    std::string address;   ///< without its scheme, as the program cuts it out of the page
    std::string thumbnail; ///< path of the thumbnail on this host
    std::string caption;   ///< its path below the folder, UTF-8
    std::string size{};    ///< in pixels, as "640 x 480"; empty if it is not known
};

using ImageAnswer = WordAnswer<ImageHit>;

/// The image search, with ten results per page, and its pictures:
///   /images?...&start=N&...&q=WORDS[&sa=N]        a results page
///   /images?q=tbn:ID:HOST/pictures/FOLDER/PATH    a thumbnail; the ID changes with the file
///   /pictures/FOLDER/PATH                         the picture itself
///   /go/TOKEN/...                                 redirects to a picture of the internet
///   /images?q=tbn:0:HOST/go/TOKEN/...             its thumbnail
///   /help/source-FAULT?...                        what to do about a source that does not answer
/// Only indexed files are served, and only while they are still pictures inside their folder.
class ImageService
{
public:
    static constexpr int kPageSize = 10;
    static constexpr std::size_t kCacheBytes = 32 * 1024 * 1024;

    /// `host` serves the pictures; it includes the port unless that is 80. A null `thumbnailer` disables thumbnails.
    /// A null `live` leaves the index as the only source; a null `remote` shows placeholders for the others' pictures.
    ImageService(IndexPool& index, std::string host, Thumbnailer* thumbnailer, Gatherer* live = nullptr,
                 RemoteThumbnails* remote = nullptr)
        : index_(index), host_(std::move(host)), thumbnailer_(thumbnailer), live_(live), remoteThumbnails_(remote)
    {}

    HttpResponse answer(const HttpRequest& request);

    /// Runs the search for typed words. Returns no hits when there are no words or no matches.
    Outcome<ImageAnswer> search(std::string_view typed, std::int64_t start);

    /// Runs the search over all sources, at most kPageSize hits, because the program shows no more. Sources that do not
    /// answer are the first hits, which lead to their help pages; fails only when the index is the only source.
    Outcome<ImageAnswer> searchSources(std::string_view typed, std::int64_t start);

private:
    ImageHit hitOf(const RemotePicture& picture, std::string_view caption);
    HttpResponse thumbnailAt(std::string_view place);
    HttpResponse remoteThumbnail(std::string_view place);
    HttpResponse redirect(std::string_view place, Language language);
    HttpResponse searchPage(std::string_view query, Language language);
    HttpResponse thumbnail(std::string_view place);
    HttpResponse picture(std::string_view place, Language language);
    Outcome<std::shared_ptr<const OpenFile>> fileAt(std::string_view place);

    IndexPool& index_;
    std::string host_;
    Thumbnailer* thumbnailer_;
    Gatherer* live_;
    RemoteThumbnails* remoteThumbnails_;
    RemotePictures remote_;
    ThumbnailCache cache_{kCacheBytes};
};

/// Returns the results page in the layout that the program parses. Without hits it contains no thumbnail marker,
/// whatever was typed.
std::string imageResultsPage(const ImageAnswer& answer, std::string_view typed, Language language = Language::English);

} // namespace quarrynet::services
