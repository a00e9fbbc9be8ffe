#include "platform/Shell.h"

#include <filesystem>
#include <optional>
#include <utility>

#ifdef _WIN32
#include <shellapi.h>
#include <windows.h>
#endif

#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>

#include "common/address_check.h"

namespace quarrynet {

namespace {

void handToDesktop(const QString& target)
{
#ifdef _WIN32
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
    // What the opener has to say is no output of this program.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
#endif
}

} // namespace

DesktopShell::DesktopShell(std::string manualPage) : manualPage_(std::move(manualPage))
{
    // A relative path could be taken for an option, and would depend on where the program was started.
    if (!std::filesystem::path(manualPage_).is_absolute())
        manualPage_.clear();
}

void DesktopShell::open(std::string_view address)
{
    if (!manualPage_.empty() && address == manualPage_) {
        handToDesktop(QFile::decodeName(QByteArray::fromStdString(manualPage_)));
    } else if (const std::optional<std::string> openable = openableAddress(address)) {
        handToDesktop(QString::fromLatin1(openable->data(), static_cast<qsizetype>(openable->size())));
    }
}

bool startProgram(const std::string& path)
{
    if (path.empty() || path.find('\0') != std::string::npos)
        return false;
    return QProcess::startDetached(QFile::decodeName(QByteArray::fromStdString(path)), QStringList());
}

} // namespace quarrynet
