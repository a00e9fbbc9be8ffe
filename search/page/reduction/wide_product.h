#pragma once

#include <cstdint>

#ifdef _MSC_VER
#include <intrin.h>
#endif

namespace quarrynet {

/// A product of two 64-bit numbers.
struct WideProduct
{
    std::uint64_t low;
    std::uint64_t high;
};

inline WideProduct multiplyWide(std::uint64_t a, std::uint64_t b)
{
#ifdef _MSC_VER
    WideProduct product;
    product.high = __umulh(a, b);
    product.low = a * b;
    return product;
#else
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(a) * b;
    return {static_cast<std::uint64_t>(product), static_cast<std::uint64_t>(product >> 64)};
#endif
}

} // namespace quarrynet
