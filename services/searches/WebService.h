#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"

namespace quarrynet::services {

/// One result of a web search. Titles and descriptions carry kMatchBegin and kMatchEnd around words that match.
struct WebHit
{
    std::string address;
    std::string title;
    std::string description;
};

/// A page of results: what stands between its header and its footer.
struct WebAnswer
{
    std::int64_t total = 0;
    std::int64_t start = 0; ///< how many results stand before this page
    double seconds = 0;     ///< what the search took
    std::vector<WebHit> hits;
};

/// The web search, thirty results a page, and the documents that it serves itself:
///   /search?...&start=N&...&q=WORDS   a page of results; q is the last parameter and is taken to its end
///   /doc/FOLDER/PATH                  an indexed page, or a picture or style sheet below its folder
class WebService
{
public:
    static constexpr int kPageSize = 30;

    /// `base` goes before the paths of the documents: "http://" and the host, without a slash at the end.
    WebService(IndexPool& index, std::string base) : index_(index), base_(std::move(base)) {}

    HttpResponse answer(const HttpRequest& request);

    /// Runs the search for typed words. Without words or matches there are no hits.
    Outcome<WebAnswer> search(std::string_view typed, std::int64_t start);

private:
    struct Place
    {
        std::string folder;
        bool isPage = false;    ///< a page of the index
        bool isPicture = false; ///< that a page of the index shows
    };

    HttpResponse searchPage(std::string_view query);
    HttpResponse document(std::string_view path);
    Outcome<std::optional<Place>> placeOf(std::int64_t folder, std::string_view path);

    IndexPool& index_;
    std::string base_;
};

/// The results page in the layout that the program reads. Without hits it holds no result marker, whatever was typed.
std::string webResultsPage(const WebAnswer& answer, std::string_view typed);

} // namespace quarrynet::services
