#include <algorithm>
#include <string>
#include <vector>

#include "index/name_blocks.h"
#include "sources/contents_lists.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

std::vector<std::string> linesOf(std::string_view list, std::size_t piece)
{
    std::vector<std::string> lines;
    ContentsReader reader([&lines](std::string_view path, std::string_view packages) {
        fuzz::check(!path.empty() && path.size() <= kMaxContentsPath, "the length of a path is in range");
        fuzz::check(path.front() != '/' && path.back() != '/', "a path has no slash at its ends");
        fuzz::check(std::none_of(path.begin(), path.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }),
                    "a path has no control character");
        forEachPackageName(packages, [](std::string_view name) {
            fuzz::check(!name.empty() && name.find_first_of("/,") == std::string_view::npos, "a package has one name");
        });
        lines.push_back(std::string(path) + '\n' + std::string(packages));
    });
    for (std::size_t at = 0; at < list.size(); at += piece)
        reader.feed(list.substr(at, piece));
    reader.finish();
    lines.push_back(std::to_string(reader.skipped()));
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view list = fuzz::textOf(data, size);
    fuzz::check(linesOf(list, size + 1) == linesOf(list, 1), "a list is read alike whole and byte by byte");
    const std::vector<std::uint32_t> blocks = readBlockList(list);
    fuzz::check(std::is_sorted(blocks.begin(), blocks.end()), "blocks ascend");
    std::string_view places = list;
    while (const std::optional<EncodedPlaces> some = takePlaces(places))
        fuzz::check(readPlaces(*some, 0, 100).size() <= 100, "places are bounded");
    return 0;
}
