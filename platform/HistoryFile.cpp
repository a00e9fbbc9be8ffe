#include "platform/HistoryFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <windows.h>

#include <QLockFile>
#include <QRegularExpression>
#include <QSaveFile>

#include "common/windows_text.h"
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "ground/Descriptor.h"
#include "ground/OpenFile.h"
#include "ground/durable_file.h"
#endif

#include "platform/text_border.h"

namespace quarrynet {

namespace {

// For how long another window that writes is waited for, in milliseconds. A search must not wait long for the history,
// but who clears it wants it gone.
constexpr int kPatience = 50;
constexpr int kPatienceToClear = 1000;

#ifdef Q_OS_WIN

class WriteLock
{
public:
    WriteLock(const std::string& path, int patience) : file_(toPathText(path) + QLatin1String(".lock"))
    {
        file_.tryLock(patience);
    }
    explicit operator bool() const { return file_.isLocked(); }
    bool isTakenByAnother() const { return file_.error() == QLockFile::LockFailedError; }

private:
    QLockFile file_;
};

std::optional<std::string> contentOf(const std::string& path)
{
    const QFileInfo place(toPathText(path));
    if (!place.exists() && !place.isSymbolicLink())
        return std::string();
    QFile file(place.filePath());
    if (!place.isFile() || place.isSymbolicLink() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.read(static_cast<qint64>(SearchHistory::kMaxFileBytes) + 1);
    if (bytes.size() > static_cast<qsizetype>(SearchHistory::kMaxFileBytes))
        return std::nullopt;
    return bytes.toStdString();
}

bool isOfAnotherUser(const std::string&)
{
    return false; // a file of another user cannot be deleted
}

QString freshPath(const std::string& path)
{
    return toPathText(path) + QLatin1String(".tmp");
}

QString replaceContent(const std::string& path, const std::string& text)
{
    // Made under a name of its own first: QSaveFile adds six letters, and "Quarrynet.history.backup" may be the user's.
    QSaveFile fresh(freshPath(path));
    const auto size = static_cast<qint64>(text.size());
    if (!fresh.open(QIODevice::WriteOnly) || fresh.write(text.data(), size) != size || !fresh.flush() ||
        !fresh.commit())
        return fresh.errorString();
    const std::wstring from = longPath(freshPath(path).toStdWString());
    const std::wstring to = longPath(toPathText(path).toStdWString());
    if (::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
        return {};
    const DWORD error = ::GetLastError();
    ::DeleteFileW(from.c_str());
    return qt_error_string(static_cast<int>(error));
}

// Returns whether replaceContent(), when it was interrupted, may have left a file of this name beside `path`.
bool isLeft(const QString& name, const QString& file)
{
    static const QRegularExpression left(QStringLiteral("^\\.tmp(\\.[A-Za-z]{6})?$"));
    return name.startsWith(file, Qt::CaseInsensitive) && left.match(name.mid(file.size())).hasMatch();
}

#else

/// Locks the file's folder, which is always there and cannot be exchanged for a pipe. A lock file could be, and would
/// have to be left behind.
class WriteLock
{
public:
    WriteLock(const std::string& path, int patience)
        : folder_(::open(folderOf(path).c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY))
    {
        constexpr int kPause = 10; // milliseconds
        for (int waited = 0; folder_ && !locked_ && waited < patience; waited += kPause) {
            if (waited > 0)
                ::usleep(1000 * kPause);
            // Some network file systems cannot lock a folder. There, a change of two windows at the same moment loses
            // one entry, and the file stays whole.
            locked_ = ::flock(folder_.number(), LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
        }
    }
    explicit operator bool() const { return locked_; }
    bool isTakenByAnother() const { return folder_ && !locked_; }

private:
    static std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1) + "."; }

    Descriptor folder_;
    bool locked_ = false;
};

/// Returns the content, which is empty if there is no file, or nothing if the file cannot be used.
std::optional<std::string> contentOf(const std::string& path)
{
    // Opening a pipe must not block, and opening a terminal must not make it this process's terminal.
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    if (!file)
        return errno == ENOENT ? std::optional<std::string>(std::in_place) : std::nullopt;
    struct stat state = {};
    if (::fstat(file.number(), &state) != 0 || !S_ISREG(state.st_mode) || state.st_uid != ::geteuid())
        return std::nullopt;
    return OpenFile(std::move(file), static_cast<std::uint64_t>(state.st_size)).content(SearchHistory::kMaxFileBytes);
}

bool isOfAnotherUser(const std::string& path)
{
    struct stat state = {};
    return ::lstat(path.c_str(), &state) == 0 && state.st_uid != ::geteuid();
}

QString replaceContent(const std::string& path, const std::string& text)
{
    if (::access(path.c_str(), W_OK) != 0 && errno != ENOENT)
        return qt_error_string(errno); // a rename would replace a file that its user has made read-only
    const std::error_code error = replaceFile(path, text, std::nullopt, S_IRUSR | S_IWUSR);
    return error ? qt_error_string(error.value()) : QString();
}

// Returns whether replaceContent(), when it was interrupted, may have left a file of this name beside `file`.
bool isLeft(const QString& name, const QString& file)
{
    return isTemporaryName(toPathBytes(name), toPathBytes(file));
}

#endif

QString useFault()
{
    return QCoreApplication::translate("HistoryFile", "Another program is using the file.");
}

QString ownersFault()
{
    return QCoreApplication::translate("HistoryFile", "The file belongs to another user.");
}

} // namespace

std::optional<SearchHistory> HistoryFile::read() const
{
    const std::optional<std::string> content = contentOf(path_);
    if (!content)
        return std::nullopt;
    return SearchHistory::fromText(*content);
}

QString HistoryFile::update(const std::function<void(SearchHistory&)>& change) const
{
    const WriteLock lock(path_, kPatience);
    if (!lock)
        return useFault();
    std::optional<SearchHistory> history = read();
    if (!history)
        return isOfAnotherUser(path_) ? ownersFault()
                                      : QCoreApplication::translate("HistoryFile", "The file cannot be read.");
    const std::string before = history->text();
    change(*history);
    const std::string after = history->text();
    return after == before ? QString() : replaceContent(path_, after);
}

QString HistoryFile::clear() const
{
    // A window that is just writing would bring the entries back. If it holds the lock for too long, what is there is
    // deleted all the same, and the user learns that it may not last.
    const WriteLock lock(path_, kPatienceToClear);
    QFile file(toPathText(path_));
    const QFileInfo place(file.fileName());
    if (isOfAnotherUser(path_))
        return ownersFault();
    // Before the file, because without the lock, a writer may rename one of them to its name.
    QDir folder = place.dir();
    for (const QString& other :
         folder.entryList({place.fileName() + QLatin1String(".*")}, QDir::Files | QDir::System)) {
        if (isLeft(other, place.fileName()))
            folder.remove(other);
    }
    if ((place.exists() || place.isSymbolicLink()) && !file.remove())
        return file.errorString();
    // Where no window can take the lock, none can write.
    return lock.isTakenByAnother() ? useFault() : QString();
}

} // namespace quarrynet
