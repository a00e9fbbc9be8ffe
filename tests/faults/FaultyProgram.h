#pragma once

#include <filesystem>
#include <poll.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "faults.h"
#include "ground/Descriptor.h"
#include "tests/support/RunningProgram.h"

namespace quarrynet {

/// A child process in which one call fails. It must end within a minute.
class FaultyProgram
{
public:
    /// Starts `arguments`; the `number`-th call of these kinds fails (0: none does). The files "errors" and "mark" are
    /// written to `folder`, which must be writable for the program's user.
    FaultyProgram(std::vector<std::string> arguments, const std::string& folder, long number, int kinds)
        : mark_(folder + "/mark")
        , program_(std::move(arguments), folder + "/errors", variables(withoutOld(mark_), number, kinds))
    {}

    void signal(int number) const { program_.signal(number); }

    /// Waits at most `milliseconds` and returns whether the program has ended.
    bool endsWithin(int milliseconds) const
    {
        if (program_.id() <= 0)
            return true;
        const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, program_.id(), 0)));
        pollfd end{process.number(), POLLIN, 0};
        return ::poll(&end, 1, milliseconds) == 1;
    }

    /// Waits for the end and returns the exit status, or the negative signal number if a signal ended the program.
    /// Kills a program that has not ended after a minute.
    int wait()
    {
        if (!endsWithin(60'000))
            signal(SIGKILL);
        return program_.wait();
    }

    /// Returns whether the call has failed.
    bool failed() const { return std::filesystem::exists(mark_); }

    std::string errors() const { return program_.errors(); }
    std::string readLine() const { return program_.readLine(); }
    std::string readAll() const { return program_.readAll(); }

private:
    static const std::string& withoutOld(const std::string& mark)
    {
        std::error_code ignored;
        std::filesystem::remove(mark, ignored);
        return mark;
    }

    static std::vector<std::string> variables(const std::string& mark, long number, int kinds)
    {
        if (number <= 0)
            return {};
        return {"LD_PRELOAD=" QUARRYNET_FAULTS, "QUARRYNET_FAIL_AT=" + std::to_string(number),
                "QUARRYNET_FAIL_KINDS=" + std::to_string(kinds), "QUARRYNET_FAIL_MARK=" + mark};
    }

    std::string mark_;
    RunningProgram program_;
};

} // namespace quarrynet
