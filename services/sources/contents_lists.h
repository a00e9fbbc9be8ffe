#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"
#include "sources/package_lists.h"

/// The contents lists of the package archive, which say what file is in what package. The package tool keeps them where
/// it has been told to download them.
namespace quarrynet::services {

/// Longer lines are left out. Real paths have at most some 300 bytes, and few files are in several packages.
inline constexpr std::size_t kMaxContentsLine = 64 * 1024;
inline constexpr std::size_t kMaxContentsPath = 1024;
/// The rest of a longer list is left out. Real ones have at most a gigabyte.
inline constexpr std::uint64_t kMaxContentsBytes = std::uint64_t{4} << 30U;

/// Parses lines "PATH BLANKS [AREA/][SECTION/]PACKAGE[,...]" from text that arrives in pieces of any size. A path may
/// contain blanks and begin with "./" or "/".
class ContentsReader
{
public:
    /// `take` gets each path, without "/" at its ends, and its packages, still with their sections and commas. The
    /// views are valid during the call.
    using Take = std::function<void(std::string_view path, std::string_view packages)>;

    explicit ContentsReader(Take take) : take_(std::move(take)) {}

    void feed(std::string_view piece);

    /// Call after the last piece: the last line may lack its end.
    void finish();

    /// Returns the number of lines that are too long, lack a path or a package, or contain control characters.
    std::size_t skipped() const { return skipped_; }

private:
    void append(std::string_view text);
    void takeLine(std::string_view line);

    Take take_;
    std::string line_;
    std::size_t skipped_ = 0;
};

/// Passes the name of each package in a list of packages to `take`: "libc6-dev" for "libdevel/libc6-dev".
void forEachPackageName(std::string_view packages, const std::function<void(std::string_view name)>& take);

/// Returns the machine's downloaded contents lists, by repository; none when it has none.
std::vector<Repository> installedContents();

/// Reads a contents list, which the package tool decompresses, unless its name has no suffix of a compressed file.
/// Returns the number of skipped lines.
Outcome<std::size_t> readContentsList(const std::string& path, const ContentsReader::Take& take);

} // namespace quarrynet::services
