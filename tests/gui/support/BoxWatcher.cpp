#include "BoxWatcher.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>

BoxWatcher::BoxWatcher()
{
    qApp->installEventFilter(this);
}

QStringList BoxWatcher::texts() const
{
    QStringList texts;
    for (const Box& box : boxes_)
        texts.append(box.text);
    return texts;
}

bool BoxWatcher::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show) {
        if (auto* box = qobject_cast<QMessageBox*>(watched)) {
            boxes_.append({box->windowTitle(), box->text(), box->icon()});
            QMetaObject::invokeMethod(
                box,
                [this, box] {
                    if (beforeAnswer)
                        beforeAnswer(*box);
                    box->accept();
                },
                Qt::QueuedConnection);
        }
    }
    return QObject::eventFilter(watched, event);
}
