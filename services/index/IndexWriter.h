#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"
#include "index/records.h"
#include "index/sqlite.h"

namespace quarrynet::services {

/// Longer texts are clipped: a title or a name, and the text that a page is found by.
inline constexpr std::size_t kMaxIndexedName = 1000;
inline constexpr std::size_t kMaxIndexedText = 128 * 1024;

/// An open file that only one process holds; given back when it ends.
class IndexLock
{
public:
    /// Takes the data folder's lock. While another process holds it, `again` is asked whether to try once more; it may
    /// wait before it answers. Without `again`, and for faults that no waiting mends, fails at once.
    static Outcome<IndexLock> take(const std::string& dataFolder, const std::function<bool()>& again = {});

    IndexLock(IndexLock&& other) noexcept;
    IndexLock& operator=(IndexLock&& other) noexcept;
    IndexLock(const IndexLock&) = delete;
    IndexLock& operator=(const IndexLock&) = delete;
    ~IndexLock();

private:
    explicit IndexLock(int descriptor) : descriptor_(descriptor) {}
    int descriptor_;
};

/// Builds a new index beside the one in use and puts it in its place at the end. An IndexWriter that ends without
/// commit(), by a fault, a signal or a power cut, leaves the old index as it was.
class IndexWriter
{
public:
    /// A new, empty index. What was crawled is taken over from the old one at the end.
    static Outcome<IndexWriter> begin(const std::string& dataFolder);

    /// A copy of the index that is there, to be changed; a new one when there is none of this layout. `again` as for
    /// IndexLock::take().
    static Outcome<IndexWriter> extend(const std::string& dataFolder, const std::function<bool()>& again = {});

    IndexWriter(IndexWriter&&) noexcept;
    IndexWriter& operator=(IndexWriter&&) = delete;
    ~IndexWriter();

    /// A folder whose pages the web service serves; its number, which stands in their addresses.
    Outcome<std::int64_t> addFolder(const std::string& path);

    /// A page of that folder, its path not escaped: the pages that are served at all.
    Outcome<Done> addDocument(std::int64_t folder, std::string_view path);
    /// What may be a picture that a page of that folder shows; as often as wanted.
    Outcome<Done> addShownPicture(std::int64_t folder, std::string_view path);

    /// `address` is a whole address, or for a page that the web service serves itself a path. Texts are UTF-8 without
    /// control characters. `names` are what the page is known by, such as the packages whose home page it is.
    Outcome<Done> addPage(std::string_view address, std::string_view title, std::string_view description,
                          const std::vector<std::string>& names = {});

    /// A mirror's address, ending in "/"; its number.
    Outcome<std::int64_t> addMirror(std::string_view base);
    /// `number` says where searches show it among the programs whose names begin with what was typed: smaller ones
    /// first. Companions of other programs are numbered from kFirstCompanion on.
    Outcome<Done> addProgram(std::int64_t number, const Program& program);

    /// A server's address, ending in "/"; its number. `crawled` as in the table.
    Outcome<std::int64_t> addFileSite(std::string_view base, std::int64_t crawled);
    /// A folder's path below the site's base, empty or ending in "/", not escaped; its number.
    Outcome<std::int64_t> addFileFolder(std::int64_t site, std::string_view path);
    /// `number` says where searches show it: smaller ones first.
    Outcome<Done> addFile(std::int64_t number, const FileEntry& entry);

    /// A folder of pictures; its number, which stands in their addresses.
    Outcome<std::int64_t> addPictureFolder(const std::string& path);
    Outcome<Done> addPicture(std::int64_t folder, const Picture& picture);

    /// Takes a server with all its folders and files out again; nothing happens when it is not there.
    Outcome<Done> removeFileSite(std::string_view base);
    /// The number for the next file of a crawled server, behind those that are there.
    Outcome<std::int64_t> nextCrawledFile();

    /// Searchable at once when it returns: the old index is replaced.
    Outcome<Done> commit();

private:
    struct Parts;
    static Outcome<IndexWriter> start(const std::string& dataFolder, Outcome<IndexLock> lock, bool fromOld);
    explicit IndexWriter(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

} // namespace quarrynet::services
