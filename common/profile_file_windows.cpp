#include <windows.h>

#include "common/profile_file.h"
#include "common/profile_text.h"

namespace quarrynet {

namespace {

/// Returns ERROR_FILE_TOO_LARGE for a file above the limit, or 0; other errors are left to the call.
DWORD sizeFault(const std::string& file)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (::GetFileAttributesExA(file.c_str(), GetFileExInfoStandard, &data) == 0)
        return 0;
    return data.nFileSizeHigh != 0 || data.nFileSizeLow > kLargestProfile ? ERROR_FILE_TOO_LARGE : 0;
}

/// Runs a call that fills a buffer from `file` and returns how many characters it put there.
template <class Call>
ProfileReply fill(const std::string& file, std::size_t capacity, Call call)
{
    ProfileReply reply;
    reply.error = sizeFault(file);
    if (reply.error != 0)
        return reply;
    reply.text.resize(capacity);
    ::SetLastError(0); // a success does not clear the code of an earlier failure
    const DWORD count = call(reply.text.data(), static_cast<DWORD>(capacity));
    reply.error = ::GetLastError();
    reply.text.resize(count);
    return reply;
}

/// Runs a call that changes `file`.
template <class Call>
ProfileWrite write(const std::string& file, Call call)
{
    if (const DWORD fault = sizeFault(file))
        return {false, fault};
    const bool done = call() != 0;
    return {done, done ? 0 : static_cast<std::uint32_t>(::GetLastError())};
}

} // namespace

ProfileReply readProfileValue(const std::string& file, const std::string& section, const std::string& key,
                              std::size_t capacity)
{
    return fill(file, capacity, [&](char* buffer, DWORD size) {
        return ::GetPrivateProfileStringA(section.c_str(), key.c_str(), "", buffer, size, file.c_str());
    });
}

ProfileReply readProfileSection(const std::string& file, const std::string& section, std::size_t capacity)
{
    return fill(file, capacity, [&](char* buffer, DWORD size) {
        return ::GetPrivateProfileSectionA(section.c_str(), buffer, size, file.c_str());
    });
}

ProfileReply readProfileSectionNames(const std::string& file, std::size_t capacity)
{
    return fill(file, capacity,
                [&](char* buffer, DWORD size) { return ::GetPrivateProfileSectionNamesA(buffer, size, file.c_str()); });
}

ProfileWrite writeProfileValue(const std::string& file, const std::string& section, const std::string& key,
                               const std::string& value)
{
    if (!isProfileSection(section) || !isProfileKey(key) || !isProfileValue(value))
        return {false, ERROR_INVALID_PARAMETER};
    return write(
        file, [&] { return ::WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(), file.c_str()); });
}

ProfileWrite writeProfileSection(const std::string& file, const std::string& section,
                                 const std::vector<std::pair<std::string, std::string>>& entries)
{
    bool writable = isProfileSection(section);
    std::string text;
    for (const auto& [key, value] : entries) {
        writable = writable && isProfileKey(key) && isProfileValue(value);
        text.append(key).append("=").append(value).push_back('\0');
    }
    if (!writable)
        return {false, ERROR_INVALID_PARAMETER};
    return write(file, [&] { return ::WritePrivateProfileSectionA(section.c_str(), text.c_str(), file.c_str()); });
}

std::uint32_t outOfMemoryError()
{
    return ERROR_NOT_ENOUGH_MEMORY;
}

std::string systemMessage(std::uint32_t error, std::size_t capacity)
{
    std::string text(capacity, '\0');
    const DWORD count = ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                         text.data(), static_cast<DWORD>(capacity), nullptr);
    text.resize(count);
    return text;
}

} // namespace quarrynet
