#include "platform/webengine/page_process.h"

#if defined(Q_OS_WIN)
#include <windows.h>
// Must come after windows.h.
#include <psapi.h>
#else
#include <csignal>
#include <unistd.h>

#include <QByteArrayList>
#include <QFile>
#endif

namespace quarrynet {

qint64 processMemory(qint64 process)
{
#if defined(Q_OS_WIN)
    qint64 bytes = 0;
    if (const HANDLE handle = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(process))) {
        PROCESS_MEMORY_COUNTERS counters = {};
        if (K32GetProcessMemoryInfo(handle, &counters, sizeof counters))
            bytes = static_cast<qint64>(counters.PagefileUsage);
        CloseHandle(handle);
    }
    return bytes;
#elif defined(Q_OS_LINUX)
    // The file has the sizes of the address space and of the resident memory, and more, in memory pages.
    QFile file(QStringLiteral("/proc/%1/statm").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
#else
    Q_UNUSED(process);
    return 0;
#endif
}

void endProcess(qint64 process)
{
#if defined(Q_OS_WIN)
    if (const HANDLE handle = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process))) {
        TerminateProcess(handle, 1);
        CloseHandle(handle);
    }
#else
    kill(static_cast<pid_t>(process), SIGKILL);
#endif
}

} // namespace quarrynet
