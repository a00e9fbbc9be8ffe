#include <string>
#include <vector>

#include "sources/package_lists.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

std::vector<std::string> told(std::string_view list, std::size_t piece)
{
    std::vector<std::string> packages;
    StanzaReader reader([&packages](const Package& package) {
        fuzz::check(!package.name.empty(), "a package has a name");
        packages.push_back(package.name + '\n' + package.summary + '\n' + package.description + '\n' +
                           package.homepage + '\n' + package.section + '\n' + package.architecture + '\n' +
                           package.file + '\n' + std::to_string(package.size));
    });
    for (std::size_t at = 0; at < list.size(); at += piece)
        reader.feed(list.substr(at, piece));
    reader.finish();
    return packages;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view list = fuzz::textOf(data, size);
    fuzz::check(told(list, size + 1) == told(list, 1), "a list is read alike whole and byte by byte");
    for (const Repository& repository : repositoriesFrom(list)) {
        fuzz::check(!repository.base.empty() && repository.base.back() == '/', "a base ends in a slash");
        fuzz::check(repository.base.find('@') == std::string::npos ||
                        repository.base.find('@') > repository.base.find('/', repository.base.find("://") + 3),
                    "a base contains no password");
    }
    return 0;
}
