#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"
#include "thumbnails/ThumbnailCache.h"
#include "thumbnails/Thumbnailer.h"

namespace quarrynet::services {

/// A picture that the image search found.
struct ImageHit
{
    std::string address;   ///< without its scheme, as the program takes it from the page
    std::string thumbnail; ///< path of the thumbnail on this host
    std::string caption;   ///< its path below the folder, UTF-8
};

struct ImageAnswer
{
    std::int64_t total = 0;
    std::int64_t start = 0; ///< how many results stand before this page
    double seconds = 0;     ///< what the search took
    std::vector<ImageHit> hits;
};

/// The image search, ten results a page, and its pictures:
///   /images?...&start=N&...&q=WORDS[&sa=N]        a page of results
///   /images?q=tbn:ID:HOST/pictures/FOLDER/PATH    a thumbnail; the ID makes another address of a changed picture
///   /pictures/FOLDER/PATH                         the picture itself
/// Only pictures of the index are served, and only while they are pictures inside of their folder.
class ImageService
{
public:
    static constexpr int kPageSize = 10;
    static constexpr std::size_t kCacheBytes = 32 * 1024 * 1024;

    /// `host` is the one that serves the pictures, with its port unless that is 80. Without `thumbnailer` there are no
    /// thumbnails.
    ImageService(IndexPool& index, std::string host, Thumbnailer* thumbnailer)
        : index_(index), host_(std::move(host)), thumbnailer_(thumbnailer)
    {}

    HttpResponse answer(const HttpRequest& request);

    /// Runs the search for typed words. Without words or matches there are no hits.
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

/// The results page in the layout that the program reads. Without hits it holds no thumbnail, whatever was typed.
std::string imageResultsPage(const ImageAnswer& answer, std::string_view typed);

} // namespace quarrynet::services
