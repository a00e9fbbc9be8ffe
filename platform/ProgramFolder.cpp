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

} // namespace

ProgramFolder chooseProgramFolder(const QString& beside, const QString& data)
{
    if (canWrite(beside))
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
