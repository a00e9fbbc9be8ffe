#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <windows.h>

#include "common/letter_case.h"
#include "common/profile_encoding.h"
#include "common/profile_file.h"
#include "common/profile_text.h"
#include "common/windows_text.h"

namespace quarrynet {

namespace {

struct CloseFile
{
    void operator()(HANDLE file) const { ::CloseHandle(file); }
};
using File = std::unique_ptr<void, CloseFile>;

/// Opens a file for reading, whatever others do with it. Returns null, with the error set, if that fails.
File openToRead(const std::wstring& path)
{
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_READ, kShare, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return File(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

struct Content
{
    std::string bytes;
    DWORD error = 0;
};

/// Reads at most `limit` bytes.
Content readAll(const std::wstring& path, std::size_t limit)
{
    Content content;
    const File file = openToRead(path);
    if (!file)
        return {{}, ::GetLastError()};
    std::array<char, 64 * 1024> part{};
    while (content.bytes.size() < limit) {
        const auto wanted = static_cast<DWORD>(std::min(part.size(), limit - content.bytes.size()));
        DWORD count = 0;
        if (::ReadFile(file.get(), part.data(), wanted, &count, nullptr) == 0)
            return {{}, ::GetLastError()};
        if (count == 0)
            break;
        content.bytes.append(part.data(), count);
    }
    return content;
}

DWORD writeAll(const std::wstring& path, std::string_view bytes)
{
    HANDLE created =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (created == INVALID_HANDLE_VALUE)
        return ::GetLastError();
    const File file(created);
    while (!bytes.empty()) {
        DWORD count = 0;
        if (::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) == 0)
            return ::GetLastError();
        bytes.remove_prefix(count);
    }
    return ::FlushFileBuffers(file.get()) != 0 ? 0 : ::GetLastError();
}

/// Replaces the content of a file by a rename, so that a crash leaves the old content or the new one.
DWORD replaceFile(const std::wstring& path, std::string_view bytes)
{
    {
        // The rename would not tell a locked file from a forbidden one, and would replace one that may not be written.
        HANDLE old =
            ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (old == INVALID_HANDLE_VALUE && ::GetLastError() != ERROR_FILE_NOT_FOUND)
            return ::GetLastError();
        const File closing(old == INVALID_HANDLE_VALUE ? nullptr : old);
    }
    const std::wstring fresh = path + L"." + std::to_wstring(::GetCurrentProcessId()) + L".tmp";
    DWORD error = writeAll(fresh, bytes);
    if (error == 0 &&
        ::MoveFileExW(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0)
        error = ::GetLastError();
    if (error != 0)
        ::DeleteFileW(fresh.c_str());
    return error;
}

bool isMissing(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// A file for one call.
class Profile
{
public:
    explicit Profile(const std::string& file) : path_(wideFromUtf8(file)), long_(longPath(path_))
    {
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        if (::GetFileAttributesExW(long_.c_str(), GetFileExInfoStandard, &data) != 0) {
            size_ = data.nFileSizeHigh != 0 ? kLargestProfile + 1 : data.nFileSizeLow;
            directory_ = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            readOnly_ = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
        }
    }

    const wchar_t* path() const { return path_.c_str(); }

    /// Returns the error of every call on a file that is too large, or 0; other errors are left to the call.
    DWORD readFault() const { return !directory_ && size_ > kLargestProfile ? ERROR_FILE_TOO_LARGE : 0; }

    /// Does the same for a call that writes at most `added` bytes more. The system would write a file that is then too
    /// large to be read.
    DWORD writeFault(std::size_t added) const
    {
        if (!directory_ && readOnly_)
            return ERROR_ACCESS_DENIED;
        return !directory_ && size_ + (isOurs() ? 0 : added) > kLargestProfile ? ERROR_FILE_TOO_LARGE : 0;
    }

    /// Returns whether the system's calls cannot read the file as it is meant: they take no long paths, and to most of
    /// them, a UTF-8 mark is part of the first line.
    bool isOurs() const
    {
        if (long_.size() >= MAX_PATH)
            return true;
        const ProfileEncoding encoding = decodeProfile(readAll(long_, kUtf8Mark.size()).bytes).encoding;
        return encoding == ProfileEncoding::Utf8 || encoding == ProfileEncoding::Utf16BigEndian;
    }

    /// Returns whether there is no such file, or it can be read.
    bool isMissingOrReadable() const
    {
        if (::GetFileAttributesW(long_.c_str()) == INVALID_FILE_ATTRIBUTES)
            return isMissing(::GetLastError());
        return readAll(long_, kLargestProfile).error == 0;
    }

    /// Calls `read` with the decoded file. Returns its result in the code page.
    template <class Read>
    ProfileReply read(Read read) const
    {
        const Content content = readAll(long_, kLargestProfile);
        const ProfileText profile = decodeProfile(content.bytes);
        const std::string text = read(profile);
        return {profile.encoding == ProfileEncoding::CodePage ? text : codePageFromWide(wideFromUtf8(text)),
                content.error};
    }

    /// Calls `change` with the decoded file, and writes it back.
    template <class Change>
    ProfileWrite change(Change change) const
    {
        const Content content = readAll(long_, kLargestProfile);
        if (content.error != 0 && content.error != ERROR_FILE_NOT_FOUND)
            return {false, content.error};
        ProfileText profile = decodeProfile(content.bytes);
        profile.text = change(profile);
        const std::string bytes = encodeProfile(profile);
        const DWORD error = bytes.size() > kLargestProfile ? ERROR_FILE_TOO_LARGE : replaceFile(long_, bytes);
        return {error == 0, static_cast<std::uint32_t>(error)};
    }

private:
    std::wstring path_;
    std::wstring long_;
    std::size_t size_ = 0;
    bool directory_ = false;
    bool readOnly_ = false;
};

/// Returns `text`, which is in the code page, in the encoding of the decoded `profile`.
std::string in(const ProfileText& profile, const std::string& text)
{
    return profile.encoding == ProfileEncoding::CodePage ? text : utf8FromWide(wideFromCodePage(text));
}

/// Runs a call of the system that fills a buffer and returns how many characters it put there.
template <class Call>
ProfileReply fill(std::size_t capacity, Call call)
{
    std::wstring buffer(capacity, L'\0');
    ::SetLastError(0); // a success does not clear the code of an earlier failure
    const DWORD count = call(buffer.data(), static_cast<DWORD>(capacity));
    const auto error = static_cast<std::uint32_t>(::GetLastError());
    buffer.resize(count);
    return {codePageFromWide(buffer), error};
}

/// Cuts a value like the system, but never within a letter.
ProfileReply cutValue(ProfileReply reply, std::size_t capacity)
{
    std::size_t length = std::min(reply.text.size(), capacity - 1);
    while (length > 0 && letterBoundary(reply.text, length) != length)
        --length;
    reply.text.resize(length);
    return reply;
}

/// Cuts a packed list like the system. In bytes it may be longer than in the characters that the system counts.
ProfileReply cutList(ProfileReply reply, std::size_t capacity)
{
    if (reply.text.size() + 1 > capacity)
        reply.text.resize(capacity - 2);
    return reply;
}

ProfileWrite outcome(BOOL done)
{
    return {done != 0, done != 0 ? 0 : static_cast<std::uint32_t>(::GetLastError())};
}

// More than the brackets, signs and line ends of a new section and entry.
constexpr std::size_t kPunctuation = 16;

// An own list is cut after it has been converted.
constexpr std::size_t kWhole = 4 * kLargestProfile;

} // namespace

ProfileReply readProfileValue(const std::string& file, const std::string& section, const std::string& key,
                              std::size_t capacity)
{
    const Profile profile(file);
    if (const DWORD fault = profile.readFault())
        return {{}, fault};
    if (profile.isOurs()) {
        return cutValue(profile.read([&](const ProfileText& own) {
            return std::string(profileValue(own.text, in(own, section), in(own, key)).value_or(std::string_view()));
        }),
                        capacity);
    }
    return cutValue(fill(capacity,
                         [&](wchar_t* buffer, DWORD size) {
                             return ::GetPrivateProfileStringW(wideFromCodePage(section).c_str(),
                                                               wideFromCodePage(key).c_str(), L"", buffer, size,
                                                               profile.path());
                         }),
                    capacity);
}

ProfileReply readProfileSection(const std::string& file, const std::string& section, std::size_t capacity)
{
    const Profile profile(file);
    if (const DWORD fault = profile.readFault())
        return {{}, fault};
    if (profile.isOurs()) {
        return cutList(profile.read([&](const ProfileText& own) {
            return packedProfileSection(own.text, in(own, section), kWhole);
        }),
                       capacity);
    }
    return cutList(fill(capacity,
                        [&](wchar_t* buffer, DWORD size) {
                            return ::GetPrivateProfileSectionW(wideFromCodePage(section).c_str(), buffer, size,
                                                               profile.path());
                        }),
                   capacity);
}

ProfileReply readProfileSectionNames(const std::string& file, std::size_t capacity)
{
    const Profile profile(file);
    if (const DWORD fault = profile.readFault())
        return {{}, fault};
    if (profile.isOurs()) {
        return cutList(profile.read([](const ProfileText& own) { return packedProfileSectionNames(own.text, kWhole); }),
                       capacity);
    }
    return cutList(
        fill(capacity, [&](wchar_t* buffer,
                           DWORD size) { return ::GetPrivateProfileSectionNamesW(buffer, size, profile.path()); }),
        capacity);
}

bool foundNothing(const std::string& file, std::uint32_t error)
{
    // The system's calls give the error of a missing file for a missing section and key, too, so the file is asked as
    // well. It alone does not suffice: it may have been locked only while it was read.
    return (error == 0 || isMissing(error)) && Profile(file).isMissingOrReadable();
}

ProfileWrite writeProfileValue(const std::string& file, const std::string& section, const std::string& key,
                               const std::string& value)
{
    if (!isProfileSection(section) || !isProfileKey(key) || !isProfileValue(value))
        return {false, ERROR_INVALID_PARAMETER};
    const Profile profile(file);
    if (const DWORD fault = profile.writeFault(section.size() + key.size() + value.size() + kPunctuation))
        return {false, fault};
    if (profile.isOurs()) {
        return profile.change([&](const ProfileText& own) {
            return withProfileValue(own.text, in(own, section), in(own, key), in(own, value));
        });
    }
    return outcome(::WritePrivateProfileStringW(wideFromCodePage(section).c_str(), wideFromCodePage(key).c_str(),
                                                wideFromCodePage(value).c_str(), profile.path()));
}

ProfileWrite writeProfileSection(const std::string& file, const std::string& section,
                                 const std::vector<std::pair<std::string, std::string>>& entries)
{
    bool writable = isProfileSection(section);
    std::string text;
    std::size_t added = section.size() + kPunctuation;
    for (const auto& [key, value] : entries) {
        writable = writable && isProfileKey(key) && isProfileValue(value);
        text.append(key).append("=").append(value).push_back('\0');
        added += key.size() + value.size() + kPunctuation;
    }
    if (!writable)
        return {false, ERROR_INVALID_PARAMETER};
    const Profile profile(file);
    if (const DWORD fault = profile.writeFault(added))
        return {false, fault};
    if (profile.isOurs()) {
        return profile.change([&](const ProfileText& own) {
            std::vector<std::pair<std::string, std::string>> converted;
            for (const auto& [key, value] : entries)
                converted.emplace_back(in(own, key), in(own, value));
            return withProfileEntries(own.text, in(own, section), converted);
        });
    }
    return outcome(::WritePrivateProfileSectionW(wideFromCodePage(section).c_str(), wideFromCodePage(text).c_str(),
                                                 profile.path()));
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
