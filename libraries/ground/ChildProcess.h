#pragma once

#include <csignal>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "ground/Outcome.h"

namespace quarrynet {

/// The descriptors of this process that a child process gets as its standard streams.
struct StandardStreams
{
    int input = STDIN_FILENO;
    int output = STDOUT_FILENO;
    int errors = STDERR_FILENO;
};

/// A child process. The destructor kills it and waits for its end.
class ChildProcess
{
public:
    /// Starts the program `arguments[0]` (searched in PATH) without a shell. Its environment is this process's, with
    /// `variables` ("NAME=value") added or replaced. It inherits only its standard streams, not even a descriptor that
    /// a library opened without O_CLOEXEC. (This needs glibc 2.34; elsewhere such a descriptor is inherited.)
    static Outcome<ChildProcess> start(std::vector<std::string> arguments, const StandardStreams& streams = {},
                                       std::vector<std::string> variables = {});

    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept : id_(std::exchange(other.id_, 0)), status_(other.status_) {}
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Returns the process ID, or 0 after wait().
    pid_t id() const { return id_; }

    /// Sends the signal to the process. Does nothing after wait().
    void signal(int number) const;

    /// Waits for the end and returns the exit status, or the negative signal number if a signal ended the process.
    /// Further calls return the same.
    int wait();

private:
    explicit ChildProcess(pid_t id) : id_(id) {}

    pid_t id_;
    int status_ = -SIGKILL;
};

/// Runs a program as ChildProcess::start() does, with empty input and this process's standard error, and passes its
/// standard output to `take` piece by piece. Fails when the program cannot be started, its exit status is not 0, or it
/// prints more than `most` bytes, which ends it; pieces already passed stay passed.
Outcome<Done> readProgramOutput(const std::vector<std::string>& arguments,
                                const std::function<void(std::string_view)>& take,
                                std::uint64_t most = std::numeric_limits<std::uint64_t>::max());

} // namespace quarrynet
