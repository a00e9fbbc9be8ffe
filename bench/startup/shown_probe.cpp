#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
// Must come after windows.h.
#include <psapi.h>
#else
#include <sys/resource.h>
#endif

#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QWindow>

namespace {

// Returns the most memory that this process has had in use at a time, in bytes.
long long peakMemory()
{
#ifdef _WIN32
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<long long>(counters.PeakWorkingSetSize);
#else
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024LL;
#endif
}

void end()
{
    std::printf("%lld\n", peakMemory());
    std::fflush(stdout);
    std::_Exit(EXIT_SUCCESS);
}

/// Prints the peak memory and ends the program, in the first iteration of its event loop after a window was exposed; by
/// then it has been painted.
class ShownProbe final : public QObject
{
public:
    ShownProbe() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto* window = qobject_cast<QWindow*>(watched);
        if (event->type() == QEvent::Expose && window && window->isExposed())
            QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

class ShownProbePlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "shown_probe.json")

public:
    QObject* create(const QString&, const QString&) override { return new ShownProbe; }
};

#include "shown_probe.moc"
