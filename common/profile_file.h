#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// INI files on disk. On Windows these are the system's private-profile calls; elsewhere a reader and writer that does
/// the same (see profile_text.h). File names and texts are bytes in the system's code page.
namespace quarrynet {

/// The largest file that is read or written, in bytes. A larger one, and what is no regular file, is a failure.
inline constexpr std::size_t kLargestProfile = std::size_t{16} << 20;

/// What a call brought: `text` is what it put in the caller's buffer, as many characters as it reported; `error` is the
/// system's error code (errno, or GetLastError), 0 when there is none to tell.
struct ProfileReply
{
    std::string text;
    std::uint32_t error = 0;
};

/// The value of `key` in `section` of `file`, at most capacity - 1 characters. Empty when it is empty or missing.
ProfileReply readProfileValue(const std::string& file, const std::string& section, const std::string& key,
                              std::size_t capacity);

/// The entries of `section` ("key=value"), each followed by a NUL; at most capacity - 1 characters. When they do not
/// fit, the last one is cut and the reply is capacity - 2 characters long.
ProfileReply readProfileSection(const std::string& file, const std::string& section, std::size_t capacity);

/// The names of all sections, each followed by a NUL; cut like the entries of a section.
ProfileReply readProfileSectionNames(const std::string& file, std::size_t capacity);

/// Whether a write was done, and the system's error code when it was not.
struct ProfileWrite
{
    bool done = false;
    std::uint32_t error = 0;
};

/// Sets `key` in `section` of `file` to `value`; file, section and key are made when they are missing. Texts that would
/// be read back as other lines are refused as an invalid argument, and nothing is written.
ProfileWrite writeProfileValue(const std::string& file, const std::string& section, const std::string& key,
                               const std::string& value);

/// Replaces the entries of `section`; refuses what writeProfileValue refuses.
ProfileWrite writeProfileSection(const std::string& file, const std::string& section,
                                 const std::vector<std::pair<std::string, std::string>>& entries);

/// The system's error code for memory that ran out.
std::uint32_t outOfMemoryError();

/// The system's message for an error code other than 0, at most `capacity` - 1 characters.
std::string systemMessage(std::uint32_t error, std::size_t capacity);

} // namespace quarrynet
