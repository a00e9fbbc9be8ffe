#include <string>
#include <vector>

#include "sources/SoftwareCatalog.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

std::vector<std::string> told(std::string_view catalog, std::size_t piece)
{
    std::vector<std::string> entries;
    CatalogReader reader([&entries](const CatalogEntry& entry) {
        fuzz::check(!entry.package.empty(), "an entry has a package");
        entries.push_back(entry.package + '\n' + entry.id + '\n' + entry.type + '\n' + entry.name + '\n' +
                          entry.summary + '\n' + entry.license + '\n' + entry.words);
        fuzz::check(entries.back().find('\0') == std::string::npos, "a text has no NUL");
    });
    for (std::size_t at = 0; at < catalog.size(); at += piece)
        reader.feed(catalog.substr(at, piece));
    reader.finish();
    return entries;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view catalog = fuzz::textOf(data, size);
    fuzz::check(told(catalog, size + 1) == told(catalog, 1), "a catalog is read alike whole and byte by byte");
    return 0;
}
