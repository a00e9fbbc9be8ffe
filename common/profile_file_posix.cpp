#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "common/profile_encoding.h"
#include "common/profile_file.h"
#include "common/profile_text.h"
#include "ground/Descriptor.h"
#include "ground/durable_file.h"

namespace quarrynet {

namespace {

std::uint32_t lastError()
{
    return static_cast<std::uint32_t>(errno);
}

struct Content
{
    std::string bytes;
    std::uint32_t error = 0;
    std::optional<struct stat> state; // nothing when there is no such file
};

Content readAll(const std::string& file)
{
    Content content;
    // Opening a pipe must not block, and opening a terminal must not make it this process's terminal.
    const Descriptor input(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!input) {
        content.error = lastError();
        return content;
    }
    struct stat state = {};
    if (::fstat(input.number(), &state) != 0) {
        content.error = lastError();
        return content;
    }
    if (!S_ISREG(state.st_mode)) {
        content.error = static_cast<std::uint32_t>(S_ISDIR(state.st_mode) ? EISDIR : EINVAL);
        return content;
    }
    if (state.st_size > static_cast<off_t>(kLargestProfile)) {
        content.error = EFBIG;
        return content;
    }
    content.state = state;
    std::size_t length = 0;
    content.bytes.resize(static_cast<std::size_t>(state.st_size) + 1);
    while (true) {
        if (length > kLargestProfile) { // it has grown, or its file system does not tell the size
            content.error = EFBIG;
            break;
        }
        if (length == content.bytes.size())
            content.bytes.resize(std::min(2 * length, kLargestProfile + 1));
        const ssize_t count = ::read(input.number(), content.bytes.data() + length, content.bytes.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            content.error = lastError();
        if (count <= 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    content.bytes.resize(content.error == 0 ? length : 0);
    return content;
}

/// Returns `file` with its symbolic links resolved, so that a rename replaces the file and not the link, or unchanged
/// if no file exists. Returns nothing, with errno set, when that cannot be determined.
std::optional<std::string> target(const std::string& file)
{
    const std::unique_ptr<char, decltype(&std::free)> path(::realpath(file.c_str(), nullptr), &std::free);
    if (path)
        return std::string(path.get());
    return errno == ENOENT ? std::optional(file) : std::nullopt;
}

template <class Change>
ProfileWrite change(const std::string& name, Change changed)
{
    const std::optional<std::string> file = target(name);
    if (!file)
        return {false, lastError()};
    const Content content = readAll(*file);
    if (content.error != 0 && content.error != ENOENT)
        return {false, content.error};
    ProfileText profile = decodeProfile(content.bytes);
    profile.text = changed(profile.text);
    const std::string bytes = encodeProfile(profile);
    if (bytes.size() > kLargestProfile)
        return {false, EFBIG};
    const std::error_code error = replaceFile(*file, bytes, content.state);
    return {!error, static_cast<std::uint32_t>(error.value())};
}

} // namespace

ProfileReply readProfileValue(const std::string& file, const std::string& section, const std::string& key,
                              std::size_t capacity)
{
    const Content content = readAll(file);
    const std::string text = decodeProfile(content.bytes).text;
    const std::string_view value = profileValue(text, section, key).value_or(std::string_view());
    return {std::string(value.substr(0, capacity - 1)), content.error};
}

ProfileReply readProfileSection(const std::string& file, const std::string& section, std::size_t capacity)
{
    const Content content = readAll(file);
    return {packedProfileSection(decodeProfile(content.bytes).text, section, capacity), content.error};
}

ProfileReply readProfileSectionNames(const std::string& file, std::size_t capacity)
{
    const Content content = readAll(file);
    return {packedProfileSectionNames(decodeProfile(content.bytes).text, capacity), content.error};
}

bool foundNothing(const std::string& file, std::uint32_t error)
{
    struct stat state = {};
    return error == 0 || (error == ENOENT && ::lstat(file.c_str(), &state) != 0 && errno == ENOENT);
}

ProfileWrite writeProfileValue(const std::string& file, const std::string& section, const std::string& key,
                               const std::string& value)
{
    if (!isProfileSection(section) || !isProfileKey(key) || !isProfileValue(value))
        return {false, EINVAL};
    return change(file, [&](const std::string& text) { return withProfileValue(text, section, key, value); });
}

ProfileWrite writeProfileSection(const std::string& file, const std::string& section,
                                 const std::vector<std::pair<std::string, std::string>>& entries)
{
    bool writable = isProfileSection(section);
    for (const auto& [key, value] : entries)
        writable = writable && isProfileKey(key) && isProfileValue(value);
    if (!writable)
        return {false, EINVAL};
    return change(file, [&](const std::string& text) { return withProfileEntries(text, section, entries); });
}

std::uint32_t outOfMemoryError()
{
    return ENOMEM;
}

std::string systemMessage(std::uint32_t error, std::size_t capacity)
{
    return std::generic_category().message(static_cast<int>(error)).substr(0, capacity - 1);
}

} // namespace quarrynet
