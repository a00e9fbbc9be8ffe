#pragma once

#include <functional>
#include <spawn.h>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"

namespace quarrynet {

/// The two ends of a pipe, the reading one first, or of a connection. They are closed in programs that are started
/// here, unless they are put in a standard descriptor's place. False when the system has none left.
bool makePipe(int (&ends)[2]);
bool makeSocketPair(int (&ends)[2]);

/// The last of the actions with which a program is started: closes everything but the three standard descriptors in it,
/// also what a library opened without a thought for it. Needs glibc 2.34; elsewhere what is opened here has to do.
void closeOtherDescriptors(posix_spawn_file_actions_t& actions);

/// Runs the program `arguments[0]` (found as execvp finds it) without a shell, with no input and this process's error
/// output, and hands its standard output on piece by piece. Fails when it cannot be started or ends with another status
/// than 0; what was handed on before that stays handed on.
Outcome<Done> readProgramOutput(const std::vector<std::string>& arguments,
                                const std::function<void(std::string_view)>& take);

} // namespace quarrynet
