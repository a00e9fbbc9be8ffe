#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "crawl/listed_directory.h"

namespace quarrynet::services {

/// The content of a directory's page.
struct HttpListing
{
    std::vector<ListedEntry> entries; ///< in the order of the page, each name once
    /// Names, dates and sizes: the same when a server shows one directory under several addresses, whose titles differ.
    std::string identity;
};

/// Parses the page by which a server shows the directory at `address` (http or https, escaped, ends in "/"), as nginx,
/// Apache and lighttpd make them: links with names, dates and sizes in lines or a table, below a title such as "Index
/// of /pub/". The entries are the links to what is directly below the address; links with a query, which sort the page,
/// and all others are skipped. Names come from the links, which have them whole. A rounded size ("1.2K") is taken as
/// exact. Returns nothing for any other page, and for one that exceeds the limits of parsing.
std::optional<HttpListing> readHttpListing(std::string_view page, std::string_view address);

/// Returns the name of what `link` in the page at `address` leads to, if that is directly below the address; a
/// directory's ends in "/". Public for tests.
std::optional<std::string> nameOfLink(std::string_view link, std::string_view address);

/// Returns the size in the text after a link: the number after the time of day, "1234" or "1.2K". Returns nothing when
/// there is none. Public for tests.
std::optional<std::int64_t> sizeInText(std::string_view text);

} // namespace quarrynet::services
