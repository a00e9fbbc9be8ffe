#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ground/Outcome.h"
#include "index/query.h"
#include "index/sqlite.h"
#include "searches/file_hit.h"

/// Finds files in packages by their names (see index/name_blocks.h). A hit is the package that contains the file.
namespace quarrynet::services {

/// Appends files of `group` to `hits`, in the order of the index, until `hits` has `most`. Skips the first `skip`
/// files. Returns how many files were passed or appended, which is the size of the group unless `hits` is full.
Outcome<std::int64_t> findListedFiles(Database& index, const NameQuery& names, NameGroup group, std::int64_t skip,
                                      std::size_t most, std::vector<FileHit>& hits);

} // namespace quarrynet::services
