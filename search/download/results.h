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

/// A parsed page of the download search. There is no fault: a step that fails is skipped.
struct DownloadResults
{
    bool nothingFound = false;               // the page is no result page; say so
    std::optional<std::string> countCaption; // what is not set stays as it is
    PagingOffer paging;
    std::vector<DownloadRow> rows;
    std::vector<std::string> links; // List10: one a row, paths that begin with "/redir?"
};

/// Cuts the programs out of `page` (the response's body, not empty; bytes). As many rows as the page's range text
/// announces, but at most 10,000 beyond the entries that the page holds; a field that cannot be cut stays empty, a name
/// or link keeps the one of the row before. Linear in the page's length and the number of rows.
DownloadResults parseDownloadResults(std::string_view page);

} // namespace quarrynet
