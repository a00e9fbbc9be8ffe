#pragma once

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "faults.h"

extern char** environ;

/// Runs a child process in which one call fails.
namespace quarrynet {

/// A child process that must end within a minute. Its standard error goes to a file.
class FaultyProgram
{
public:
    /// Starts `arguments`; the `number`-th call of these kinds fails (0: none does). The files "errors" and "mark" are
    /// written to `folder`, which must be writable for the program's user.
    FaultyProgram(std::vector<std::string> arguments, std::string folder, long number, int kinds)
        : folder_(std::move(folder))
    {
        std::error_code ignored;
        std::filesystem::remove(folder_ + "/mark", ignored);
        std::vector<std::string> variables;
        for (char** variable = environ; *variable != nullptr; ++variable)
            variables.emplace_back(*variable);
        if (number > 0) {
            variables.emplace_back("LD_PRELOAD=" QUARRYNET_FAULTS);
            variables.emplace_back("QUARRYNET_FAIL_AT=" + std::to_string(number));
            variables.emplace_back("QUARRYNET_FAIL_KINDS=" + std::to_string(kinds));
            variables.emplace_back("QUARRYNET_FAIL_MARK=" + folder_ + "/mark");
        }
        int ends[2] = {-1, -1};
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return;
        output_ = ends[0];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (folder_ + "/errors").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const std::vector<char*> values = pointers(arguments);
        if (::posix_spawn(&process_, values[0], &actions, nullptr, values.data(), pointers(variables).data()) != 0)
            process_ = 0;
        posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
    }
    ~FaultyProgram()
    {
        if (process_ > 0)
            ::kill(process_, SIGKILL);
        wait();
        ::close(output_);
    }
    FaultyProgram(const FaultyProgram&) = delete;
    FaultyProgram& operator=(const FaultyProgram&) = delete;

    void signal(int number) const { ::kill(process_, number); }

    /// Waits at most `milliseconds` and returns whether the program has ended.
    bool endsWithin(int milliseconds) const
    {
        if (process_ <= 0)
            return true;
        pollfd end{static_cast<int>(::syscall(SYS_pidfd_open, process_, 0)), POLLIN, 0};
        const bool ended = ::poll(&end, 1, milliseconds) == 1;
        ::close(end.fd);
        return ended;
    }

    /// Waits for the end and returns the exit status, or the negative signal number if a signal ended the program.
    /// Kills a program that has not ended after a minute.
    int wait()
    {
        if (process_ <= 0)
            return status_;
        if (!endsWithin(60'000))
            ::kill(process_, SIGKILL);
        int status = 0;
        ::waitpid(process_, &status, 0);
        process_ = 0;
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        return status_;
    }

    /// Returns whether the call has failed.
    bool failed() const { return std::filesystem::exists(folder_ + "/mark"); }

    std::string errors() const
    {
        std::ifstream file(folder_ + "/errors", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Returns the next line of output without its line end; an incomplete one if the output ends or stalls for a
    /// minute.
    std::string readLine() const
    {
        std::string line;
        pollfd more{output_, POLLIN, 0};
        for (char c = 0; ::poll(&more, 1, 60'000) == 1 && ::read(output_, &c, 1) == 1 && c != '\n';)
            line.push_back(c);
        return line;
    }

private:
    static std::vector<char*> pointers(std::vector<std::string>& texts)
    {
        std::vector<char*> pointers;
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    }

    std::string folder_;
    int output_ = -1;
    pid_t process_ = 0;
    int status_ = -SIGKILL;
};

} // namespace quarrynet
