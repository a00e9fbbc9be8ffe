#pragma once

#include <array>
#include <optional>
#include <utility>

namespace quarrynet {

/// Owns a file descriptor and closes it.
class Descriptor
{
public:
    Descriptor() = default;
    /// Takes ownership of `number`; a negative number makes an empty object.
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        const Descriptor old(std::exchange(number_, other.release()));
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }

    /// Gives up ownership without closing. Returns the number.
    int release() { return std::exchange(number_, -1); }

    /// Closes the descriptor. Returns false, with errno set, when data could not be written or the object is empty.
    bool close();

private:
    int number_ = -1;
};

struct Pipe
{
    Descriptor readEnd;
    Descriptor writeEnd;
};

/// Create a pipe, or a pair of connected sockets, that child processes do not inherit. Return nothing, with errno set,
/// when the system has none left.
std::optional<Pipe> makePipe();
std::optional<std::array<Descriptor, 2>> makeSocketPair();

} // namespace quarrynet
