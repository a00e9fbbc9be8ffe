#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "services/outcome.h"

namespace quarrynet::services {

/// Runs the program `arguments[0]` (found as execvp finds it) without a shell, with no input and this process's error
/// output, and hands its standard output on piece by piece. Fails when it cannot be started or ends with another status
/// than 0; what was handed on before that stays handed on.
Outcome<Done> readProgramOutput(const std::vector<std::string>& arguments,
                                const std::function<void(std::string_view)>& take);

} // namespace quarrynet::services
