#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

/// Replaces files atomically: a reader finds the old content or the new one, even after a crash or a power cut.
namespace quarrynet {

/// Waits until the content of the file at `path` is on the disk.
std::error_code flushFile(const std::string& path);

/// Renames the flushed file `from` to `to`, in the same folder, and replaces a file that has this name. If it fails,
/// `from` is still there.
std::error_code renameDurably(const std::string& from, const std::string& to);

/// Replaces or creates `file`, which must not be a symbolic link. `old` is the fstat() result of the existing file: the
/// new one gets its mode, and its owner if this process may set it. Fails if the existing file is not writable. Without
/// `old`, the new file gets `mode`, reduced by the process's umask, from its first moment on. If it fails, the old file
/// is unchanged and no temporary file is left.
std::error_code replaceFile(const std::string& file, std::string_view content, const std::optional<struct stat>& old,
                            mode_t mode = 0666);

/// Returns whether `name` is one that replaceFile() gives its temporary file beside the file named `file`, such as
/// "file.4711-0.tmp". Both are names without folders. A crash leaves such files behind.
bool isTemporaryName(std::string_view name, std::string_view file);

} // namespace quarrynet
