#include "sources/downloaded_file.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <vector>

#include "ground/ChildProcess.h"
#include "ground/ascii.h"

namespace quarrynet::services {

namespace {

constexpr std::array<std::string_view, 7> kCompressed{".lz4", ".gz", ".xz", ".zst", ".bz2", ".lzma", ".zstd"};

bool isCompressed(const std::string& path)
{
    return std::any_of(kCompressed.begin(), kCompressed.end(),
                       [&path](std::string_view suffix) { return endsWithIgnoringCase(path, suffix); });
}

} // namespace

Outcome<Done> readDownloadedFile(const std::string& path, std::uint64_t most,
                                 const std::function<void(std::string_view piece)>& take)
{
    if (isCompressed(path)) {
        const Outcome<Done> read = readProgramOutput({"/usr/lib/apt/apt-helper", "cat-file", path}, take, most);
        if (!read)
            return Failure{"cannot read " + path + ": " + read.error().message};
        return Done{};
    }
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return Failure{"cannot read " + path};
    std::vector<char> buffer(256 * 1024);
    for (std::uint64_t bytes = 0; file && bytes < most; bytes += buffer.size()) {
        file.read(buffer.data(), static_cast<std::streamsize>(std::min<std::uint64_t>(buffer.size(), most - bytes)));
        take(std::string_view(buffer.data(), static_cast<std::size_t>(file.gcount())));
    }
    if (file.bad())
        return Failure{"cannot read " + path};
    return Done{};
}

} // namespace quarrynet::services
