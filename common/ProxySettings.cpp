#include "common/ProxySettings.h"

#include "common/numbers.h"

namespace quarrynet {

namespace {

constexpr std::string_view kSwitchSection = "ProxySwitch";
constexpr std::string_view kHostSection = "ProxyHost";
constexpr const char* kKey = "Value";

} // namespace

std::string ProxySettings::value(std::string_view section)
{
    std::string text;
    store_.ReadValue(std::string(section), kKey, text); // on failure, the text stays empty
    return text;
}

void ProxySettings::load()
{
    on = value(kSwitchSection) == switchText(true);
    host = value(kHostSection);
    port = value(kPortSection);
}

bool ProxySettings::save()
{
    bool saved = store_.WriteValue(std::string(kSwitchSection), kKey, switchText(on));
    saved &= store_.WriteValue(std::string(kHostSection), kKey, host);
    saved &= store_.WriteValue(std::string(kPortSection), kKey, port);
    return saved;
}

Result<std::int16_t> ProxySettings::portNumber() const
{
    return roundToInt16(leadingNumber(port));
}

} // namespace quarrynet
