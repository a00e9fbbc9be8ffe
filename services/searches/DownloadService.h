#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"

namespace quarrynet::services {

/// A program that the download search found. Texts as the index has them.
struct ProgramHit
{
    std::string name;
    std::string description;
    std::string system;
    std::int64_t size = 0;
    std::string licence;
    std::string address; ///< of the download
};

struct ProgramAnswer
{
    std::int64_t total = 0;
    std::int64_t start = 0; ///< how many results stand before this page
    std::vector<ProgramHit> hits;
};

/// The download directory, twenty-five programs a page:
///   /3120-20-0-PAGE-5.html?qt=WORDS&ca=20   a page of results, counted from 1
///   /redir?destUrl=ADDRESS                  the page that leads to a download
///   /%2Fhost%2Fpath...                      the same; this is the path that the program makes of a redirect link
class DownloadService
{
public:
    static constexpr int kPageSize = 25;

    explicit DownloadService(IndexPool& index) : index_(index) {}

    HttpResponse answer(const HttpRequest& request);

    /// Runs the search for typed words. Without words or matches there are no hits.
    Outcome<ProgramAnswer> search(std::string_view typed, std::int64_t start);

private:
    HttpResponse searchPage(int page, std::string_view query);
    HttpResponse redirectPage(std::string_view place);
    Outcome<std::string> findDownload(std::string_view place);

    IndexPool& index_;
};

/// The results page in the layout that the program reads.
std::string downloadResultsPage(const ProgramAnswer& answer, std::string_view typed);

/// The page that carries a download's address.
std::string downloadPage(std::string_view address);

} // namespace quarrynet::services
