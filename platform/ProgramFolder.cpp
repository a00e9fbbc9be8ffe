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
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral("probe")));
    return probe.open();
}

} // namespace

ProgramFolder findProgramFolder()
{
    const QString beside = QDir::toNativeSeparators(QCoreApplication::applicationDirPath());
    if (canWrite(beside))
        return {beside, true};
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(data);
    return {QDir::toNativeSeparators(data), canWrite(data)};
}

} // namespace quarrynet
