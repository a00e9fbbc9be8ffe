#pragma once

#include "services/options.h"

namespace quarrynet::services {

/// The commands. They speak to the person at the terminal and return the exit status.
int runIndex(const Options& options);
int runServe(const Options& options);

} // namespace quarrynet::services
