#pragma once

#include "app/options.h"

namespace quarrynet::services {

/// Whether this build includes quarrynet-thumbnails; without it there is no image search.
#ifdef QUARRYNET_WITH_IMAGES
inline constexpr bool kHasImageSearch = true;
#else
inline constexpr bool kHasImageSearch = false;
#endif

/// The commands. They print messages to the terminal and return the exit status.
int runIndex(const Options& options);
int runCrawl(const Options& options);
int runServe(const Options& options);
int runCheck(const Options& options);
int runStatus(const Options& options);

} // namespace quarrynet::services
