#include "ground/OpenFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#ifdef __linux__
#include <linux/openat2.h>
#include <sys/syscall.h>
#endif

namespace quarrynet {

namespace {

constexpr std::size_t kMaxRelativePath = 4096;

// Without O_NONBLOCK, opening a pipe would wait for a writer.
constexpr int kFileFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
constexpr int kFolderFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_DIRECTORY;

/// Opens `path` component by component; none may be a symbolic link.
int openStepwise(int folder, const std::string& path)
{
    Descriptor at(::fcntl(folder, F_DUPFD_CLOEXEC, 0));
    std::size_t begin = 0;
    for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', begin)) {
        const std::string part = path.substr(begin, slash - begin);
        begin = slash + 1;
        if (!part.empty())
            at = Descriptor(::openat(at.number(), part.c_str(), kFolderFlags));
        if (!at)
            return -1;
    }
    return ::openat(at.number(), path.substr(begin).c_str(), kFileFlags);
}

int openFrom(int folder, const std::string& path, OpenWay way)
{
#ifdef SYS_openat2
    if (way == OpenWay::Usual) {
        open_how how{};
        how.flags = kFileFlags;
        how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
        const long descriptor = ::syscall(SYS_openat2, folder, path.c_str(), &how, sizeof how);
        // Older systems lack this call, and containers may forbid it.
        if (descriptor >= 0 || (errno != ENOSYS && errno != EPERM))
            return static_cast<int>(descriptor);
    }
#endif
    return openStepwise(folder, path);
}

/// A component that begins with a full stop is "..", "." or hidden; a NUL would truncate the path.
bool mayBeServed(std::string_view relative)
{
    return !relative.empty() && relative.size() <= kMaxRelativePath && relative.front() != '.' &&
           relative.find("/.") == std::string_view::npos && relative.find('\0') == std::string_view::npos &&
           relative.back() != '/';
}

} // namespace

std::string OpenFile::version() const
{
    struct stat status
    {};
    if (::fstat(descriptor_.number(), &status) != 0)
        return {};
    return std::to_string(status.st_dev) + "." + std::to_string(status.st_ino) + "." +
           std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec) + "." +
           std::to_string(status.st_size);
}

std::size_t OpenFile::read(std::uint64_t offset, char* to, std::size_t count) const
{
    for (;;) {
        const ssize_t got = ::pread(descriptor_.number(), to, count, static_cast<off_t>(offset));
        if (got >= 0 || errno != EINTR)
            return got < 0 ? 0 : static_cast<std::size_t>(got);
    }
}

std::string OpenFile::beginning(std::size_t bytes) const
{
    std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(bytes, size_)), '\0');
    std::size_t filled = 0;
    while (filled < text.size()) {
        const std::size_t count = read(filled, text.data() + filled, text.size() - filled);
        if (count == 0)
            break;
        filled += count;
    }
    text.resize(filled);
    return text;
}

std::optional<std::string> OpenFile::content(std::size_t maxBytes) const
{
    if (size_ > maxBytes)
        return std::nullopt;
    std::string text = beginning(static_cast<std::size_t>(size_));
    if (text.size() < size_)
        return std::nullopt;
    return text;
}

std::shared_ptr<const OpenFile> openBeneath(const std::string& root, std::string_view relative, OpenWay way)
{
    relative.remove_prefix(std::min(relative.find_first_not_of('/'), relative.size()));
    if (!mayBeServed(relative))
        return nullptr;
    // Whoever made the index chose the folder itself, so links in its path are allowed.
    const Descriptor folder(::open(root.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY));
    if (!folder)
        return nullptr;
    Descriptor file(openFrom(folder.number(), std::string(relative), way));
    struct stat status
    {};
    if (!file || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink != 1)
        return nullptr;
    return std::make_shared<const OpenFile>(std::move(file), static_cast<std::uint64_t>(status.st_size));
}

} // namespace quarrynet
