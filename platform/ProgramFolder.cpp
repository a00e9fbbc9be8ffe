#include "platform/ProgramFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace quarrynet {

namespace {

// Tests by writing, because permission bits do not show read-only file systems, quotas or Windows' access lists.
bool canWrite(const QString& folder)
{
    // A relative path, such as an empty one for a user without a folder, would lead to the working directory.
    if (!QDir::isAbsolutePath(folder))
        return false;
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral("probe")));
    return probe.open();
}

// The build sets QUARRYNET_INSTALLED_MANUAL: the installed manual's folder relative to the program's. A portable copy
// has the manual beside it.
bool isInstalled(const QDir& folder)
{
    return folder.exists(QStringLiteral(QUARRYNET_INSTALLED_MANUAL)) && !folder.exists(QStringLiteral("manual"));
}

// Root can write into every program's folder, but an installed program's belongs to the package manager. An older copy
// that was installed into a writable folder has its settings there and keeps them.
bool isForFiles(const QString& beside)
{
    const QDir folder(beside);
    return (!isInstalled(folder) || folder.exists(QStringLiteral("Quarrynet.ini"))) && canWrite(beside);
}

} // namespace

ProgramFolder chooseProgramFolder(const QString& beside, const QString& data)
{
    if (isForFiles(beside))
        return {QDir::toNativeSeparators(beside), true};
    if (QDir::isAbsolutePath(data))
        QDir().mkpath(data);
    return {QDir::toNativeSeparators(data), canWrite(data)};
}

ProgramFolder findProgramFolder()
{
    return chooseProgramFolder(QCoreApplication::applicationDirPath(),
                               QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
}

} // namespace quarrynet
