#pragma once

#include <chrono>
#include <string>
#include <vector>

/// Certificates for tests, made by the test and never kept.
namespace quarrynet::certificates {

/// A certificate with its private key, both in PEM format.
struct Issued
{
    std::string certificate;
    std::string key;
};

struct Subject
{
    std::string commonName = {};
    std::vector<std::string> alternativeNames = {}; ///< such as "DNS:localhost" and "IP:127.0.0.1"
    bool authority = false;
    /// The validity, relative to now.
    std::chrono::hours begins = std::chrono::hours(-1);
    std::chrono::hours ends = std::chrono::hours(1);
};

/// Returns a certificate of `subject` that `issuer` signs; its own key does when that is null. Throws
/// std::runtime_error when the library fails.
Issued issue(const Subject& subject, const Issued* issuer = nullptr);

} // namespace quarrynet::certificates
