#include "processes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>

using namespace Qt::Literals::StringLiterals;

namespace processes {

QByteArray processFile(qint64 process, const char* name)
{
    QFile file(u"/proc/%1/%2"_s.arg(process).arg(QString::fromLatin1(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray statusField(qint64 process, const QByteArray& name)
{
    const QByteArray status = '\n' + processFile(process, "status");
    const qsizetype at = status.indexOf('\n' + name + ":\t");
    return at < 0 ? QByteArray() : status.mid(at + name.size() + 3).split('\n').first();
}

QList<qint64> descendants()
{
    QHash<qint64, qint64> parents;
    for (const QString& name : QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (const qint64 process = name.toLongLong(); process > 0)
            parents.insert(process, statusField(process, "PPid").toLongLong());
    }
    QList<qint64> found;
    for (const qint64 process : parents.keys()) {
        qint64 up = process;
        while (up > 0 && up != QCoreApplication::applicationPid())
            up = parents.value(up);
        if (up > 0 && process != up)
            found.append(process);
    }
    return found;
}

} // namespace processes
