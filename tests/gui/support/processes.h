#pragma once

#include <QByteArray>
#include <QList>

/// Reads /proc for this process and its descendants.
namespace processes {

/// Returns the content of /proc/<process>/<name>, or an empty text if the process is gone.
QByteArray processFile(qint64 process, const char* name);

/// Returns a field of /proc/<process>/status, or an empty text if the process is gone.
QByteArray statusField(qint64 process, const QByteArray& name);

/// Returns the living child processes of this one, and theirs.
QList<qint64> descendants();

} // namespace processes
