#include "ground/Descriptor.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quarrynet {

#ifndef __linux__

namespace {

bool closeOnExec(const Descriptor& a, const Descriptor& b)
{
    return ::fcntl(a.number(), F_SETFD, FD_CLOEXEC) == 0 && ::fcntl(b.number(), F_SETFD, FD_CLOEXEC) == 0;
}

} // namespace

#endif

Descriptor::~Descriptor()
{
    if (number_ >= 0)
        ::close(number_);
}

bool Descriptor::close()
{
    return ::close(release()) == 0;
}

std::optional<Pipe> makePipe()
{
    std::array<int, 2> ends{-1, -1};
#ifdef __linux__
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) // atomic: another thread may be starting a program
        return std::nullopt;
    return Pipe{Descriptor(ends[0]), Descriptor(ends[1])};
#else
    if (::pipe(ends.data()) != 0)
        return std::nullopt;
    Pipe pipe{Descriptor(ends[0]), Descriptor(ends[1])};
    return closeOnExec(pipe.readEnd, pipe.writeEnd) ? std::optional(std::move(pipe)) : std::nullopt;
#endif
}

std::optional<std::array<Descriptor, 2>> makeSocketPair()
{
    std::array<int, 2> ends{-1, -1};
#ifdef __linux__
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return std::nullopt;
    return std::array{Descriptor(ends[0]), Descriptor(ends[1])};
#else
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0)
        return std::nullopt;
    std::array pair{Descriptor(ends[0]), Descriptor(ends[1])};
    return closeOnExec(pair[0], pair[1]) ? std::optional(std::move(pair)) : std::nullopt;
#endif
}

} // namespace quarrynet
