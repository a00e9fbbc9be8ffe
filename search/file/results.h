#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/cutting.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// A row of the file list, column by column.
struct FileRow
{
    std::string name;
    std::string path; // the full FTP address
    std::string size; // as the page has it; "<Dir>" for a directory
};

/// A parsed page of the file search: everything that was cut before the end of the page or the first fault.
struct FileResults
{
    bool nothingFound = false; // the engine's "not found" page: show `nothingFoundText`
    std::vector<FileRow> rows;
    std::vector<Position> linkPositions; // List11: the given list with this page's entries
    std::optional<bool> sliderAvailable; // not set: unchanged. True also sets the paging mark to `kPagingMark`
    std::optional<RuntimeError> fault;   // apply all of the above first, then report it
};

inline constexpr std::string_view kPagingMark = "enabled";

/// Returns the message for a "not found" page. An available slider means that a later page was requested.
std::string_view nothingFoundText(bool sliderAvailable);

/// Parses at most twenty files and directories from `page` (the response's body as bytes, not empty) in linear time.
/// `linkPositions` is the scratch list that grows from page to page; the oldest entries above 10,000 are discarded.
/// Returns the results and, as their fault, InvalidProcedureCall for a missing marker, or OutOfMemory when the texts
/// exceed the limit of `PageCutter`.
FileResults parseFileResults(std::string_view page, std::vector<Position> linkPositions = {});

} // namespace quarrynet
