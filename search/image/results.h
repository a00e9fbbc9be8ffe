#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/cutting.h"
#include "common/result_heading.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The hidden lists of the image search. Entries are added behind those that are there.
struct ImageLists
{
    std::vector<Position> positions;     // List6: where each thumbnail's marker begins
    std::vector<std::string> addresses;  // List7: the full pictures, without scheme
    std::vector<std::string> thumbnails; // List8: the thumbnails, with scheme and host
};

/// A parsed page of the image search: everything that was cut before the end, or before the fault that ended it.
struct ImageResults
{
    bool nothingFound = false;               // the page holds no thumbnail; say so
    ImageLists lists;                        // the lists given, with this page's entries
    std::optional<std::string> countCaption; // what is not set stays as it is
    std::optional<std::string> timeCaption;
    std::optional<std::string> gallery; // the gallery page's bytes; not set: no file is touched
    PagingOffer paging;
    std::optional<RuntimeError> fault; // apply all of the above first, then report it
};

/// Cuts up to ten thumbnails out of `page` (the response's body, not empty; bytes), whose paths lie at the engine
/// `host`. Linear in its length. Faults: InvalidProcedureCall for a missing marker, TypeMismatch or Overflow for the
/// count (the gallery is made all the same), OutOfMemory when the texts exceed what `PageCutter` allows.
ImageResults parseImageResults(std::string_view page, std::string_view host, ImageLists lists = {});

} // namespace quarrynet
