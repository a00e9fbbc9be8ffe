#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarrynet::services {

/// Returns the name without an ending that marks a package as a companion of another one: -common, -data, -dbgsym,
/// -dev, -doc, or -l10n with or without a language. Returns the empty text for a name without such an ending.
/// Example: "vim" for "vim-doc", "firefox-esr" for "firefox-esr-l10n-de".
std::string_view companionBase(std::string_view name);

/// Whether one of the typed words (lower-case ASCII) names what companion packages hold, such as "documentation".
/// Then a companion is as good an answer as what it belongs to.
bool asksForCompanions(const std::vector<std::string>& words);

/// Whether `name`, taken without a version at its end, is one of the words of `address`: "python3" and
/// "https://www.python.org/", but not "idle" and that address. ASCII letters compare without case.
bool isNamedIn(std::string_view name, std::string_view address);

} // namespace quarrynet::services
