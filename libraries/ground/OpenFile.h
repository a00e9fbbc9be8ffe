#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ground/Descriptor.h"

namespace quarrynet {

/// A regular file, open for reading while the object lives.
class OpenFile
{
public:
    /// Takes ownership of the descriptor of a file of `size` bytes.
    OpenFile(Descriptor descriptor, std::uint64_t size) : descriptor_(std::move(descriptor)), size_(size) {}

    std::uint64_t size() const { return size_; }
    /// Returns a text that changes with the file.
    std::string version() const;

    /// Reads at most `count` bytes from `offset` on. Returns the number of bytes, 0 at the end of the file or on an
    /// error.
    std::size_t read(std::uint64_t offset, char* to, std::size_t count) const;
    /// Returns the first `bytes` bytes; fewer when the file has no more.
    std::string beginning(std::size_t bytes) const;
    /// Returns the content, or nothing when it exceeds `maxBytes` or cannot be read.
    std::optional<std::string> content(std::size_t maxBytes) const;

private:
    Descriptor descriptor_;
    std::uint64_t size_;
};

/// How openBeneath() resolves the path.
enum class OpenWay : std::uint8_t
{
    Usual,    ///< by one system call, or stepwise if the system does not support it
    Stepwise, ///< component by component
};

/// Opens the file at `relative` below the folder `root`. `relative` is decoded, its separator is "/", and it may
/// contain any bytes. No component may be "..", hidden or a symbolic link; this is checked while opening, so swapping
/// components meanwhile has no effect. Returns null unless the path names a regular file with only one name: a second
/// name (hard link) may belong to a file from elsewhere. Does not block on pipes and devices.
std::shared_ptr<const OpenFile> openBeneath(const std::string& root, std::string_view relative,
                                            OpenWay way = OpenWay::Usual);

} // namespace quarrynet
