#pragma once

#include <sys/socket.h>

namespace quarrynet::services {

/// Returns whether an address belongs to one host of the public internet. All others are refused: loopback, private,
/// shared and link-local networks, multicast, documentation, benchmarks and what is reserved (the registries of RFC
/// 6890), 6to4 and Teredo, and everything that is neither IPv4 nor IPv6. An IPv6 address that stands for an IPv4 one
/// (mapped, or NAT64 with the well-known prefix, RFC 6052) counts as that.
bool isPublicAddress(const sockaddr& address);

} // namespace quarrynet::services
