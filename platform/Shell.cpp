#include "platform/Shell.h"

#include <cstddef>
#include <optional>
#include <utility>

#ifdef _WIN32
#include <windows.h>
// Must come after windows.h.
#include <shellapi.h>
#elif defined(__linux__)
#include <climits>
#include <linux/close_range.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

#include <QDir>
#include <QProcess>
#include <QString>
#include <QStringList>

#include "common/address_check.h"
#include "platform/text_border.h"

namespace quarrynet {

namespace {

#ifdef _WIN32
constexpr std::size_t kLongestAddress = 2083; // in characters; the system's shell takes no longer ones
#else
constexpr std::size_t kLongestAddress = 64 * 1024;
#endif

/// Prevents the next child process from inheriting open descriptors: a connection that another process also holds does
/// not end with this one. The program's own descriptors are already close-on-exec; this covers those of libraries and
/// inherited ones. (A detached process cannot have a child process modifier.)
void keepDescriptors()
{
#if defined(__linux__) && defined(SYS_close_range)
    // Older systems do not have the call; the descriptors then stay as they were opened.
    ::syscall(SYS_close_range, static_cast<unsigned>(STDERR_FILENO + 1), UINT_MAX, CLOSE_RANGE_CLOEXEC);
#endif
}

void handToDesktop(const QString& target)
{
#ifdef _WIN32
    // The toolkit's window thread has initialised COM, which handlers may need. The call shows no box when it fails.
    ShellExecuteW(nullptr, L"open", reinterpret_cast<const wchar_t*>(target.utf16()), nullptr, nullptr, SW_SHOWNORMAL);
#else
#ifdef __APPLE__
    const QString opener = QStringLiteral("open");
#else
    const QString opener = QStringLiteral("xdg-open");
#endif
    QProcess process;
    process.setProgram(opener);
    process.setArguments({target});
    // The opener's messages do not belong in this program's output.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    keepDescriptors();
    process.startDetached();
#endif
}

} // namespace

DesktopShell::DesktopShell(std::string manualPage) : manualPage_(std::move(manualPage))
{
    // A relative path could be read as an option, and would depend on the working directory.
    if (!QDir::isAbsolutePath(toPathText(manualPage_)))
        manualPage_.clear();
}

void DesktopShell::open(std::string_view address)
{
    if (!manualPage_.empty() && address == manualPage_) {
        // With slashes, the shell of Windows does not know every path, such as that of a share.
        handToDesktop(QDir::toNativeSeparators(toPathText(manualPage_)));
    } else if (const auto openable = openableAddress(address); openable && openable->size() <= kLongestAddress) {
        handToDesktop(QString::fromLatin1(openable->data(), static_cast<qsizetype>(openable->size())));
    }
}

bool startProgram(const std::string& path)
{
    if (path.empty() || path.find('\0') != std::string::npos)
        return false;
    keepDescriptors();
    return QProcess::startDetached(toText(path), QStringList());
}

} // namespace quarrynet
