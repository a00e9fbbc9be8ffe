#include "ground/child_process.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace quarrynet {

bool makePipe(int (&ends)[2])
{
#ifdef __linux__
    return ::pipe2(ends, O_CLOEXEC) == 0; // atomic, because another thread may be starting a program
#else
    return ::pipe(ends) == 0 && ::fcntl(ends[0], F_SETFD, FD_CLOEXEC) == 0 &&
           ::fcntl(ends[1], F_SETFD, FD_CLOEXEC) == 0;
#endif
}

bool makeSocketPair(int (&ends)[2])
{
#ifdef __linux__
    return ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0;
#else
    return ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0 && ::fcntl(ends[0], F_SETFD, FD_CLOEXEC) == 0 &&
           ::fcntl(ends[1], F_SETFD, FD_CLOEXEC) == 0;
#endif
}

void closeOtherDescriptors([[maybe_unused]] posix_spawn_file_actions_t& actions)
{
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 34)
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
#endif
}

Outcome<Done> readProgramOutput(const std::vector<std::string>& arguments,
                                const std::function<void(std::string_view)>& take)
{
    int ends[2] = {-1, -1};
    if (!makePipe(ends))
        return Failure{std::string("cannot create a pipe: ") + std::strerror(errno)};

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    closeOtherDescriptors(actions);
    std::vector<std::string> copies = arguments;
    std::vector<char*> pointers;
    pointers.reserve(copies.size() + 1);
    for (std::string& copy : copies)
        pointers.push_back(copy.data());
    pointers.push_back(nullptr);
    pid_t child = -1;
    const int code = ::posix_spawnp(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (code != 0) {
        ::close(ends[0]);
        return Failure{"cannot start " + arguments[0] + ": " + std::strerror(code)};
    }

    std::vector<char> buffer(256 * 1024);
    for (;;) {
        const ssize_t count = ::read(ends[0], buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        take(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
    }
    ::close(ends[0]);

    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return Failure{arguments[0] + " failed"};
    return Done{};
}

} // namespace quarrynet
