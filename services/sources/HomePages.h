#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "index/IndexWriter.h"
#include "sources/package_lists.h"

namespace quarrynet::services {

/// The home pages of the packages, one for each address however many packages name it. Addresses that differ only in
/// their scheme, in the case of their host or in "/" at their end are one.
class HomePages
{
public:
    /// The title and texts of a page come from its main package: one that is no companion of another, then one whose
    /// name is a word of the address, then one that is its own source, then the one with the shortest name. What the
    /// others say is added to the text, each thing once, as far as kMaxIndexedText allows.

    /// A package whose home page is not on the web is left out.
    void add(const Package& package);

    /// Returns how many pages there are.
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

    std::map<std::string, std::vector<Member>, std::less<>> pages_; ///< by what their addresses have in common
};

} // namespace quarrynet::services
