#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "common/CDS_CIni.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The proxy as the settings file keeps it: one section a setting, each with the single key "Value". Nothing is taken
/// for granted about the file; texts are bytes.
class ProxySettings
{
public:
    static constexpr std::string_view kPortSection = "ProxyPort";
    static constexpr std::int16_t kLargestPort = std::numeric_limits<std::int16_t>::max();

    /// What the switch says: "on" or "off".
    static std::string switchText(bool on) { return on ? "on" : "off"; }

    /// `file`: the settings file, in the file system's encoding; it need not exist. Reads nothing yet.
    explicit ProxySettings(const std::string& file) { store_.setFileName(file); }

    /// Reads all three. A missing or unreadable value is empty; any switch but exactly "on" is off.
    void load();

    /// Writes all three: switch, host, port. Returns false when one of them could not be written; the others are.
    bool save();

    /// Returns the number that the port begins with, 0 when it begins with none, rounded; or Overflow above
    /// kLargestPort.
    Result<std::int16_t> portNumber() const;

    bool on = false;
    std::string host;
    std::string port; // as typed

private:
    std::string value(std::string_view section);

    CDS_CIni store_;
};

} // namespace quarrynet
