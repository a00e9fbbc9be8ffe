#include "common/link_file.h"

#include <algorithm>
#include <array>
#include <utility>

#include "common/address_check.h"
#include "common/cutting.h"
#include "common/profile_text.h"
#include "ground/ascii.h"

namespace quarrynet {

namespace {

constexpr std::string_view kShortcut = ".url";
constexpr std::string_view kDesktopEntry = ".desktop";
constexpr std::string_view kWebLocation = ".webloc";

std::string_view withoutMark(std::string_view bytes)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF"; // UTF-8
    return bytes.starts_with(kMark) ? bytes.substr(kMark.size()) : bytes;
}

std::optional<std::string> profileAddress(std::string_view text, std::string_view section)
{
    const std::optional<std::string_view> value = profileValue(text, section, "URL");
    return value && !value->empty() ? std::optional(std::string(*value)) : std::nullopt;
}

// Returns `text` with the predefined entities of XML replaced by their characters (XML 1.0, section 4.6).
std::string withoutEntities(std::string_view text)
{
    static constexpr std::array<std::pair<std::string_view, char>, 5> kEntities = {
        {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}}};
    std::string plain;
    while (!text.empty()) {
        std::size_t length = 1;
        char c = text.front();
        for (const auto& [entity, character] : kEntities) {
            if (text.starts_with(entity)) {
                length = entity.size();
                c = character;
            }
        }
        plain += c;
        text.remove_prefix(length);
    }
    return plain;
}

std::optional<std::string> webLocationAddress(std::string_view text)
{
    constexpr std::string_view kKey = "<key>URL</key>";
    constexpr std::string_view kStart = "<string>";
    constexpr std::string_view kEnd = "</string>";
    const std::size_t key = text.find(kKey);
    if (key == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(key + kKey.size());
    while (!text.empty() && isBlankOrControl(text.front()))
        text.remove_prefix(1);
    const std::size_t end = text.find(kEnd);
    if (!text.starts_with(kStart) || end == std::string_view::npos)
        return std::nullopt;
    return withoutEntities(trimBlanks(text.substr(kStart.size(), end - kStart.size())));
}

} // namespace

bool isLinkFile(std::string_view name)
{
    return endsWithIgnoringCase(name, kShortcut) || endsWithIgnoringCase(name, kDesktopEntry) ||
           endsWithIgnoringCase(name, kWebLocation);
}

std::optional<std::string> addressInLinkFile(std::string_view name, std::string_view bytes)
{
    if (bytes.size() > kLongestLinkFile)
        return std::nullopt;
    const std::string_view text = withoutMark(bytes);
    if (endsWithIgnoringCase(name, kShortcut))
        return profileAddress(text, "InternetShortcut");
    if (endsWithIgnoringCase(name, kWebLocation))
        return webLocationAddress(text);
    if (endsWithIgnoringCase(name, kDesktopEntry) && profileValue(text, "Desktop Entry", "Type") == "Link")
        return profileAddress(text, "Desktop Entry");
    return std::nullopt;
}

std::optional<std::string> checkableAddress(std::string_view address)
{
    std::optional<std::string> checked = openableAddress(address);
    if (!checked || !(checked->starts_with("http://") || checked->starts_with("https://")))
        return std::nullopt;
    checked->resize(std::min(checked->find('#'), checked->size()));
    return checked;
}

} // namespace quarrynet
