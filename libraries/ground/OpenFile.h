#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ground/Outcome.h"

namespace quarrynet {

/// A regular file, open for reading for as long as the object lives.
class OpenFile
{
public:
    /// Takes over a descriptor of a file with so many bytes.
    OpenFile(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    std::uint64_t size() const { return size_; }
    /// Returns a text that is another one when the file has changed.
    std::string version() const;

    /// Reads at most `count` bytes from `offset` on. Returns how many there were; 0 at the end and after a fault.
    std::size_t read(std::uint64_t offset, char* to, std::size_t count) const;
    /// Returns the first `bytes` bytes; fewer when the file has no more.
    std::string beginning(std::size_t bytes) const;
    /// Returns the content, or nothing when it is longer than `maxBytes` or cannot be read.
    std::optional<std::string> content(std::size_t maxBytes) const;

private:
    int descriptor_;
    std::uint64_t size_;
};

/// How openBeneath() goes from the folder to the file.
enum class OpenWay : std::uint8_t
{
    Usual,    ///< in one step of the system, or where the system has none such, part by part
    Stepwise, ///< part by part
};

/// Opens the file at `relative` below the folder `root`. `relative` is decoded, has "/" between its parts and any
/// bytes. Check and opening are one: no part may be "..", hidden or a symbolic link, so whoever swaps parts of the path
/// meanwhile gains nothing. Returns nothing unless there is a regular file with one name only; a further name (a hard
/// link) could have been given to a file from elsewhere. A pipe or a device is not waited for.
std::shared_ptr<const OpenFile> openBeneath(const std::string& root, std::string_view relative,
                                            OpenWay way = OpenWay::Usual);

} // namespace quarrynet
