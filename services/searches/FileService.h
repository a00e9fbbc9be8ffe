#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"
#include "index/query.h"
#include "searches/file_hit.h"

namespace quarrynet::services {

struct FileAnswer
{
    std::int64_t start = 0; ///< number of results before this page
    std::vector<FileHit> hits;
    bool more = false; ///< there are further pages
};

/// The file search, with 20 results per page:
///   /cgi-bin/s?...&q=WORDS[&f=N]      names that contain every word, from the Nth on, counted from 1
///   /cgi-bin/s?...&q=ADDRESS[&f=N]    the entries of the directory with that http, https or ftp address
class FileService
{
public:
    static constexpr int kPageSize = 20;

    explicit FileService(IndexPool& index) : index_(index) {}

    HttpResponse answer(const HttpRequest& request);

    /// Finds names, or lists a directory when `typed` is its address. Returns no hits when there are no words or no
    /// matches.
    Outcome<FileAnswer> search(std::string_view typed, std::int64_t start);

private:
    HttpResponse searchPage(std::string_view query, Language language);
    Outcome<FileAnswer> findNames(Database& index, const NameQuery& names, std::int64_t start);
    Outcome<FileAnswer> listDirectory(Database& index, std::string_view address, std::int64_t start);

    IndexPool& index_;
};

/// Returns the results page in the layout that the program parses.
std::string fileResultsPage(const FileAnswer& answer, std::string_view typed, Language language = Language::English);

/// Returns a name for an element of the page, escaped so that it contains none of the layout's markers.
std::string fileNameText(std::string_view name);

} // namespace quarrynet::services
