#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "services/outcome.h"
#include "services/sqlite.h"

namespace quarrynet::services {

/// An open file that only one process holds; given back when it ends.
class IndexLock
{
public:
    /// Fails when another process holds the data folder's lock.
    static Outcome<IndexLock> take(const std::string& dataFolder);

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
    static Outcome<IndexWriter> begin(const std::string& dataFolder);

    IndexWriter(IndexWriter&&) noexcept;
    IndexWriter& operator=(IndexWriter&&) = delete;
    ~IndexWriter();

    /// A folder whose pages the web service serves; its number, which stands in their addresses.
    Outcome<std::int64_t> addFolder(const std::string& path);

    /// `address` is a whole address, or for a page that the web service serves itself a path. Texts are UTF-8 without
    /// control characters.
    Outcome<Done> addPage(std::string_view address, std::string_view title, std::string_view description);

    /// Searchable at once when it returns: the old index is replaced.
    Outcome<Done> commit();

private:
    struct Parts;
    explicit IndexWriter(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

} // namespace quarrynet::services
