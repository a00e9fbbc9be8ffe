#include "index/package_names.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "ground/ascii.h"

namespace quarrynet::services {

namespace {

constexpr std::array<std::string_view, 5> kEndings{"-common", "-data", "-dbgsym", "-dev", "-doc"};
constexpr std::string_view kLanguages = "-l10n";
constexpr std::array<std::string_view, 13> kCompanionWords{
    "common", "data", "dbgsym",        "debug", "dev",         "devel",       "development",
    "doc",    "docs", "documentation", "l10n",  "translation", "translations"};

} // namespace

std::string_view companionBase(std::string_view name)
{
    for (const std::string_view ending : kEndings) {
        if (name.size() > ending.size() && name.substr(name.size() - ending.size()) == ending)
            return name.substr(0, name.size() - ending.size());
    }
    const std::size_t mark = name.find(kLanguages);
    if (mark == std::string_view::npos || mark == 0)
        return {};
    const std::string_view rest = name.substr(mark + kLanguages.size());
    return rest.empty() || rest.front() == '-' ? name.substr(0, mark) : std::string_view();
}

bool asksForCompanions(const std::vector<std::string>& words)
{
    return std::any_of(words.begin(), words.end(), [](const std::string& word) {
        return std::find(kCompanionWords.begin(), kCompanionWords.end(), word) != kCompanionWords.end();
    });
}

bool isNamedIn(std::string_view name, std::string_view address)
{
    while (!name.empty() && (isAsciiDigit(name.back()) || name.back() == '.'))
        name.remove_suffix(1);
    if (name.empty())
        return false;
    const auto same = [](char a, char b) { return toLowerAscii(a) == toLowerAscii(b); };
    const std::size_t scheme = address.find("://");
    for (std::size_t at = scheme == std::string_view::npos ? 0 : scheme + 3; at + name.size() <= address.size(); ++at) {
        const std::size_t end = at + name.size();
        if ((at == 0 || !isAsciiAlphanumeric(address[at - 1])) &&
            (end == address.size() || !isAsciiAlphanumeric(address[end])) &&
            std::equal(name.begin(), name.end(), address.begin() + static_cast<std::ptrdiff_t>(at), same))
            return true;
    }
    return false;
}

} // namespace quarrynet::services
