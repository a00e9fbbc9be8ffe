#pragma once

#include <string>

/// Small pictures (PNG, 120 by 120 pixels) that the image search shows instead of thumbnails.
namespace quarrynet::services {

/// Returns the sign for a source that does not answer.
std::string warningSign();

/// Returns the sign for a picture that cannot be shown.
std::string placeholder();

} // namespace quarrynet::services
