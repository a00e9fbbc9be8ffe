#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Conversion of Windows registry values to text. It needs no registry, so it is tested on every system.
namespace quarrynet {

/// The supported types of registry values, with the system's numbers.
inline constexpr std::uint32_t kRegistryText = 1;   // REG_SZ
inline constexpr std::uint32_t kRegistryNumber = 4; // REG_DWORD

/// Returns a view of the first `size` bytes of `buffer`, without one terminating zero byte, if there is one. A `size`
/// greater than the buffer's means all of it.
std::string_view trimmedRegistryValue(std::string_view buffer, std::size_t size);

/// Returns a trimmed value of the given type as text: a text unchanged, a number in decimal. Returns nothing for other
/// types. A number is the concatenation of its bytes, last one first, in hexadecimal without leading zeros. So a byte
/// below 16 has one digit, not two: the bytes 05 01 are 0x15, which is "21".
std::optional<std::string> registryValueText(std::uint32_t type, std::string_view trimmed);

} // namespace quarrynet
