#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "common/CDS_CIni.h"
#include "common/runtime_error.h"

namespace quarrynet {

/// The proxy as stored in the settings file: one section per setting, each with the single key "Value". The file may
/// have any content; texts are bytes.
class ProxySettings
{
public:
    static constexpr std::string_view kPortSection = "ProxyPort";
    static constexpr std::int16_t kLargestPort = std::numeric_limits<std::int16_t>::max();

    /// Returns the text of the switch: "on" or "off".
    static std::string switchText(bool on) { return on ? "on" : "off"; }

    /// `file` is the path of the settings file, in the file system's encoding; it need not exist. Does not read it yet.
    explicit ProxySettings(const std::string& file) { store_.setFileName(file); }

    /// Reads all three. A missing or unreadable value is empty; a switch other than exactly "on" is off.
    void load();

    /// Writes all three: switch, host, port. Returns false if one of them could not be written; still writes the
    /// others.
    bool save();

    /// Returns the leading number of `port`, rounded, or 0 if there is none. Returns Overflow if it exceeds
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
