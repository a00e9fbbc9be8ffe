#include <string>

#include "common/profile_text.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;

// The input is a section, a key and a value, each terminated by a NUL, and the text of a settings file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = fuzz::textOf(data, size);
    const std::string_view section = fuzz::takeText(text);
    const std::string_view key = fuzz::takeText(text);
    const std::string_view value = fuzz::takeText(text);

    for (const std::string_view name : profileSectionNames(text)) {
        for (const ProfileEntry& entry : profileEntries(text, name))
            fuzz::check(!entry.value || profileValue(text, name, entry.key).has_value(), "an entry can be read");
    }
    profileValue(text, section, key);
    packProfileList({std::string(section), std::string(key)}, 32);
    if (!isProfileSection(section) || !isProfileKey(key) || !isProfileValue(value))
        return 0;
    const std::string written = withProfileValue(text, section, key, value);
    const std::optional<std::string_view> read = profileValue(written, section, key);
    fuzz::check(read.has_value(), "a written value can be read");
    fuzz::check(value.find(*read) != std::string_view::npos, "it is the written value, except for blanks and quotes");
    fuzz::check(withProfileValue(written, section, key, value) == written, "writing it again changes nothing");
    for (const std::string_view name : profileSectionNames(text))
        fuzz::check(profileEntries(written, name).size() >= profileEntries(text, name).size(), "nothing else is lost");
    return 0;
}
