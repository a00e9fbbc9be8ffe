#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/result_heading.h"

namespace quarrynet {

/// A row of the download list, column by column.
struct DownloadRow
{
    std::string name;
    std::string description;
    std::string systems;
    std::string size;
    std::string license;
};

/// A parsed page of the download search. There is no fault, because steps that fail are skipped.
struct DownloadResults
{
    bool nothingFound = false;               // the page is not a result page; report that
    std::optional<std::string> countCaption; // if not set, leave the caption unchanged
    PagingOffer paging;
    std::vector<DownloadRow> rows;
    std::vector<std::string> links; // List10: one per row, paths that begin with "/redir?"
};

/// Parses the programs from `page` (the response's body as bytes, not empty). Returns as many rows as the page's range
/// text announces, but at most 10,000 more than the page has entries. A field that cannot be cut stays empty; a name or
/// link repeats that of the row before. Linear in the page's length and the number of rows.
DownloadResults parseDownloadResults(std::string_view page);

} // namespace quarrynet
