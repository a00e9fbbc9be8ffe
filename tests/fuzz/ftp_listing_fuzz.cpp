#include <algorithm>

#include "crawl/ftp_listing.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

void checkEntries(const std::vector<ListedEntry>& entries, std::string_view listing)
{
    const auto lines = static_cast<std::size_t>(std::count(listing.begin(), listing.end(), '\n')) + 1;
    fuzz::check(entries.size() <= lines, "a line has at most one entry");
    for (const ListedEntry& entry : entries) {
        fuzz::check(!entry.name.empty() && entry.name.size() <= kMaxListedName, "the length of a name is in range");
        fuzz::check(entry.name != "." && entry.name != "..", "a name does not lead upward");
        for (const char c : entry.name)
            fuzz::check(c != '/' && static_cast<unsigned char>(c) >= ' ', "a name has no slash or control character");
        fuzz::check(!entry.size || *entry.size >= 0, "no size is negative");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view listing = fuzz::textOf(data, size);
    checkEntries(readMlsd(listing), listing);
    checkEntries(readList(listing), listing);
    return 0;
}
