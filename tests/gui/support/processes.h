#pragma once

#include <QByteArray>
#include <QList>

/// What /proc tells of this program and those that it started.
namespace processes {

/// The content of /proc/<process>/<name>; empty where the process is gone.
QByteArray processFile(qint64 process, const char* name);

/// A field of /proc/<process>/status; empty where the process is gone.
QByteArray statusField(qint64 process, const QByteArray& name);

/// The processes that this one started, and theirs, as far as they live.
QList<qint64> descendants();

} // namespace processes
