#include "faults.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

// glibc's internal names of its allocator; dlsym() would allocate.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
}

namespace {

std::atomic<int> g_kinds = 0;
std::atomic<long> g_left = 0;
std::atomic<bool> g_failed = false;
std::atomic<int> g_error = QuarrynetUsualError;
thread_local bool t_spared = false;
const char* g_mark = nullptr;

template <class Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Counts a call of `kind` and returns whether it is the one that fails.
bool isTurn(int kind)
{
    if ((g_kinds.load(std::memory_order_relaxed) & kind) == 0 || t_spared || g_left.fetch_sub(1) != 1)
        return false;
    g_kinds = 0;
    g_failed = true;
    if (g_mark != nullptr) {
        static auto* const create = next<int(const char*, int, ...)>("open");
        static auto* const close = next<int(int)>("close");
        close(create(g_mark, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    }
    return true;
}

/// Returns whether this call is the one that fails, and then sets errno to `error` or to the error that the test chose.
bool fails(int kind, int error)
{
    const int wanted = g_error.load(std::memory_order_relaxed);
    if (wanted == QuarrynetShortTransfer || !isTurn(kind))
        return false;
    errno = wanted == QuarrynetUsualError ? error : wanted;
    return true;
}

mode_t typeOf(int number)
{
    static auto* const real = next<int(int, struct stat*)>("fstat");
    const int error = errno;
    struct stat state
    {};
    const mode_t type = real(number, &state) == 0 ? state.st_mode & S_IFMT : 0;
    errno = error;
    return type;
}

/// Returns whether the descriptor is a file or a folder. Calls on the pipes that wake a program's own threads cannot
/// fail.
bool isFile(int number)
{
    const mode_t type = typeOf(number);
    return type == S_IFREG || type == S_IFDIR;
}

bool isSocket(int number)
{
    return typeOf(number) == S_IFSOCK;
}

/// Sends or receives `count` bytes by `real`, which takes the number of bytes. When it fails with the error of a lost
/// connection, it shuts the connection down, as a reset by the peer would.
template <class Real>
ssize_t transfer(int number, size_t count, Real real)
{
    if (g_error.load(std::memory_order_relaxed) == QuarrynetShortTransfer)
        return real(count > 1 && isTurn(QuarrynetNetworkFaults) ? 1 : count);
    if (!fails(QuarrynetNetworkFaults, ECONNRESET))
        return real(count);
    const int error = errno;
    if (error == ECONNRESET || error == EPIPE || error == ETIMEDOUT) {
        static auto* const shut = next<int(int, int)>("shutdown");
        shut(number, SHUT_RDWR);
    }
    errno = error;
    return -1;
}

__attribute__((constructor)) void armFromEnvironment()
{
    const char* number = std::getenv("QUARRYNET_FAIL_AT");
    if (number == nullptr)
        return;
    const char* kinds = std::getenv("QUARRYNET_FAIL_KINDS");
    g_mark = std::getenv("QUARRYNET_FAIL_MARK");
    quarrynet_fail_at(std::atol(number), kinds == nullptr ? ~0 : std::atoi(kinds));
}

} // namespace

// Defines a function that returns `failure` when its call is to fail, and otherwise calls the real one.
#define QUARRYNET_FAULT(result, name, kind, error, failure, parameters, arguments)                                     \
    result name parameters                                                                                             \
    {                                                                                                                  \
        static auto* const real = next<result parameters>(#name);                                                      \
        return fails(kind, error) ? (failure) : real arguments;                                                        \
    }

// open() has a mode argument only if it may create a file.
#define QUARRYNET_OPEN_FAULT(name, parameters, types, arguments)                                                       \
    int name parameters                                                                                                \
    {                                                                                                                  \
        static auto* const real = next<int types>(#name);                                                              \
        if (fails(QuarrynetFileFaults, EMFILE))                                                                        \
            return -1;                                                                                                 \
        mode_t mode = 0;                                                                                               \
        if ((flags & (O_CREAT | O_TMPFILE)) != 0) {                                                                    \
            va_list list;                                                                                              \
            va_start(list, flags);                                                                                     \
            mode = va_arg(list, mode_t);                                                                               \
            va_end(list);                                                                                              \
        }                                                                                                              \
        return real arguments;                                                                                         \
    }

// On sockets only the duplication of the descriptor fails; setting its flags cannot fail.
#define QUARRYNET_CONTROL_FAULT(name)                                                                                  \
    int name(int number, int command, ...)                                                                             \
    {                                                                                                                  \
        static auto* const real = next<int(int, int, ...)>(#name);                                                     \
        va_list list;                                                                                                  \
        va_start(list, command);                                                                                       \
        void* value = va_arg(list, void*);                                                                             \
        va_end(list);                                                                                                  \
        const bool copies = command == F_DUPFD || command == F_DUPFD_CLOEXEC;                                          \
        return copies && isSocket(number) && fails(QuarrynetSocketStateFaults, EMFILE) ? -1                            \
                                                                                       : real(number, command, value); \
    }

extern "C" {

void quarrynet_fail_at(long number, int kinds)
{
    g_kinds = 0;
    g_failed = false;
    g_left = number;
    g_kinds = kinds;
}

void quarrynet_fail_with(int error)
{
    g_error = error;
}

void quarrynet_spare_this_thread()
{
    t_spared = true;
}

bool quarrynet_stop_failing()
{
    g_kinds = 0;
    return g_failed;
}

void* malloc(size_t size)
{
    return fails(QuarrynetMemoryFaults, ENOMEM) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return fails(QuarrynetMemoryFaults, ENOMEM) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size)
{
    return fails(QuarrynetMemoryFaults, ENOMEM) ? nullptr : __libc_realloc(block, size);
}

QUARRYNET_OPEN_FAULT(open, (const char* path, int flags, ...), (const char*, int, ...), (path, flags, mode))
QUARRYNET_OPEN_FAULT(open64, (const char* path, int flags, ...), (const char*, int, ...), (path, flags, mode))
QUARRYNET_OPEN_FAULT(openat, (int folder, const char* path, int flags, ...), (int, const char*, int, ...),
                     (folder, path, flags, mode))
QUARRYNET_OPEN_FAULT(openat64, (int folder, const char* path, int flags, ...), (int, const char*, int, ...),
                     (folder, path, flags, mode))

ssize_t read(int number, void* to, size_t count)
{
    static auto* const real = next<ssize_t(int number, void* to, size_t count)>("read");
    if (isSocket(number))
        return transfer(number, count, [=](size_t part) { return real(number, to, part); });
    return isFile(number) && fails(QuarrynetFileFaults, EIO) ? -1 : real(number, to, count);
}

QUARRYNET_FAULT(ssize_t, pread, QuarrynetFileFaults, EIO, -1, (int number, void* to, size_t count, off_t at),
                (number, to, count, at))
QUARRYNET_FAULT(ssize_t, pread64, QuarrynetFileFaults, EIO, -1, (int number, void* to, size_t count, off64_t at),
                (number, to, count, at))
ssize_t write(int number, const void* from, size_t count)
{
    static auto* const real = next<ssize_t(int number, const void* from, size_t count)>("write");
    if (isSocket(number))
        return transfer(number, count, [=](size_t part) { return real(number, from, part); });
    return isFile(number) && fails(QuarrynetFileFaults, ENOSPC) ? -1 : real(number, from, count);
}

QUARRYNET_FAULT(ssize_t, pwrite, QuarrynetFileFaults, ENOSPC, -1,
                (int number, const void* from, size_t count, off_t at), (number, from, count, at))
QUARRYNET_FAULT(ssize_t, pwrite64, QuarrynetFileFaults, ENOSPC, -1,
                (int number, const void* from, size_t count, off64_t at), (number, from, count, at))
QUARRYNET_FAULT(off_t, lseek, QuarrynetFileFaults, EIO, -1, (int number, off_t offset, int from) noexcept,
                (number, offset, from))
QUARRYNET_FAULT(off64_t, lseek64, QuarrynetFileFaults, EIO, -1, (int number, off64_t offset, int from) noexcept,
                (number, offset, from))
QUARRYNET_FAULT(int, fstat, QuarrynetFileFaults, EIO, -1, (int number, struct stat* state) noexcept, (number, state))
QUARRYNET_FAULT(int, fstat64, QuarrynetFileFaults, EIO, -1, (int number, struct stat64* state) noexcept,
                (number, state))
QUARRYNET_FAULT(int, stat, QuarrynetFileFaults, EIO, -1, (const char* path, struct stat* state) noexcept, (path, state))
QUARRYNET_FAULT(int, stat64, QuarrynetFileFaults, EIO, -1, (const char* path, struct stat64* state) noexcept,
                (path, state))
QUARRYNET_FAULT(int, lstat, QuarrynetFileFaults, EIO, -1, (const char* path, struct stat* state) noexcept,
                (path, state))
QUARRYNET_FAULT(int, lstat64, QuarrynetFileFaults, EIO, -1, (const char* path, struct stat64* state) noexcept,
                (path, state))
QUARRYNET_FAULT(int, fchmod, QuarrynetFileFaults, EPERM, -1, (int number, mode_t mode) noexcept, (number, mode))
QUARRYNET_FAULT(int, fchown, QuarrynetFileFaults, EPERM, -1, (int number, uid_t user, gid_t group) noexcept,
                (number, user, group))
QUARRYNET_FAULT(int, fsync, QuarrynetFileFaults, EIO, -1, (int number), (number))
QUARRYNET_FAULT(int, fdatasync, QuarrynetFileFaults, EIO, -1, (int number), (number))
QUARRYNET_FAULT(int, ftruncate, QuarrynetFileFaults, ENOSPC, -1, (int number, off_t size) noexcept, (number, size))
QUARRYNET_FAULT(int, ftruncate64, QuarrynetFileFaults, ENOSPC, -1, (int number, off64_t size) noexcept, (number, size))
QUARRYNET_FAULT(int, rename, QuarrynetFileFaults, EIO, -1, (const char* from, const char* to) noexcept, (from, to))
QUARRYNET_FAULT(int, unlink, QuarrynetFileFaults, EIO, -1, (const char* path) noexcept, (path))
QUARRYNET_FAULT(int, mkdir, QuarrynetFileFaults, ENOSPC, -1, (const char* path, mode_t mode) noexcept, (path, mode))
QUARRYNET_FAULT(DIR*, opendir, QuarrynetFileFaults, EMFILE, nullptr, (const char* path), (path))
QUARRYNET_FAULT(struct dirent*, readdir, QuarrynetFileFaults, EIO, nullptr, (DIR * folder), (folder))
QUARRYNET_FAULT(struct dirent64*, readdir64, QuarrynetFileFaults, EIO, nullptr, (DIR * folder), (folder))

int close(int number)
{
    static auto* const real = next<int(int)>("close");
    const int result = real(number);
    return fails(QuarrynetFileFaults, EIO) ? -1 : result;
}

QUARRYNET_FAULT(int, socket, QuarrynetNetworkFaults, EMFILE, -1, (int domain, int type, int protocol) noexcept,
                (domain, type, protocol))
QUARRYNET_FAULT(int, connect, QuarrynetNetworkFaults, ECONNREFUSED, -1,
                (int number, const sockaddr* name, socklen_t size), (number, name, size))
QUARRYNET_FAULT(int, accept, QuarrynetNetworkFaults, EMFILE, -1, (int number, sockaddr* name, socklen_t* size),
                (number, name, size))
QUARRYNET_FAULT(int, accept4, QuarrynetNetworkFaults, EMFILE, -1,
                (int number, sockaddr* name, socklen_t* size, int flags), (number, name, size, flags))
ssize_t send(int number, const void* from, size_t count, int flags)
{
    static auto* const real = next<ssize_t(int, const void*, size_t, int)>("send");
    return transfer(number, count, [=](size_t part) { return real(number, from, part, flags); });
}

ssize_t recv(int number, void* to, size_t count, int flags)
{
    static auto* const real = next<ssize_t(int, void*, size_t, int)>("recv");
    return transfer(number, count, [=](size_t part) { return real(number, to, part, flags); });
}

QUARRYNET_FAULT(ssize_t, sendmsg, QuarrynetNetworkFaults, ECONNRESET, -1,
                (int number, const msghdr* message, int flags), (number, message, flags))
QUARRYNET_FAULT(ssize_t, recvmsg, QuarrynetNetworkFaults, ECONNRESET, -1, (int number, msghdr* message, int flags),
                (number, message, flags))

QUARRYNET_FAULT(int, getsockopt, QuarrynetSocketStateFaults, ENOBUFS, -1,
                (int number, int level, int option, void* value, socklen_t* size) noexcept,
                (number, level, option, value, size))
QUARRYNET_FAULT(int, setsockopt, QuarrynetSocketStateFaults, ENOBUFS, -1,
                (int number, int level, int option, const void* value, socklen_t size) noexcept,
                (number, level, option, value, size))
QUARRYNET_FAULT(int, getsockname, QuarrynetSocketStateFaults, ENOBUFS, -1,
                (int number, sockaddr* name, socklen_t* size) noexcept, (number, name, size))
QUARRYNET_FAULT(int, getpeername, QuarrynetSocketStateFaults, ENOTCONN, -1,
                (int number, sockaddr* name, socklen_t* size) noexcept, (number, name, size))
QUARRYNET_FAULT(int, shutdown, QuarrynetSocketStateFaults, ENOTCONN, -1, (int number, int how) noexcept, (number, how))

int ioctl(int number, unsigned long request, ...) noexcept
{
    static auto* const real = next<int(int, unsigned long, ...)>("ioctl");
    va_list list;
    va_start(list, request);
    void* value = va_arg(list, void*);
    va_end(list);
    return isSocket(number) && fails(QuarrynetSocketStateFaults, ENOBUFS) ? -1 : real(number, request, value);
}

QUARRYNET_CONTROL_FAULT(fcntl)
QUARRYNET_CONTROL_FAULT(fcntl64)

QUARRYNET_FAULT(int, poll, QuarrynetWaitFaults, ENOMEM, -1, (pollfd * descriptors, nfds_t count, int milliseconds),
                (descriptors, count, milliseconds))
QUARRYNET_FAULT(int, ppoll, QuarrynetWaitFaults, ENOMEM, -1,
                (pollfd * descriptors, nfds_t count, const timespec* time, const sigset_t* signals),
                (descriptors, count, time, signals))
}
