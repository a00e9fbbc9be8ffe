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

namespace quarrynet::services {

/// One result of a web search. Titles and descriptions have kMatchBegin and kMatchEnd around matching words.
struct WebHit
{
    std::string address;
    std::string title;
    std::string description;
};

using WebAnswer = WordAnswer<WebHit>;

/// The web search, with 30 results per page, and the documents that it serves itself:
///   /search?...&start=N&...&q=WORDS   a results page; q is the last parameter and extends to the end of the query
///   /help/source-FAULT?...            what to do about a source that does not answer
///   /doc/FOLDER/PATH                  an indexed page, or a picture or style sheet below its folder
class WebService
{
public:
    static constexpr int kPageSize = 30;

    /// `base` is the prefix of the documents' paths: "http://" and the host, without a trailing slash.
    /// A null `live` leaves the index as the only source.
    WebService(IndexPool& index, std::string base, Gatherer* live = nullptr)
        : index_(index), base_(std::move(base)), live_(live)
    {}

    HttpResponse answer(const HttpRequest& request);

    /// Runs the search for typed words. Returns no hits when there are no words or no matches.
    Outcome<WebAnswer> search(std::string_view typed, std::int64_t start);

    /// Runs the search over all sources. Sources that do not answer are the first hits, which lead to their help pages;
    /// fails only when the index is the only source.
    Outcome<WebAnswer> searchSources(std::string_view typed, std::int64_t start);

private:
    struct Place
    {
        std::string folder;
        bool isPage = false;    ///< the index has it as a page
        bool isPicture = false; ///< an indexed page shows it
    };

    HttpResponse searchPage(std::string_view query, Language language);
    HttpResponse document(std::string_view path, Language language);
    Outcome<std::optional<Place>> placeOf(std::int64_t folder, std::string_view path);

    IndexPool& index_;
    std::string base_;
    Gatherer* live_;
};

/// Returns the results page in the layout that the program parses. Without hits it contains no result marker, whatever
/// was typed.
std::string webResultsPage(const WebAnswer& answer, std::string_view typed, Language language = Language::English);

} // namespace quarrynet::services
