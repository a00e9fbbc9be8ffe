#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Shared by the fuzz targets: the input as text, split where a target needs several texts, and a check that stays in
/// optimised builds.
namespace quarrynet::fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Removes the text before the first NUL, and the NUL, from `rest` and returns the text; all of `rest` if there is no
/// NUL.
inline std::string_view takeText(std::string_view& rest)
{
    const std::size_t end = rest.find('\0');
    const std::string_view text = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return text;
}

/// Aborts the program unless `holds`; the fuzzer then keeps the input. `what` names the violated condition.
inline void check(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace quarrynet::fuzz
