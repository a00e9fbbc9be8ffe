#include "ground/durable_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "ground/Descriptor.h"

namespace quarrynet {

namespace {

constexpr const char* kTemporary = ".tmp"; // how the names of temporary files end

std::error_code lastError()
{
    return {errno != 0 ? errno : EIO, std::generic_category()}; // 0 would mean success
}

std::string folderOf(const std::string& file)
{
    const std::size_t slash = file.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : file.substr(0, slash);
}

bool writeAll(const Descriptor& output, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(output.number(), text.data(), text.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// Removes the digits at the beginning of `text`. Returns whether there was one.
bool skipNumber(std::string_view& text)
{
    const std::string_view before = text;
    text.remove_prefix(std::min(text.find_first_not_of("0123456789"), text.size()));
    return text.size() < before.size();
}

/// A new file beside `file`, removed by the destructor unless it was renamed.
class TemporaryFile
{
public:
    TemporaryFile(const std::string& file, mode_t mode)
    {
        constexpr int kAttempts = 100;
        for (int attempt = 0; attempt < kAttempts && !output_; ++attempt) {
            path_ = file + "." + std::to_string(::getpid()) + "-" + std::to_string(attempt) + kTemporary;
            output_ = Descriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
            if (!output_ && errno != EEXIST)
                break;
        }
        exists_ = static_cast<bool>(output_);
    }
    ~TemporaryFile()
    {
        if (exists_)
            ::unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Returns an empty descriptor, with errno set, if the file could not be created.
    Descriptor& output() { return output_; }

    std::error_code becomes(const std::string& file)
    {
        const std::error_code error = renameDurably(path_, file);
        exists_ = static_cast<bool>(error);
        return error;
    }

private:
    std::string path_;
    Descriptor output_;
    bool exists_ = false;
};

} // namespace

std::error_code flushFile(const std::string& path)
{
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return file && ::fsync(file.number()) == 0 ? std::error_code() : lastError();
}

std::error_code renameDurably(const std::string& from, const std::string& to)
{
    const std::string folder = folderOf(to); // before the rename: it may run out of memory
    if (::rename(from.c_str(), to.c_str()) != 0)
        return lastError();
    // Without this a power cut could bring back the old file, which is intact as well. Some file systems cannot flush a
    // folder, so a failure here is ignored.
    const Descriptor open(::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY));
    if (open)
        ::fsync(open.number());
    return {};
}

std::error_code replaceFile(const std::string& file, std::string_view content, const std::optional<struct stat>& old,
                            mode_t mode)
{
    if (old && ::access(file.c_str(), W_OK) != 0)
        return lastError(); // a rename alone would replace a file that is not writable
    TemporaryFile temporary(file, mode);
    Descriptor& output = temporary.output();
    if (!output)
        return lastError();
    if (old) {
        // Best effort: a user who may write a file is not always allowed to set its owner.
        [[maybe_unused]] const int owned = ::fchown(output.number(), old->st_uid, old->st_gid);
    }
    const bool done = (!old || ::fchmod(output.number(), old->st_mode & 07777) == 0) && writeAll(output, content) &&
                      ::fsync(output.number()) == 0 && output.close();
    return done ? temporary.becomes(file) : lastError();
}

bool isTemporaryName(std::string_view name, std::string_view file)
{
    if (!name.starts_with(file))
        return false;
    name.remove_prefix(file.size());
    const auto skip = [&name](char c) {
        const bool is = name.starts_with(c);
        name.remove_prefix(is ? 1 : 0);
        return is;
    };
    return skip('.') && skipNumber(name) && skip('-') && skipNumber(name) && name == kTemporary;
}

} // namespace quarrynet
