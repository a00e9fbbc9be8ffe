#pragma once

#include <fcntl.h>
#include <initializer_list>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// Runs other programs that a benchmark compares with our code.
namespace quarrynet::bench {

using Command = std::vector<std::string>; // a program, searched for in PATH, and its arguments

/// Runs the commands as a pipeline, discards the output of the last one, and waits for all of them. It uses no shell,
/// whose start would count in the figure. Returns whether all started and the last one exited with status 0.
inline bool runPipeline(std::initializer_list<Command> commands)
{
    std::vector<pid_t> children;
    int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    std::size_t left = commands.size();
    for (const Command& command : commands) {
        int ends[2] = {-1, -1}; // the next command reads from [0], this one writes to [1]
        if (--left > 0 && ::pipe2(ends, O_CLOEXEC) != 0)
            break;
        if (left == 0)
            ends[1] = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        std::vector<char*> words;
        for (const std::string& word : command)
            words.push_back(const_cast<char*>(word.c_str())); // the interface takes char*, but does not write to it
        words.push_back(nullptr);
        posix_spawn_file_actions_t streams;
        ::posix_spawn_file_actions_init(&streams);
        ::posix_spawn_file_actions_adddup2(&streams, input, STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&streams, ends[1], STDOUT_FILENO);
        pid_t child = -1;
        const bool started = ::posix_spawnp(&child, words[0], &streams, nullptr, words.data(), environ) == 0;
        ::posix_spawn_file_actions_destroy(&streams);
        ::close(input);
        ::close(ends[1]);
        input = ends[0];
        if (!started)
            break;
        children.push_back(child);
    }
    if (input >= 0)
        ::close(input);
    int status = -1;
    for (const pid_t child : children)
        ::waitpid(child, &status, 0);
    return children.size() == commands.size() && status == 0;
}

} // namespace quarrynet::bench
