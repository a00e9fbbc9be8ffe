#pragma once

#include <cstdint>
#include <string>

#include "index/database.h"
#include "text/languages.h"

namespace quarrynet::services {

/// What an index may have none of.
enum class Missing : std::uint8_t
{
    Programs, ///< and with them most home pages, and the files of mirrors: they come from package lists
    Pictures,
};

/// Inserts a paragraph at the end of a page without results if the index has nothing of the kind at all; it says why,
/// and what to do.
void noteMissing(std::string& page, IndexPool& index, Missing kind, Language language);

} // namespace quarrynet::services
