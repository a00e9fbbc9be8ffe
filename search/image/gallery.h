#pragma once

#include <string>
#include <vector>

namespace quarrynet {

/// Returns the gallery page "images.html": the head with its script, then one paragraph per thumbnail that links to the
/// full picture. `addresses` have no scheme, `thumbnails` have one; a thumbnail without an address links to "http://"
/// alone. All bytes are written as given. Line ends are CR LF; there are no closing tags.
std::string galleryPage(const std::vector<std::string>& addresses, const std::vector<std::string>& thumbnails);

/// Returns the page "new.html", the frame around the gallery, without a line end.
std::string galleryFramePage();

} // namespace quarrynet
