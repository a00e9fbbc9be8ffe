#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ground/Descriptor.h"
#include "ground/Outcome.h"
#include "index/records.h"
#include "index/sqlite.h"

namespace quarrynet::services {

/// Longer texts are clipped: titles and names, and the searchable text of a page.
inline constexpr std::size_t kMaxIndexedName = 1000;
inline constexpr std::size_t kMaxIndexedText = 128 * 1024;

/// An open file that only one process can lock. The destructor releases it.
class IndexLock
{
public:
    /// Takes the data folder's lock. While another process holds it, calls `again`, which may wait and returns whether
    /// to retry. Fails at once without `again`, and on errors that a retry cannot fix.
    static Outcome<IndexLock> take(const std::string& dataFolder, const std::function<bool()>& again = {});

private:
    explicit IndexLock(Descriptor file) : file_(std::move(file)) {}
    Descriptor file_;
};

/// Builds a new index beside the one in use, and replaces that one at the end. Without commit(), whether after a
/// failure, a signal or a power cut, the old index stays as it was.
class IndexWriter
{
public:
    /// Starts a new, empty index. commit() copies the crawled sites from the old one. `again` is as for
    /// IndexLock::take(). Fails if the old one is from a newer version of this program, unless `mayReplaceNewer`.
    static Outcome<IndexWriter> begin(const std::string& dataFolder, const std::function<bool()>& again = {},
                                      bool mayReplaceNewer = false);

    /// Starts from a copy of the index in use, or a new one when there is none of this layout. `again` is as for
    /// IndexLock::take(). Fails if the index in use is from a newer version of this program.
    static Outcome<IndexWriter> extend(const std::string& dataFolder, const std::function<bool()>& again = {});

    IndexWriter(IndexWriter&&) noexcept;
    IndexWriter& operator=(IndexWriter&&) = delete;
    ~IndexWriter();

    /// Adds a folder whose pages the web service serves. Returns its number, which is part of their addresses.
    Outcome<std::int64_t> addFolder(const std::string& path);

    /// Adds a page of that folder; the web service serves no others. `path` is not escaped.
    Outcome<Done> addDocument(std::int64_t folder, std::string_view path);
    /// Adds a file that may be a picture shown by a page of that folder. Repeated calls are harmless.
    Outcome<Done> addShownPicture(std::int64_t folder, std::string_view path);

    /// Adds a page. `address` is an absolute address, or a path for a page that the web service serves itself. Texts
    /// are UTF-8 without control characters. `names` are what the page is known by, such as the packages whose home
    /// page it is.
    Outcome<Done> addPage(std::string_view address, std::string_view title, std::string_view description,
                          const std::vector<std::string>& names = {});

    /// Adds a mirror. Returns its number. `base` is its address and ends in "/".
    Outcome<std::int64_t> addMirror(std::string_view base);
    /// Adds a program. Among the programs whose names begin with the typed text, searches show small numbers first.
    /// Companions of other programs are numbered from kFirstCompanion on.
    Outcome<Done> addProgram(std::int64_t number, const Program& program);

    /// Adds a server. Returns its number. `base` is its address and ends in "/"; `crawled` is as in the table.
    Outcome<std::int64_t> addFileSite(std::string_view base, std::int64_t crawled);
    /// Adds a folder. Returns its number. `path` is relative to the site's base, not escaped, and empty or ends in "/".
    Outcome<std::int64_t> addFileFolder(std::int64_t site, std::string_view path);
    /// Adds a file. Searches show small numbers first.
    Outcome<Done> addFile(std::int64_t number, const FileEntry& entry);

    /// Returns the number of a program that has already been added, that of this mirror if several have the name, or
    /// nothing when there is none.
    Outcome<std::optional<std::int64_t>> findProgram(std::string_view name, std::int64_t mirror);

    /// The files in packages (see name_blocks.h). Folders and packages are numbered from 0 on, blocks from 1 on in the
    /// order in which searches show them. `path` is not escaped, and empty or ends in "/".
    Outcome<Done> addListedFolder(std::uint32_t number, std::string_view path);
    Outcome<Done> addListedPackage(std::uint32_t number, std::int64_t program);
    /// `names` are names with kNameBorder before, between and after them; `places` those of each name.
    Outcome<Done> addListedBlock(std::uint32_t number, std::string_view names, std::string_view places);
    Outcome<Done> addListedTrigram(std::uint32_t slot, std::string_view list);

    /// Adds a folder of pictures. Returns its number, which is part of their addresses.
    Outcome<std::int64_t> addPictureFolder(const std::string& path);
    Outcome<Done> addPicture(std::int64_t folder, const Picture& picture);

    /// Removes a server with all its folders and files, if it is there.
    Outcome<Done> removeFileSite(std::string_view base);
    /// Returns the number for the next file of a crawled server, after those that are there.
    Outcome<std::int64_t> nextCrawledFile();

    /// Replaces the old index. Searches see the new one as soon as this returns.
    Outcome<Done> commit();

private:
    struct Parts;
    static Outcome<IndexWriter> start(const std::string& dataFolder, Outcome<IndexLock> lock, bool fromOld,
                                      bool mayReplaceNewer);
    explicit IndexWriter(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

} // namespace quarrynet::services
