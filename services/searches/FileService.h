#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http/message.h"
#include "index/database.h"
#include "index/query.h"

namespace quarrynet::services {

/// A file or directory that the file search found.
struct FileHit
{
    std::string name;
    std::string address; ///< on its server, as opened: on a mirror with the mirror's scheme; a directory's ends in "/"
    std::string parent;  ///< address of the directory that it lies in
    std::optional<std::int64_t> size = std::nullopt;
    bool directory = false;
};

struct FileAnswer
{
    std::int64_t start = 0; ///< how many results stand before this page
    std::vector<FileHit> hits;
    bool more = false; ///< there are further pages
};

/// The file search, twenty results a page:
///   /cgi-bin/s?...&q=WORDS[&f=N]      names that hold every word somewhere, from the Nth on, counted from 1
///   /cgi-bin/s?...&q=ADDRESS[&f=N]    what lies in the directory with that http, https or ftp address
class FileService
{
public:
    static constexpr int kPageSize = 20;

    explicit FileService(IndexPool& index) : index_(index) {}

    HttpResponse answer(const HttpRequest& request);

    /// Finds names, or lists a directory when `typed` is its address. Without words or matches there are no hits.
    Outcome<FileAnswer> search(std::string_view typed, std::int64_t start);

private:
    HttpResponse searchPage(std::string_view query);
    Outcome<FileAnswer> findNames(Database& index, const NameQuery& names, std::int64_t start);
    Outcome<FileAnswer> listDirectory(Database& index, std::string_view address, std::int64_t start);

    IndexPool& index_;
};

/// The results page in the layout that the program reads.
std::string fileResultsPage(const FileAnswer& answer, std::string_view typed);

/// A name inside an element of the page, escaped so that it spells none of the layout's marks.
std::string fileNameText(std::string_view name);

/// Returns the address of `path`, not escaped, below `base`, which is. It is escaped so that the program can cut it out
/// of the page: besides what a path may not hold, the word "class" has one escaped letter.
std::string addressBelow(std::string_view base, std::string_view path);

} // namespace quarrynet::services
