#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ground/Outcome.h"

/// The JSON answers of SearXNG and searx instances, as bytes.
namespace quarrynet::services {

inline constexpr std::size_t kMaxSearxAnswer = 4 * 1024 * 1024;
inline constexpr int kMaxSearxDepth = 64;
inline constexpr std::size_t kMostSearxRows = 500;
inline constexpr std::size_t kMostSilentEngines = 20;
/// Rows with longer addresses are dropped; longer texts are cut.
inline constexpr std::size_t kMaxRowAddress = 2 * 1024;
inline constexpr std::size_t kMaxRowTitle = 512;
inline constexpr std::size_t kMaxRowText = 1024;

enum class SearxCategory : std::uint8_t
{
    General,
    Images,
};

struct SearxRow
{
    /// The page; with SearxCategory::Images the picture. An http or https address as tidyAddress() makes it, with a
    /// lower-case scheme.
    std::string address;
    std::string title;     ///< UTF-8 on one line; may be empty
    std::string text;      ///< likewise; with SearxCategory::Images the picture's size in pixels, as "640 x 480"
    std::string thumbnail; ///< address of a smaller picture, as `address`; may be empty
};

struct SearxAnswer
{
    std::vector<SearxRow> rows;                              ///< those with a usable address
    std::size_t listed = 0;                                  ///< rows in the answer, including those without one
    std::vector<std::pair<std::string, std::string>> silent; ///< engines without an answer, with the reasons
};

/// Reads an answer. Values of wrong types count as absent. Fails for text that is not JSON or longer than
/// kMaxSearxAnswer, for JSON nested deeper than kMaxSearxDepth, and for JSON that is no answer to a search.
Outcome<SearxAnswer> readSearxAnswer(std::string_view json, SearxCategory category);

/// Returns the address for a row, or an empty text when it cannot be opened: it is too long, is neither http nor https,
/// has no host, or contains control characters.
std::string rowAddress(std::string_view address);

} // namespace quarrynet::services
