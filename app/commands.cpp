// The command layer of the main window: tabs, menus, toolbar, keys and Stop.

#include <algorithm>
#include <array>

#include <QAction>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>

#include "app/BusySign.h"
#include "app/CommandLine.h"
#include "app/FieldHistory.h"
#include "app/Main.h"
#include "app/RememberedPlaces.h"
#include "app/Shortcuts.h"
#include "dialogs/Proxy.h"
#include "dialogs/frmAbout.h"
#include "icons/icons.h"
#include "platform/HiddenText.h"
#include "platform/ImageList.h"
#include "platform/ListView.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/message_boxes.h"
#include "platform/scaling_bars.h"
#include "platform/text_border.h"
#include "search/SearchTab.h"

namespace quarrynet {

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
    QMenu* file = addMenu("filmnu", QStringLiteral("&File"));
    add(file, "exitmnu", QStringLiteral("E&xit"), &Main::exitmnu_Click);
    QMenu* view = addMenu("viewmnu", QStringLiteral("&View"));
    add(view, "proxymnu", QStringLiteral("&Proxy"), &Main::proxymnu_Click);
    view->addSeparator();
    history_->addTo(*view);
    places_->addTo(*view);
    QMenu* help = addMenu("helpmnu", QStringLiteral("&Help"));
    add(help, "contentmnu", QStringLiteral("&Contents"), &Main::contentmnu_Click);
    add(help, "emailauth", QStringLiteral("&Email Author"), &Main::emailauth_Click);
    add(help, "webpage", QStringLiteral("&Webpage"), &Main::webpage_Click);
    help->addSeparator();
    add(help, "aboutmnu", QStringLiteral("&About"), &Main::aboutmnu_Click);
    add(menuBar(), "stopmnu", QStringLiteral("Stop"), &Main::stopmnu_Click);
}

void Main::makeToolbar()
{
    // A button's tool tip (also its name), picture and command. An empty row is a separator.
    struct Button
    {
        const char* toolTip = nullptr;
        const char* picture = nullptr;
        void (Main::*command)() = nullptr;
    };
    static constexpr std::array<Button, 9> kButtons = {{
        {},
        {"Configure Proxy", "proxy", &Main::proxymnu_Click},
        {},
        {"Stop Current Search", "stop", &Main::stopmnu_Click},
        {},
        {"Help", "help", &Main::helpmnu_Click}, // does nothing; only Help > Contents opens the manual
        {"E-mail Author", "mail", &Main::emailauth_Click},
        {"Webpage", "webpage", &Main::webpage_Click},
        {"About Quarrynet", "about", &Main::showOwnAbout},
    }};
    ImageList1 = new ImageList(this);
    ImageList1->setObjectName(QStringLiteral("ImageList1"));
    for (const Button& button : kButtons) {
        if (!button.command) {
            Toolbar1->addSeparator();
            continue;
        }
        ImageList1->add(icon(QLatin1String(button.picture)));
        QAction* action = Toolbar1->addAction(ImageList1->image(ImageList1->count()), QLatin1String(button.toolTip));
        action->setToolTip(QLatin1String(button.toolTip));
        connect(action, &QAction::triggered, this, button.command);
    }
}

void Main::makeShortcuts()
{
    const auto step = [this](int by) {
        const int count = TabStrip1->count();
        TabStrip1->setCurrentIndex((TabStrip1->currentIndex() + by + count) % count);
    };
    new Shortcuts(*this, {[this](int tab) { TabStrip1->setCurrentIndex(tab); }, step, [this] { goToField(); },
                          [this] { repeatSearch(); }, [this] { contentmnu_Click(); }, [this] { exitmnu_Click(); }});
}

void Main::begin(const StartRequest& request)
{
    if (request.tab >= 1 && request.tab <= TabStrip1->count())
        TabStrip1->setCurrentIndex(request.tab - 1);
    SearchTab* front = frontTab();
    if (!front || request.fields.isEmpty())
        return;
    const std::vector<QLineEdit*>& inputs = front->inputs();
    for (std::size_t i = 0; i < inputs.size() && i < static_cast<std::size_t>(request.fields.size()); ++i)
        inputs[i]->setText(request.fields[static_cast<qsizetype>(i)]);
    const auto empty =
        std::find_if(inputs.begin(), inputs.end(), [](const QLineEdit* input) { return input->text().isEmpty(); });
    if (empty != inputs.end())
        (*empty)->setFocus();
    else
        front->startButton().click();
}

void Main::goToField()
{
    SearchTab* front = frontTab();
    if (!front)
        return;
    QWidget& field = front->firstField();
    field.setFocus(Qt::ShortcutFocusReason);
    if (auto* text = qobject_cast<QLineEdit*>(&field))
        text->selectAll();
}

void Main::repeatSearch()
{
    if (SearchTab* front = frontTab())
        front->startButton().click(); // does nothing while the button is disabled
}

void Main::TabStrip1_Click()
{
    SearchTab* chosen = frontTab();
    if (!chosen)
        return;
    const bool typing = centralWidget()->isAncestorOf(focusWidget()) && focusWidget() != TabStrip1;
    chosen->setReachable(true);
    chosen->show();
    for (SearchTab* tab : tabs_) {
        if (tab != chosen)
            tab->hide();
    }
    if (typing)
        chosen->firstField().setFocus();
    busySign_->refresh();
}

SearchTab* Main::frontTab() const
{
    const int tag = TabStrip1->tabData(TabStrip1->currentIndex()).toString().toInt();
    return tag >= 1 && tag <= static_cast<int>(tabs_.size()) ? tabs_[static_cast<std::size_t>(tag) - 1] : nullptr;
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
            ProxySwitch_Change(); // a new host and port take effect even if the switch does not change
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
    // Fields and lists pass Escape on to their window, so it arrives here once wherever it is pressed.
    if (event->key() == Qt::Key_Escape) {
        stopmnu_Click();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void Main::stopmnu_Click()
{
    SearchTab* front = frontTab();
    if (!front || front->socket().State() == SocketState::Closed)
        return;
    const auto exception = std::find_if(stopExceptions_.begin(), stopExceptions_.end(),
                                        [front](const StopRow& row) { return row.front == front; });
    bringToRest(exception != stopExceptions_.end() ? *exception : StopRow{front, front, front});
    giveMemoryBack();
    showCritical(this, QStringLiteral("User cancel the operation"));
}

void Main::bringToRest(const StopRow& row)
{
    row.front->buffer().setText({});
    showActivity({});
    showConnection(socketStateName(SocketState::Closed));
    row.front->enableStartButton();
    row.timer->timer().stop();
    row.front->clearView();
    row.socket->socket().Close();
}

void Main::giveMemoryBack()
{
    // All exchanges share the buffer, and another one may still be running.
    for (const TcpClientSocket* socket : findChildren<TcpClientSocket*>()) {
        if (socket->State() != SocketState::Closed && socket->State() != SocketState::Error)
            return;
    }
    receiveState_.restart();
    releaseFreedMemory();
}

void Main::outOfMemory()
{
    SearchTab* front = frontTab();
    for (SearchTab* tab : tabs_) {
        // The front tab is always reset: its view could not be laid out or painted, and would fail again behind the
        // box. Its search may have no connection yet.
        const bool searching = tab->socket().State() != SocketState::Closed;
        if (searching || tab == front)
            bringToRest({tab, tab, tab});
        if (ListView* list = tab->list())
            list->forgetRows();
    }
    giveMemoryBack();
    showRuntimeError(this, RuntimeError::OutOfMemory);
}

} // namespace quarrynet
