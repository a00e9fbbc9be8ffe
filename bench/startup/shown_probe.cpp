#include <cstdlib>

#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QWindow>

namespace {

/// Ends the program in the first iteration of its event loop after a window was exposed; by then it has been painted.
class ShownProbe final : public QObject
{
public:
    ShownProbe() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto* window = qobject_cast<QWindow*>(watched);
        if (event->type() == QEvent::Expose && window && window->isExposed()) {
            QMetaObject::invokeMethod(
                this, [] { std::_Exit(EXIT_SUCCESS); }, Qt::QueuedConnection);
        }
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
