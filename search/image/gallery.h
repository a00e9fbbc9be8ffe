#pragma once

#include <string>
#include <vector>

namespace quarrynet {

/// The gallery page "images.html": the head with its script, then one paragraph a thumbnail that links to the full
/// picture. `addresses` are without scheme, `thumbnails` with it; a thumbnail without an address links to "http://"
/// alone. All bytes are written as given. CR LF line ends; no closing tags.
std::string galleryPage(const std::vector<std::string>& addresses, const std::vector<std::string>& thumbnails);

/// The page "new.html": the frame around the gallery, without a line end.
std::string galleryFramePage();

} // namespace quarrynet
