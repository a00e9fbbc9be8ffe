#pragma once

#include <functional>
#include <spawn.h>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"

namespace quarrynet {

/// Creates a pipe (reading end first) or a pair of connected sockets. Child processes do not inherit the ends, unless
/// they are duplicated to standard descriptors. Returns false when the system has none left.
bool makePipe(int (&ends)[2]);
bool makeSocketPair(int (&ends)[2]);

/// Appends an action that closes all descriptors except the three standard ones in the child process, including those
/// that a library opened without O_CLOEXEC. Call it after adding all other actions. Needs glibc 2.34, else does
/// nothing.
void closeOtherDescriptors(posix_spawn_file_actions_t& actions);

/// Runs the program `arguments[0]` (searched in PATH) without a shell, with empty input and this process's standard
/// error, and passes its standard output to `take` piece by piece. Fails when the program cannot be started or its exit
/// status is not 0; pieces already passed stay passed.
Outcome<Done> readProgramOutput(const std::vector<std::string>& arguments,
                                const std::function<void(std::string_view)>& take);

} // namespace quarrynet
