#include "DialogDriver.h"

#include <utility>

#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QPointer>

DialogDriver::DialogDriver(std::function<void(QDialog&)> work) : work_(std::move(work))
{
    qApp->installEventFilter(this);
}

bool DialogDriver::eventFilter(QObject* watched, QEvent* event)
{
    auto* dialog = qobject_cast<QDialog*>(watched);
    if (event->type() == QEvent::Show && dialog && !qobject_cast<QMessageBox*>(watched)) {
        seen_.append(dialog->objectName());
        QMetaObject::invokeMethod(
            dialog,
            [this, open = QPointer(dialog)] {
                open->activateWindow();
                work_(*open);
                if (open && open->isVisible())
                    open->reject();
            },
            Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}
