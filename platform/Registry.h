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
    std::string bytes;      // as many as the system says, the zero byte that ends a text included
};

/// The machine's settings registry, where it has one.
class Registry
{
public:
    /// HKEY_LOCAL_MACHINE.
    static constexpr std::uint32_t kLocalMachine = 0x80000002U;

    virtual ~Registry() = default;

    /// The value called `name` of the key `root`\`key`. Nothing when key or value are missing or may not be read, or
    /// when the value is longer than 1024 bytes. Names and texts are in the system's 8-bit encoding.
    virtual std::optional<RegistryValue> query(std::uint32_t root, const std::string& key,
                                               const std::string& name) const = 0;
};

/// This machine's registry; one without any value on a system that has none.
std::unique_ptr<Registry> systemRegistry();

} // namespace quarrynet
