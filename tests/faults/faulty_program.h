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

/// A program of its own, run with a call in it that fails.
namespace quarrynet {

/// A started program that has to end within a minute. What it writes goes to files.
class FaultyProgram
{
public:
    /// The `number`-th call of these kinds fails (0: none does). `folder` gets the files "errors", "output" and "mark",
    /// and has to let the program's user write.
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
        constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (folder_ + "/output").c_str(), kWrite, 0600);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (folder_ + "/errors").c_str(), kWrite, 0600);
        const std::vector<char*> values = pointers(arguments);
        if (::posix_spawn(&process_, values[0], &actions, nullptr, values.data(), pointers(variables).data()) != 0)
            process_ = 0;
        posix_spawn_file_actions_destroy(&actions);
    }
    ~FaultyProgram()
    {
        if (process_ > 0)
            ::kill(process_, SIGKILL);
        wait();
    }
    FaultyProgram(const FaultyProgram&) = delete;
    FaultyProgram& operator=(const FaultyProgram&) = delete;

    void signal(int number) const { ::kill(process_, number); }

    /// Whether the program ended within so many milliseconds.
    bool endsWithin(int milliseconds) const
    {
        if (process_ <= 0)
            return true;
        pollfd end{static_cast<int>(::syscall(SYS_pidfd_open, process_, 0)), POLLIN, 0};
        const bool ended = ::poll(&end, 1, milliseconds) == 1;
        ::close(end.fd);
        return ended;
    }

    /// The exit status; the signal's number below zero when one ended it, SIGKILL's when it did not end.
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

    /// Whether a call failed so far.
    bool failed() const { return std::filesystem::exists(folder_ + "/mark"); }

    std::string errors() const { return content("errors"); }
    std::string output() const { return content("output"); }

private:
    static std::vector<char*> pointers(std::vector<std::string>& texts)
    {
        std::vector<char*> pointers;
        for (std::string& text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers;
    }

    std::string content(const std::string& name) const
    {
        std::ifstream file(folder_ + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string folder_;
    pid_t process_ = 0;
    int status_ = -SIGKILL;
};

} // namespace quarrynet
