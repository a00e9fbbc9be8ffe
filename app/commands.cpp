// The command layer of the main window: tabs, menus, toolbar, keys and Stop.

#include <QAction>
#include <QKeyEvent>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>

#include "app/Main.h"
#include "dialogs/Proxy.h"
#include "dialogs/frmAbout.h"
#include "icons/icons.h"
#include "platform/HiddenText.h"
#include "platform/ImageList.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/message_boxes.h"
#include "platform/scaling_bars.h"
#include "platform/text_border.h"
#include "search/SearchTab.h"

namespace quarrynet {

namespace {

// A button's tool tip, which is its name too, and its picture; a separator has none.
struct ToolbarButton
{
    const char* toolTip;
    const char* picture;
};

constexpr std::array<ToolbarButton, 9> kToolbarButtons = {{
    {nullptr, nullptr},
    {"Configure Proxy", "proxy"},
    {nullptr, nullptr},
    {"Stop Current Search", "stop"},
    {nullptr, nullptr},
    {"Help", "help"},
    {"E-mail Author", "mail"},
    {"Webpage", "webpage"},
    {"About Quarrynet", "about"},
}};

} // namespace

void Main::makeMenus()
{
    setMenuBar(new MenuBar(FormLayout::kMenuBarHeight, this));
    const auto addMenu = [this](const char* name, const QString& text) {
        QMenu* menu = menuBar()->addMenu(text);
        menu->setObjectName(QLatin1String(name));
        menu->menuAction()->setObjectName(QLatin1String(name));
        return menu;
    };
    const auto add = [this](QWidget* place, const char* name, const QString& text, void (Main::*command)()) {
        auto* action = new QAction(text, this);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, command);
        place->addAction(action);
    };
    QMenu* file = addMenu("filmnu", tr("&File"));
    add(file, "exitmnu", tr("E&xit"), &Main::exitmnu_Click);
    QMenu* view = addMenu("viewmnu", tr("&View"));
    add(view, "proxymnu", tr("&Proxy"), &Main::proxymnu_Click);
    QMenu* help = addMenu("helpmnu", tr("&Help"));
    add(help, "contentmnu", tr("&Contents"), &Main::contentmnu_Click);
    add(help, "emailauth", tr("&Email Author"), &Main::emailauth_Click);
    add(help, "webpage", tr("&Webpage"), &Main::webpage_Click);
    help->addSeparator();
    add(help, "aboutmnu", tr("&About"), &Main::aboutmnu_Click);
    add(menuBar(), "stopmnu", tr("Stop"), &Main::stopmnu_Click);
}

void Main::makeToolbar()
{
    ImageList1 = new ImageList(this);
    ImageList1->setObjectName(QStringLiteral("ImageList1"));
    for (std::size_t i = 0; i < kToolbarButtons.size(); ++i) {
        const ToolbarButton& button = kToolbarButtons[i];
        if (!button.toolTip) {
            Toolbar1->addSeparator();
            continue;
        }
        ImageList1->add(icon(QLatin1String(button.picture)));
        QAction* action = Toolbar1->addAction(ImageList1->image(ImageList1->count()), tr(button.toolTip));
        action->setToolTip(tr(button.toolTip));
        const int index = static_cast<int>(i) + 1;
        connect(action, &QAction::triggered, this, [this, index] { Toolbar1_ButtonClick(index); });
    }
}

void Main::TabStrip1_Click()
{
    const int tag = selectedTag();
    if (tag < 1 || tag > static_cast<int>(tabs_.size()))
        return;
    SearchTab* chosen = tabs_[static_cast<std::size_t>(tag) - 1];
    const bool typing = centralWidget()->isAncestorOf(focusWidget()) && focusWidget() != TabStrip1;
    chosen->setReachable(true);
    chosen->show();
    for (SearchTab* tab : tabs_) {
        if (tab != chosen)
            tab->hide();
    }
    if (typing)
        chosen->firstField().setFocus();
}

int Main::selectedTag() const
{
    return TabStrip1->tabData(TabStrip1->currentIndex()).toString().toInt();
}

void Main::Toolbar1_ButtonClick(int index)
{
    switch (index) {
    case 2:
        proxymnu_Click();
        break;
    case 4:
        stopmnu_Click();
        break;
    case 6:
        helpmnu_Click(); // which does nothing: the manual is reached through Help > Contents alone
        break;
    case 7:
        emailauth_Click();
        break;
    case 8:
        webpage_Click();
        break;
    case 9:
        showAbout(this);
        break;
    default:
        break;
    }
}

void Main::exitmnu_Click()
{
    close();
}

void Main::proxymnu_Click()
{
    const auto setSwitch = [this](const std::string& value) {
        if (ProxySwitch->text() != value)
            ProxySwitch->setText(value);
        else
            ProxySwitch_Change(); // a new host and port take effect though the switch stays where it was
    };
    Proxy dialog(settingsPath(), setSwitch, this);
    dialog.exec();
}

void Main::contentmnu_Click()
{
    shell().open(surroundings_.helpPageUrl);
}

void Main::emailauth_Click()
{
    shell().open(surroundings_.authorMailUrl);
}

void Main::webpage_Click()
{
    shell().open(surroundings_.homePageUrl);
}

void Main::aboutmnu_Click()
{
    showAbout(nullptr);
}

void Main::showAbout(QWidget* owner)
{
    frmAbout dialog(*registry_, startProgram, owner);
    dialog.exec();
}

void Main::keyPressEvent(QKeyEvent* event)
{
    // Fields and lists leave Escape to their window, so wherever it is pressed it arrives here, once.
    if (event->key() == Qt::Key_Escape) {
        stopmnu_Click();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void Main::stopmnu_Click()
{
    const int tag = selectedTag();
    if (tag < 1 || tag > static_cast<int>(stopRows_.size()))
        return;
    const StopRow& row = stopRows_[static_cast<std::size_t>(tag) - 1];
    if (row.tested->State() == SocketState::Closed)
        return;
    row.buffer->setText({});
    showActivity({});
    showConnection(socketStateName(SocketState::Closed));
    row.button->setEnabled(true);
    row.timer->stop();
    row.cleared->clearView();
    row.closed->Close();
    giveMemoryBack();
    showCritical(this, tr("User cancel the operation"));
}

void Main::giveMemoryBack()
{
    // All exchanges share the buffer, and the stopped one need not have been the only one.
    for (const TcpClientSocket* socket : findChildren<TcpClientSocket*>()) {
        if (socket->State() != SocketState::Closed && socket->State() != SocketState::Error)
            return;
    }
    receiveState_.restart();
    releaseFreedMemory();
}

void Main::outOfMemory()
{
    for (SearchTab* tab : tabs_) {
        if (tab->socket().State() != SocketState::Closed) {
            tab->socket().Close();
            tab->startButton().setEnabled(true);
            tab->timer().stop();
        }
    }
    // What is shown is what could not be laid out or painted; it would fail again behind the box.
    const int tag = selectedTag();
    if (tag >= 1 && tag <= static_cast<int>(tabs_.size())) {
        SearchTab* front = tabs_[static_cast<std::size_t>(tag) - 1];
        front->buffer().setText({});
        front->clearView();
        front->startButton().setEnabled(true);
        front->timer().stop(); // a search that has no connection yet, or gets none, runs its timer all the same
    }
    giveMemoryBack();
    showActivity({});
    showConnection(socketStateName(SocketState::Closed));
    showRuntimeError(this, RuntimeError::OutOfMemory);
}

} // namespace quarrynet
