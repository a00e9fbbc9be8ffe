#include "live/public_address.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <netinet/in.h>

namespace quarrynet::services {

namespace {

using Ipv4 = std::array<std::uint8_t, 4>;
using Ipv6 = std::array<std::uint8_t, 16>;

template <class Address>
struct Range
{
    Address first;
    unsigned bits; ///< of `first` that all its addresses share
};

template <class Address>
bool contains(const Range<Address>& range, const Address& address)
{
    const unsigned bytes = range.bits / 8;
    const unsigned rest = range.bits % 8;
    if (!std::equal(address.begin(), address.begin() + bytes, range.first.begin()))
        return false;
    return rest == 0 || ((address[bytes] ^ range.first[bytes]) >> (8 - rest)) == 0;
}

template <class Ranges, class Address>
bool anyContains(const Ranges& ranges, const Address& address)
{
    return std::any_of(ranges.begin(), ranges.end(), [&](const auto& range) { return contains(range, address); });
}

constexpr std::array<Range<Ipv4>, 15> kSpecialIpv4 = {{
    {{0, 0, 0, 0}, 8},
    {{10, 0, 0, 0}, 8},
    {{100, 64, 0, 0}, 10},
    {{127, 0, 0, 0}, 8},
    {{169, 254, 0, 0}, 16},
    {{172, 16, 0, 0}, 12},
    {{192, 0, 0, 0}, 24},
    {{192, 0, 2, 0}, 24},
    {{192, 88, 99, 0}, 24},
    {{192, 168, 0, 0}, 16},
    {{198, 18, 0, 0}, 15},
    {{198, 51, 100, 0}, 24},
    {{203, 0, 113, 0}, 24},
    {{224, 0, 0, 0}, 4},
    {{240, 0, 0, 0}, 4},
}};

constexpr Range<Ipv6> kMapped = {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF}, 96};
constexpr Range<Ipv6> kNat64 = {{0, 0x64, 0xFF, 0x9B}, 96};
constexpr Range<Ipv6> kGlobalUnicast = {{0x20}, 3};
constexpr std::array<Range<Ipv6>, 4> kSpecialGlobalUnicast = {{
    {{0x20, 0x01, 0x00}, 23}, // protocol assignments, Teredo among them
    {{0x20, 0x01, 0x0D, 0xB8}, 32},
    {{0x20, 0x02}, 16}, // 6to4
    {{0x3F, 0xFF, 0x00}, 20},
}};

bool isPublic(const Ipv4& address)
{
    return !anyContains(kSpecialIpv4, address);
}

bool isPublic(const Ipv6& address)
{
    if (contains(kMapped, address) || contains(kNat64, address)) {
        Ipv4 embedded{};
        std::copy(address.end() - embedded.size(), address.end(), embedded.begin());
        return isPublic(embedded);
    }
    return contains(kGlobalUnicast, address) && !anyContains(kSpecialGlobalUnicast, address);
}

} // namespace

bool isPublicAddress(const sockaddr& address)
{
    // Copied, because the caller's structure need not be aligned for the larger one.
    if (address.sa_family == AF_INET) {
        sockaddr_in whole{};
        std::memcpy(&whole, &address, sizeof whole);
        Ipv4 bytes{};
        std::memcpy(bytes.data(), &whole.sin_addr, bytes.size());
        return isPublic(bytes);
    }
    if (address.sa_family == AF_INET6) {
        sockaddr_in6 whole{};
        std::memcpy(&whole, &address, sizeof whole);
        Ipv6 bytes{};
        std::memcpy(bytes.data(), &whole.sin6_addr, bytes.size());
        return isPublic(bytes);
    }
    return false;
}

} // namespace quarrynet::services
