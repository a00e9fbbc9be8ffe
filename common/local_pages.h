#pragma once

#include <string>
#include <string_view>

/// The pages that the program writes into its folder, and their paths. They are single-byte text with CR LF line ends.
namespace quarrynet {

inline constexpr std::string_view kBlankFrameName = "blank.html";
inline constexpr std::string_view kBlankPageName = "blank.htm";
inline constexpr std::string_view kGalleryPageName = "images.html";
inline constexpr std::string_view kGalleryFrameName = "new.html";

/// Returns a page whose only frame, named "blank", shows the page `source` in the same folder. It has no final line
/// end.
std::string framePage(std::string_view source);

/// Returns the content of "blank.html", the frame around "blank.htm".
std::string blankFramePage();

/// Returns the content of "blank.htm", the empty page of the image viewer, with a script that prevents navigation.
std::string blankPage();

/// Returns the path of `name` in `folder`, with the system's separator between them unless `folder` ends in one. The
/// bytes stay as given.
std::string pathInFolder(std::string_view folder, std::string_view name);

} // namespace quarrynet
