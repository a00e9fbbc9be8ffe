#pragma once

#include "app/options.h"

namespace quarrynet::services {

/// Whether quarrynet-thumbnails is a part of this build; without it there is no image search.
#ifdef QUARRYNET_WITH_IMAGES
inline constexpr bool kHasImageSearch = true;
#else
inline constexpr bool kHasImageSearch = false;
#endif

/// The commands. They speak to the person at the terminal and return the exit status.
int runIndex(const Options& options);
int runCrawl(const Options& options);
int runServe(const Options& options);

} // namespace quarrynet::services
