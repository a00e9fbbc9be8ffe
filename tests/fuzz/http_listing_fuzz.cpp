#include <algorithm>
#include <set>
#include <string>

#include "crawl/http_listing.h"
#include "crawl/robots.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::string_view kAddress = "https://files.example/a%20b/";
    const std::string_view text = fuzz::textOf(data, size);
    // The title is not left to chance.
    const std::string page = "<title>Index of /</title>" + std::string(text);
    if (const std::optional<HttpListing> listing = readHttpListing(page, kAddress)) {
        std::set<std::string_view> names;
        for (const ListedEntry& entry : listing->entries) {
            fuzz::check(canBeListedName(entry.name), "an entry has a name of a directory's entry");
            fuzz::check(names.insert(entry.name).second, "each name is listed once");
            fuzz::check(!entry.size || (*entry.size >= 0 && entry.kind == ListedEntry::Kind::File),
                        "only files have sizes, none negative");
        }
    }
    (void)readHttpListing(text, kAddress);
    if (const std::optional<std::string> name = nameOfLink(text, kAddress)) {
        const std::string_view bare = std::string_view(*name).substr(0, name->find('/'));
        fuzz::check(canBeListedName(bare) && name->size() <= bare.size() + 1, "a link leads to one name");
    }
    (void)sizeInText(text);
    const RobotsRules rules(text, "quarrynet-services");
    for (const char* path : {"/", "/a/b.zip", "/%2e%2e/"})
        (void)rules.allows(path);
    return 0;
}
