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

/// A parsed page of the file search: everything that was cut before the end, or before the fault that ended it.
struct FileResults
{
    bool nothingFound = false; // the engine's "not found" page: show `nothingFoundText`
    std::vector<FileRow> rows;
    std::vector<Position> linkPositions; // List11, the one given and what this page added
    std::optional<bool> sliderAvailable; // not set: as it is. True also sets the paging mark to `kPagingMark`
    std::optional<RuntimeError> fault;   // apply all of the above first, then report it
};

inline constexpr std::string_view kPagingMark = "enabled";

/// The message for a "not found" page. While the slider is available a later page was asked for.
std::string_view nothingFoundText(bool sliderAvailable);

/// Cuts up to twenty files and directories out of `page` (the response's body, not empty; bytes). Linear in its length.
/// `linkPositions` is the scratch list that grows from page to page; of a list longer than 10,000 entries the oldest
/// are dropped. Faults: InvalidProcedureCall for a missing marker, OutOfMemory when the texts exceed what `PageCutter`
/// allows.
FileResults parseFileResults(std::string_view page, std::vector<Position> linkPositions = {});

} // namespace quarrynet
