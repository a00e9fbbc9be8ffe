#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarrynet::services {

/// Returns the name without a suffix that marks a package as a companion of another one: -common, -data, -dbgsym, -dev,
/// -doc, or -l10n with or without a language. Returns an empty text for a name without such a suffix. Example: "vim"
/// for "vim-doc", "firefox-esr" for "firefox-esr-l10n-de".
std::string_view companionBase(std::string_view name);

/// Returns whether one of the typed words (lower-case ASCII) names the content of companion packages, such as
/// "documentation". Companions then rank like the packages that they belong to.
bool asksForCompanions(const std::vector<std::string>& words);

/// Returns whether `name`, without a version at its end, is one of the words of `address`: "python3" is one of
/// "https://www.python.org/", "idle" is not. ASCII letters are case-insensitive.
bool isNamedIn(std::string_view name, std::string_view address);

} // namespace quarrynet::services
