#include "app/Main.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QResizeEvent>

#include "app/AddressDrop.h"
#include "app/BusySign.h"
#include "app/FieldHistory.h"
#include "app/ListCommands.h"
#include "app/RememberedPlaces.h"
#include "app/SearchReports.h"
#include "common/local_pages.h"
#include "common/request_text.h"
#include "icons/icons.h"
#include "platform/HiddenText.h"
#include "platform/ListView.h"
#include "platform/Registry.h"
#include "platform/local_files.h"
#include "platform/message_boxes.h"
#include "platform/scaling_bars.h"
#include "platform/text_border.h"
#include "search/download/DownloadSearch.h"
#include "search/file/FileSearch.h"
#include "search/image/ImageSearch.h"
#include "search/page/PageCheck.h"
#include "search/web/WebSearch.h"

namespace quarrynet {

namespace {

constexpr int kDesignWidth = 608;
constexpr int kDesignHeight = 434;
constexpr QRect kToolbarPlace = {0, 0, kDesignWidth, 38};
constexpr QRect kTabStripPlace = {4, 40, kDesignWidth - 8, 26};
constexpr QRect kFramePlace = {4, 66, kDesignWidth - 8, 318};
constexpr QRect kStatusBarPlace = {0, 386, kDesignWidth, 22};

// Returns every control with a place of its own: the frames and bars, and the controls in the frames.
std::vector<QWidget*> placedControls(QWidget& centre)
{
    std::vector<QWidget*> controls;
    for (auto* top : centre.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        controls.push_back(top);
        if (qobject_cast<SearchTab*>(top)) {
            for (auto* control : top->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
                controls.push_back(control);
        }
    }
    return controls;
}

} // namespace

Main::Main(const Surroundings& surroundings)
    : surroundings_(surroundings), registry_(systemRegistry()), settings_(settingsPath())
{
    setObjectName(QStringLiteral("Main"));
    setWindowTitle(QStringLiteral("Quarrynet"));
    // Set for the application, so that the dialogs and boxes have it too.
    QApplication::setWindowIcon(icon(QStringLiteral("quarrynet")));
    resize(kDesignWidth, kDesignHeight);
    makeControls();
    makeMemories();
    makeMenus();
    makeToolbar();
    makeShortcuts();
    makeBusySign();
    makeListCommands();
    joinTabs();
}

Main::~Main() = default;

void Main::makeControls()
{
    auto* centre = new QWidget(this);
    setCentralWidget(centre);

    Toolbar1 = new ToolBar(centre);
    Toolbar1->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1->setAccessibleName(tr("Toolbar"));
    Toolbar1->setGeometry(kToolbarPlace);

    TabStrip1 = new TabStrip(centre);
    TabStrip1->setObjectName(QStringLiteral("TabStrip1"));
    TabStrip1->setAccessibleName(tr("Searches"));
    TabStrip1->setGeometry(kTabStripPlace);

    STI = new WebSearch(*this, centre);
    SPS = new PageCheck(*this, centre);
    IMG = new ImageSearch(*this, centre);
    SFD = new DownloadSearch(*this, centre);
    SFS = new FileSearch(*this, centre);
    tabs_ = {STI, SPS, IMG, SFD, SFS};
    for (std::size_t i = 0; i < tabs_.size(); ++i) {
        TabStrip1->addTab(tabs_[i]->accessibleName());
        TabStrip1->setTabData(static_cast<int>(i), QString::number(i + 1));
        tabs_[i]->setGeometry(kFramePlace);
    }
    connect(TabStrip1, &QTabBar::currentChanged, this, &Main::TabStrip1_Click);

    // The page check's frame is visible from the start but covered, so keys must not reach it.
    for (SearchTab* hidden : {static_cast<SearchTab*>(IMG), static_cast<SearchTab*>(SFD), static_cast<SearchTab*>(SFS)})
        hidden->hide();
    SPS->setReachable(false);
    STI->raise();

    StatusBar1 = new StatusBar(centre);
    StatusBar1->setObjectName(QStringLiteral("StatusBar1"));
    StatusBar1->setGeometry(kStatusBarPlace);
    // The words are descriptions because a name would replace the panel's text.
    ConnectionPanel = new QLabel(StatusBar1);
    ConnectionPanel->setObjectName(QStringLiteral("ConnectionPanel"));
    ConnectionPanel->setAccessibleDescription(tr("State of the connection"));
    ActivityPanel = new QLabel(StatusBar1);
    ActivityPanel->setObjectName(QStringLiteral("ActivityPanel"));
    ActivityPanel->setAccessibleDescription(tr("Step of the search"));
    StatusBar1->addPanel(*ConnectionPanel, 2);
    StatusBar1->addPanel(*ActivityPanel, 3);

    ProxySwitch = new HiddenText(QStringLiteral("ProxySwitch"), STI);
    ProxySwitch->setText(ProxySettings::switchText(false));
    connect(ProxySwitch, &HiddenText::changed, this, &Main::ProxySwitch_Change);
}

// Sets up every effect of one tab on another. All are deliberate.
void Main::joinTabs()
{
    // Stop acts on the tab in front, but on the image tab it stops the page check's timer, and on the file tab it
    // closes the download search's socket.
    stopExceptions_ = {{IMG, SPS, IMG}, {SFS, SFS, SFD}};
    // The image search's command empties the page check's list, and through a proxy it requests the page that the web
    // search's slider shows.
    IMG->setNeighbours([this] { SPS->clearView(); }, [this] { return STI->page(); });
    connect(IMG, &ImageSearch::unwritable, this, &Main::cannotGoOn);
}

void Main::makeBusySign()
{
    busySign_ = new BusySign(*this, *TabStrip1, [this]() -> const TcpClientSocket* {
        SearchTab* front = frontTab();
        return front ? &front->socket() : nullptr;
    });
    for (SearchTab* tab : tabs_)
        busySign_->watch(tab->socket());
    auto* reports = new SearchReports(*this, [this] { return frontTab(); });
    for (SearchTab* tab : tabs_)
        reports->watch(*tab);
    connect(busySign_, &BusySign::searchEnded, this, [this] {
        // A dialog of the program that is active is enough: the user is there.
        if (QApplication::activeWindow())
            return;
        if (surroundings_.alert)
            surroundings_.alert(*this);
        else
            QApplication::alert(this);
    });
}

void Main::makeListCommands()
{
    new ListCommands(*this, *findChild<QMenu*>(QStringLiteral("filmnu")),
                     findChild<QAction*>(QStringLiteral("exitmnu")), {tabs_.begin(), tabs_.end()}, *TabStrip1,
                     [this] { return frontTab(); });
    const QList<QLineEdit*> fields = centralWidget()->findChildren<QLineEdit*>();
    new AddressDrop(*this, {fields.begin(), fields.end()}, SPS->addressField(), [this](const std::string& address) {
        TabStrip1->setCurrentIndex(static_cast<int>(std::find(tabs_.begin(), tabs_.end(), SPS) - tabs_.begin()));
        SPS->prepare(address);
        activateWindow();
    });
}

// Makes what the program remembers from one start to the next.
void Main::makeMemories()
{
    history_ = new FieldHistory(settingsPath(), pathInFolder(programFolder(), "Quarrynet.history"), *this);
    if (surroundings_.remembers) {
        history_->watch(*STI, {HistoryKind::Keywords});
        history_->watch(*SPS, {HistoryKind::Addresses, HistoryKind::Keywords});
        history_->watch(*IMG, {HistoryKind::Keywords});
        history_->watch(*SFD, {HistoryKind::Keywords});
        history_->watch(*SFS, {HistoryKind::FileNames});
    }

    const std::map<std::string, ListView*> lists = {
        {"DownloadColumns", SFD->findChild<ListView*>(QStringLiteral("ListView3"))},
        {"FileColumns", SFS->findChild<ListView*>(QStringLiteral("ListView4"))},
    };
    places_ = new RememberedPlaces(pathInFolder(programFolder(), "Quarrynet.state"), *this, lists);
}

bool Main::load()
{
    surroundings_.hosts = readServiceHosts(settingsPath(), surroundings_.hosts);
    settings_.load();
    if (settings_.on) {
        {
            // The change handler would read the same file again, and report an overflow twice.
            const QSignalBlocker once(ProxySwitch);
            ProxySwitch->setText(ProxySettings::switchText(true));
        }
        if (!takeProxy(nullptr))
            return false;
    }

    const std::vector<QWidget*> controls = placedControls(*centralWidget());
    fitFont(*this, controls);
    layout_ = std::make_unique<FormLayout>(*this, controls, [this] { Form_Resize(); });
    changeSize_.Init(*layout_);

    if (!writePages(nullptr, programFolder(), {{kBlankFrameName, blankFramePage()}, {kBlankPageName, blankPage()}}))
        return false;
    IMG->clearView();

    setMinimumSize((kDesignWidth + 1) / 2, (kDesignHeight + 1) / 2);
    layout_->setHeight(kDesignHeight * FormLayout::kTwipsPerPixel);
    layout_->setWidth(kDesignWidth * FormLayout::kTwipsPerPixel);
    sized_ = true;
    layout_->apply();

    STI->halveColumns();
    SPS->halveColumns();
    SPS->fillMatchModes();
    if (surroundings_.remembers)
        places_->apply();
    STI->firstField().setFocus();
    return true;
}

std::string Main::settingsPath() const
{
    return pathInFolder(programFolder(), "Quarrynet.ini");
}

bool Main::isDirect() const
{
    return routeFor(ProxySwitch->text()) == Route::Direct;
}

bool Main::takeProxy(QWidget* owner)
{
    CurrentProxyHost = settings_.host;
    const Result<std::int16_t> number = settings_.portNumber();
    if (!number) {
        const QString reason = tr("Section [%1]: the port must not be greater than %2.")
                                   .arg(toText(ProxySettings::kPortSection))
                                   .arg(ProxySettings::kLargestPort);
        showSettingError(owner, number.error(), toPathText(settingsPath()), reason);
        return false;
    }
    CurrentProxyPort = *number;
    return true;
}

void Main::ProxySwitch_Change()
{
    if (isDirect())
        return;
    settings_.load();
    if (!settings_.on)
        return;
    ProxySwitch->setText(ProxySettings::switchText(true));
    // The options dialog is still open while its OK button runs this handler.
    QWidget* dialog = QApplication::activeModalWidget();
    takeProxy(dialog ? dialog : this);
}

void Main::showConnection(std::string_view caption)
{
    ConnectionPanel->setText(toText(caption));
}

void Main::showActivity(std::string_view text)
{
    ActivityPanel->setText(toText(text));
}

void Main::closeEvent(QCloseEvent* event)
{
    if (surroundings_.remembers)
        places_->remember();
    QMainWindow::closeEvent(event);
}

void Main::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void Main::Form_Resize()
{
    if (!layout_)
        return;
    // A size without a ratio leaves the controls where they are; users cannot go below the minimum size to reach one.
    const bool placed = !changeSize_.FormResize(*layout_);
    // load() sizes the window several times. Loading fonts takes time, so only the last size is applied.
    if (placed && sized_)
        layout_->apply();
}

} // namespace quarrynet
