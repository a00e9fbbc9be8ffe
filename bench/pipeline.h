#pragma once

#include <fcntl.h>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ground/ChildProcess.h"
#include "ground/Descriptor.h"

/// Runs other programs that a benchmark compares with our code.
namespace quarrynet::bench {

using Command = std::vector<std::string>; // a program, searched for in PATH, and its arguments

/// Runs the commands as a pipeline, discards the output of the last one, and waits for all of them. It uses no shell,
/// whose start would count in the figure. Returns whether all started and the last one exited with status 0.
inline bool runPipeline(std::initializer_list<Command> commands)
{
    std::vector<ChildProcess> children;
    Descriptor input(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    std::size_t left = commands.size();
    for (const Command& command : commands) {
        std::optional<Pipe> next =
            --left > 0 ? makePipe() : Pipe{{}, Descriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC))};
        if (!next)
            return false;
        Outcome<ChildProcess> child =
            ChildProcess::start(command, {.input = input.number(), .output = next->writeEnd.number()});
        if (!child)
            return false;
        children.push_back(std::move(*child));
        input = std::move(next->readEnd);
    }
    int status = -1;
    for (ChildProcess& child : children)
        status = child.wait();
    return status == 0;
}

} // namespace quarrynet::bench
