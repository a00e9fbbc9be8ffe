#include "platform/message_boxes.h"

#include <QCoreApplication>
#include <QMessageBox>

#include "platform/text_border.h"

namespace quarrynet {

namespace {

void show(QWidget* owner, QMessageBox::Icon icon, const QString& title, const QString& text)
{
    QMessageBox box(icon, title, text, QMessageBox::Ok, owner);
    box.setTextFormat(Qt::PlainText); // a description may come from outside
    box.exec();
}

} // namespace

void showInformation(QWidget* owner, const QString& text)
{
    show(owner, QMessageBox::Information, QStringLiteral("Quarrynet"), text);
}

void showCritical(QWidget* owner, const QString& text)
{
    show(owner, QMessageBox::Critical, QStringLiteral("Quarrynet"), text);
}

void showSocketError(QWidget* owner, int number, std::string_view description)
{
    const QString text = QStringLiteral("Error occurred.\r\nError #: %1\r\n%2").arg(number).arg(toLine(description));
    show(owner, QMessageBox::Warning, QStringLiteral("Error"), text);
}

void showRuntimeError(QWidget* owner, RuntimeError error)
{
    showCritical(owner, toText(runtimeErrorText(error)));
}

void showFileError(QWidget* owner, const QString& path, const QString& reason)
{
    showSettingError(owner, RuntimeError::PathFileAccess, path, reason);
}

void showSettingError(QWidget* owner, RuntimeError error, const QString& path, const QString& reason)
{
    showCritical(owner, QStringLiteral("%1\n\n%2\n%3").arg(toText(runtimeErrorText(error)), toLine(path), reason));
}

} // namespace quarrynet
