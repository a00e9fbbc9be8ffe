#include "dialogs/Dialog.h"

#include <QCloseEvent>
#include <QCoreApplication>

#include "icons/icons.h"
#include "platform/system_menu.h"
#include "ui_Dialog.h"

namespace quarrynet {

Dialog::Dialog(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::Dialog>())
{
    ui_->setupUi(this);
    setWindowFlag(Qt::WindowCloseButtonHint, false);
    ui_->Image1->setPixmap(picture(QStringLiteral("waiting"), QSize(64, 64), devicePixelRatioF()));
    create(); // the system menu belongs to the native window
    removeCloseFromSystemMenu(*this);
}

Dialog::~Dialog() = default;

void Dialog::load()
{
    QCoreApplication::instance()->installEventFilter(this);
    show();
    raise();
    activateWindow();
}

void Dialog::unload()
{
    QCoreApplication::instance()->removeEventFilter(this);
    hide();
}

void Dialog::reject() {}

void Dialog::closeEvent(QCloseEvent* event)
{
    event->ignore();
}

bool Dialog::eventFilter(QObject* watched, QEvent* event)
{
    // When the program quits, it asks every window to close, and one that refuses would keep it running.
    if (event->type() == QEvent::Quit)
        unload();
    return QDialog::eventFilter(watched, event);
}

} // namespace quarrynet
