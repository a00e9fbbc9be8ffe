#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quarrynet {

/// A value as the registry holds it.
struct RegistryValue
{
    std::uint32_t type = 0; // REG_SZ and so on, by the system's numbers
    std::string bytes;      // as many as the system reports, including a text's terminating zero byte
};

/// The system's registry of settings, if it has one.
class Registry
{
public:
    /// HKEY_LOCAL_MACHINE.
    static constexpr std::uint32_t kLocalMachine = 0x80000002U;

    virtual ~Registry() = default;

    /// Returns the value `name` of the key `root`\`key`, or nothing when the key or value is missing or may not be
    /// read, or the value is longer than 1024 bytes. Names and texts are in the system's 8-bit encoding.
    virtual std::optional<RegistryValue> query(std::uint32_t root, const std::string& key,
                                               const std::string& name) const = 0;
};

/// Returns this system's registry, or an empty one on a system without a registry.
std::unique_ptr<Registry> systemRegistry();

} // namespace quarrynet
