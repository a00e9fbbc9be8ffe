#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// INI files on disk: the private-profile calls on Windows, elsewhere a reader and writer that does the same (see
/// profile_text.h). Texts are bytes in the system's code page. File names are UTF-8 on Windows, and bytes as the file
/// system has them elsewhere. Files may begin with a mark of their encoding (see profile_encoding.h).
namespace quarrynet {

/// Maximum size of a file that is read or written, in bytes. A larger file, or one that is not a regular file, is a
/// failure.
inline constexpr std::size_t kLargestProfile = std::size_t{16} << 20;

/// The result of a call. `text` has the characters that it put in the caller's buffer, as many as it reported; `error`
/// is the system's error code (errno, or GetLastError), or 0.
struct ProfileReply
{
    std::string text;
    std::uint32_t error = 0;
};

/// Returns the value of `key` in `section` of `file`, at most capacity - 1 characters; empty if it is empty or missing.
ProfileReply readProfileValue(const std::string& file, const std::string& section, const std::string& key,
                              std::size_t capacity);

/// Returns the entries of `section` ("key=value"), each followed by a NUL; at most capacity - 1 characters. If they do
/// not fit, the last one is cut and the reply has capacity - 2 characters.
ProfileReply readProfileSection(const std::string& file, const std::string& section, std::size_t capacity);

/// Returns the names of all sections, each followed by a NUL; cut like the entries of a section.
ProfileReply readProfileSectionNames(const std::string& file, std::size_t capacity);

/// Returns whether a read of `file` that gave no text and `error` found nothing because nothing is there: no file, no
/// section, no key, or an empty value. Otherwise the file could not be read, and may have what was asked for; so may
/// the file that a symbolic link names while it is not there.
bool foundNothing(const std::string& file, std::uint32_t error);

/// Whether a write was done, and the system's error code when it was not.
struct ProfileWrite
{
    bool done = false;
    std::uint32_t error = 0;
};

/// Sets `key` in `section` of `file` to `value`. Creates file, section and key if they are missing. Rejects texts that
/// would be read back as other lines as an invalid argument, and then writes nothing.
ProfileWrite writeProfileValue(const std::string& file, const std::string& section, const std::string& key,
                               const std::string& value);

/// Replaces the entries of `section`. Rejects the same texts as writeProfileValue.
ProfileWrite writeProfileSection(const std::string& file, const std::string& section,
                                 const std::vector<std::pair<std::string, std::string>>& entries);

/// Returns the system's error code for running out of memory.
std::uint32_t outOfMemoryError();

/// Returns the system's message for an error code other than 0, at most `capacity` - 1 characters.
std::string systemMessage(std::uint32_t error, std::size_t capacity);

} // namespace quarrynet
