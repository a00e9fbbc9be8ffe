#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/cutting.h"
#include "common/result_heading.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The hidden lists of the image search. A page's entries are appended.
struct ImageLists
{
    std::vector<Position> positions;     // List6: where each thumbnail's marker begins
    std::vector<std::string> addresses;  // List7: the full pictures, without scheme
    std::vector<std::string> thumbnails; // List8: the thumbnails, with scheme and host
    std::vector<std::string> sizes{};    // of the full pictures, see statedSize
};

/// Returns the size of a picture that `text`, which follows its thumbnail on a page, states as "640 x 480" in pixels at
/// the beginning of a piece of text, or an empty text. Reads the first 4 KB.
std::string statedSize(std::string_view text);

/// A parsed page of the image search: everything that was cut before the end of the page or the first fault.
struct ImageResults
{
    bool nothingFound = false;               // the page has no thumbnail; report that
    ImageLists lists;                        // the given lists with this page's entries
    std::optional<std::string> countCaption; // leave captions that are not set unchanged
    std::optional<std::string> timeCaption;
    std::optional<std::string> gallery; // the gallery page's bytes; if not set, write no file
    PagingOffer paging;
    std::optional<RuntimeError> fault; // apply all of the above first, then report it
};

/// Parses at most ten thumbnails, with paths at the engine `host`, from `page` (the response's body as bytes, not
/// empty) in linear time. Returns the results and, as their fault, InvalidProcedureCall for a missing marker,
/// TypeMismatch or Overflow for the count (there is a gallery even then), or OutOfMemory when the texts exceed the
/// limit of `PageCutter`.
ImageResults parseImageResults(std::string_view page, std::string_view host, ImageLists lists = {});

} // namespace quarrynet
