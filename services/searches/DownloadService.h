#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"
#include "index/word_search.h"

namespace quarrynet::services {

/// A program that the download search found. The index supplies the texts.
struct ProgramHit
{
    std::string name;
    std::string description;
    std::string system;
    std::int64_t size = 0;
    std::string license;
    std::string address; ///< where the program is downloaded from
};

using ProgramAnswer = WordAnswer<ProgramHit>;

/// The download directory, with 25 programs per page:
///   /3120-20-0-PAGE-5.html?qt=WORDS&ca=20   a results page, counted from 1
///   /redir?destUrl=ADDRESS                  the page that redirects to a download
///   /%2Fhost%2Fpath...                      the same page, under the path that the program makes of a redirect link
class DownloadService
{
public:
    static constexpr int kPageSize = 25;

    explicit DownloadService(IndexPool& index) : index_(index) {}

    HttpResponse answer(const HttpRequest& request);

    /// Runs the search for typed words. Returns no hits when there are no words or no matches.
    Outcome<ProgramAnswer> search(std::string_view typed, std::int64_t start);

private:
    HttpResponse searchPage(int page, std::string_view query, Language language);
    HttpResponse redirectPage(std::string_view place, Language language);
    Outcome<std::string> findDownload(std::string_view place);

    IndexPool& index_;
};

/// Returns the results page in the layout that the program parses.
std::string downloadResultsPage(const ProgramAnswer& answer, std::string_view typed,
                                Language language = Language::English);

/// Returns the page that carries a download's address.
std::string downloadPage(std::string_view address, Language language = Language::English);

} // namespace quarrynet::services
