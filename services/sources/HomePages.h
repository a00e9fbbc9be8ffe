#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "index/IndexWriter.h"
#include "sources/package_lists.h"

namespace quarrynet::services {

/// The home pages of the packages, one per address however many packages name it. Addresses that differ only in their
/// scheme, the case of their host or trailing slashes count as one.
///
/// The title and the first text of a page come from its main package: one that is not a companion of another, then one
/// whose name is a word of the address, then one that is its own source package, then the one with the shortest name.
/// The texts of the others are appended, each once, up to kMaxIndexedText.
class HomePages
{
public:
    /// Adds a package. Ignores one whose home page is not on the web.
    void add(const Package& package);

    /// Returns the number of pages.
    std::size_t size() const { return pages_.size(); }

    Outcome<Done> write(IndexWriter& writer);

private:
    struct Member
    {
        std::string name;
        std::string summary;
        std::string description;
        std::string address;
        bool ownSource = false;
    };

    static Outcome<Done> writePage(IndexWriter& writer, std::vector<Member>& members);

    std::map<std::string, std::vector<Member>, std::less<>> pages_; ///< the key is commonPart() of the address
};

} // namespace quarrynet::services
