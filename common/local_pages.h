#pragma once

#include <string>
#include <string_view>

/// The pages that the program writes into its folder, and the paths there. Single-byte text, CR LF line ends.
namespace quarrynet {

inline constexpr std::string_view kBlankFrameName = "blank.html";
inline constexpr std::string_view kBlankPageName = "blank.htm";
inline constexpr std::string_view kGalleryPageName = "images.html";
inline constexpr std::string_view kGalleryFrameName = "new.html";

/// A page whose only frame, named "blank", shows the page `source` of the same folder. No line end follows it.
std::string framePage(std::string_view source);

/// The content of "blank.html": the frame around "blank.htm".
std::string blankFramePage();

/// The content of "blank.htm", the empty page of the image viewer: a script that keeps people from navigating away.
std::string blankPage();

/// `folder`, the system's separator unless the folder ends in one already, and `name`. Bytes as given.
std::string pathInFolder(std::string_view folder, std::string_view name);

} // namespace quarrynet
