#include "platform/Announcer.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QWidget>

namespace quarrynet {

namespace {

class NotificationInterface final : public QAccessibleObject
{
public:
    explicit NotificationInterface(Announcer& announcer) : QAccessibleObject(&announcer), announcer_(announcer) {}

    QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(&announcer_.window());
    }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Notification; }
    QAccessible::State state() const override { return {}; }
    QRect rect() const override { return {announcer_.window().mapToGlobal(QPoint()), QSize(1, 1)}; }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? announcer_.message() : QString();
    }

private:
    Announcer& announcer_;
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    if (className != QLatin1String(Announcer::staticMetaObject.className()))
        return nullptr;
    auto* announcer = qobject_cast<Announcer*>(object);
    return announcer ? new NotificationInterface(*announcer) : nullptr;
}

} // namespace

Announcer::Announcer(QWidget& window) : window_(window) {}

void Announcer::say(const QString& message)
{
    QAccessible::installFactory(&makeInterface); // the toolkit keeps one entry per function
    message_ = message;
    QAccessibleEvent hides(this, QAccessible::ObjectHide); // a message is spoken when it appears
    QAccessible::updateAccessibility(&hides);
    QAccessibleEvent shows(this, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shows);
}

} // namespace quarrynet
