#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ground/ChildProcess.h"
#include "ground/Descriptor.h"

namespace quarrynet {

/// A program under test: a pipe receives its standard output, a file its error output.
class RunningProgram
{
public:
    RunningProgram(std::vector<std::string> arguments, std::string errorFile, std::vector<std::string> variables = {})
        : errorFile_(std::move(errorFile))
    {
        std::optional<Pipe> pipe = makePipe();
        const Descriptor errors(::open(errorFile_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        if (!pipe || !errors) {
            ADD_FAILURE() << "no pipe, or no file for the errors";
            return;
        }
        Outcome<ChildProcess> process = ChildProcess::start(
            std::move(arguments), {.output = pipe->writeEnd.number(), .errors = errors.number()}, std::move(variables));
        if (!process) {
            ADD_FAILURE() << process.error().message;
            return;
        }
        process_.emplace(std::move(*process));
        output_ = std::move(pipe->readEnd);
    }

    pid_t id() const { return process_ ? process_->id() : 0; }

    void signal(int number) const
    {
        if (process_)
            process_->signal(number);
    }

    /// Waits for the end and returns the exit status, or the negative signal number if a signal ended the program.
    int wait() { return process_ ? process_->wait() : -SIGKILL; }

    /// Returns the next line of output without its line end; an incomplete one if the output ends or stalls for a
    /// minute.
    std::string readLine() const
    {
        std::string line;
        pollfd more{output_.number(), POLLIN, 0};
        for (char c = 0; ::poll(&more, 1, 60'000) == 1 && ::read(output_.number(), &c, 1) == 1 && c != '\n';)
            line.push_back(c);
        return line;
    }

    /// Returns all output until its end, or until it stalls for a minute.
    std::string readAll() const
    {
        std::string all;
        char bytes[4096];
        pollfd more{output_.number(), POLLIN, 0};
        while (::poll(&more, 1, 60'000) == 1) {
            const ssize_t count = ::read(output_.number(), bytes, sizeof bytes);
            if (count <= 0)
                break;
            all.append(bytes, static_cast<std::size_t>(count));
        }
        return all;
    }

    std::string errors() const
    {
        std::ifstream file(errorFile_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string errorFile_;
    Descriptor output_;
    std::optional<ChildProcess> process_;
};

} // namespace quarrynet
