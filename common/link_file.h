#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Link files, in which desktops and browsers keep an address. They come from anywhere, so nothing in them is trusted.
namespace quarrynet {

/// No link file is longer than this, in bytes; longer ones are not read.
constexpr std::size_t kLongestLinkFile = 64 * 1024;

/// Returns whether a file of this name (any path or none) is a link file: its extension, in any letter case, is
/// ".url" (Windows), ".desktop" (freedesktop.org) or ".webloc" (macOS).
bool isLinkFile(std::string_view name);

/// Returns the address in a link file, as the file has it, or nothing if there is none: the URL of the section
/// [InternetShortcut] of a ".url" file, that of a ".desktop" file of type Link, or the text of the key URL in a
/// ".webloc" file in XML. `bytes` is the file's content.
std::optional<std::string> addressInLinkFile(std::string_view name, std::string_view bytes);

/// Returns `address` in the form in which the page check can fetch it, or nothing if it cannot: only http and https
/// addresses that pass openableAddress, without the part from "#" on, which no server is sent.
std::optional<std::string> checkableAddress(std::string_view address);

} // namespace quarrynet
