#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What a value of the Windows registry reads as. The rules need no registry, so they hold and are tested everywhere.
namespace quarrynet {

/// The types of a registry value that are understood here, with the system's numbers.
inline constexpr std::uint32_t kRegistryText = 1;   // REG_SZ
inline constexpr std::uint32_t kRegistryNumber = 4; // REG_DWORD

/// The first `size` bytes of `buffer`, without the zero byte that ends them, if one does: one is taken off, no more. A
/// `size` beyond the buffer means all of it. A view into `buffer`.
std::string_view trimmedRegistryValue(std::string_view buffer, std::size_t size);

/// A trimmed value of the given type as text: a text as it stands, a number in decimal. Nothing for any other type.
/// A number is put together from its bytes, the last one first, each in hexadecimal without leading zeros, so a byte
/// below 16 takes one digit and not two: the bytes 05 01 read as 0x15, which is "21".
std::optional<std::string> registryValueText(std::uint32_t type, std::string_view trimmed);

} // namespace quarrynet
