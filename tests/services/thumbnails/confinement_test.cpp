#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "thumbnails/confinement.h"

using quarrynet::services::confineProcess;

namespace {

/// Runs `attempt` in a confined child process. Returns the exit status: the result of `attempt`, 90 if the process
/// could not be confined, or 91 if it ended in another way.
int confined(const std::function<int()>& attempt)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(confineProcess() ? attempt() : 90);
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : 91;
}

constexpr int kRefused = 1;

/// Describes the result of a system call.
int refused(long result)
{
    return result < 0 && (errno == EPERM || errno == ENOSYS) ? kRefused : 0;
}

} // namespace

#ifdef __linux__

TEST(Confinement, NoFileIsOpenedMadeOrLookedAt)
{
    EXPECT_EQ(confined([] { return refused(::open("/etc/hostname", O_RDONLY)); }), kRefused);
    EXPECT_EQ(confined([] { return refused(::open("/tmp/quarrynet-confined", O_WRONLY | O_CREAT, 0600)); }), kRefused);
    EXPECT_EQ(confined([] { return refused(::openat(AT_FDCWD, "/dev/zero", O_RDONLY)); }), kRefused);
    EXPECT_EQ(confined([] {
                  struct stat status
                  {};
                  return refused(::stat("/etc", &status));
              }),
              kRefused);
    EXPECT_EQ(confined([] { return refused(::unlink("/nonexistent")); }), kRefused);
    EXPECT_EQ(confined([] { return refused(::mkdir("/nonexistent/x", 0700)); }), kRefused);
}

TEST(Confinement, NoSocketIsOpened)
{
    for (const int family : {AF_INET, AF_INET6, AF_UNIX, AF_NETLINK})
        EXPECT_EQ(confined([family] { return refused(::socket(family, SOCK_STREAM, 0)); }), kRefused);
    EXPECT_EQ(confined([] {
                  int ends[2];
                  return refused(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends));
              }),
              kRefused);
}

TEST(Confinement, NoProgramOrProcessIsStarted)
{
    char* arguments[] = {const_cast<char*>("true"), nullptr};
    EXPECT_EQ(confined([&] { return refused(::execv("/bin/true", arguments)); }), kRefused);
    EXPECT_EQ(confined([] { return refused(::fork()); }), kRefused);
    EXPECT_EQ(confined([&] {
                  errno = ::posix_spawn(nullptr, "/bin/true", nullptr, nullptr, arguments, nullptr);
                  return refused(-1);
              }),
              kRefused);
}

TEST(Confinement, NoOtherProcessIsTouched)
{
    EXPECT_EQ(confined([] { return refused(::kill(::getpid(), 0)); }), kRefused);
    EXPECT_EQ(confined([] { return refused(::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr)); }), kRefused);
    EXPECT_EQ(confined([] { return ::geteuid() == 0 || ::setuid(0) == 0 ? 0 : kRefused; }), kRefused);
}

TEST(Confinement, NoMemoryBecomesCode)
{
    EXPECT_EQ(confined([] {
                  void* page =
                      ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                  return refused(page == MAP_FAILED ? -1 : 0);
              }),
              kRefused);
    EXPECT_EQ(confined([] {
                  void* page = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                  return page == MAP_FAILED ? 0 : refused(::mprotect(page, 4096, PROT_READ | PROT_EXEC));
              }),
              kRefused);
}

#endif

TEST(Confinement, WhatReadingPicturesNeedsIsLeft)
{
    EXPECT_EQ(confined([] {
                  int sum = 0;
                  // std::thread would not do: a sanitizer opens pipes to check its types.
                  pthread_t thread{};
                  const auto set = [](void* number) -> void* {
                      *static_cast<int*>(number) = 20;
                      return nullptr;
                  };
                  if (::pthread_create(&thread, nullptr, set, &sum) == 0)
                      ::pthread_join(thread, nullptr);
                  const std::vector<char> large(50'000'000, '\1');
                  rlimit time{10, 10};
                  rusage used{};
                  return sum + large.back() + ::setrlimit(RLIMIT_CPU, &time) + ::getrusage(RUSAGE_SELF, &used) +
                         (::geteuid() == 0 ? 40 : 0);
              }),
              21);
}
