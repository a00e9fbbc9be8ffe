#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QMainWindow>

#include "app/ChangeSize.h"
#include "app/FormLayout.h"
#include "common/ProxySettings.h"
#include "common/runtime_error.h"
#include "search/SearchWindow.h"

class QLabel;

namespace quarrynet {

class BusySign;
class DownloadSearch;
class FieldHistory;
class FileSearch;
class HiddenText;
class ImageList;
class ImageSearch;
class PageCheck;
class Registry;
class RememberedPlaces;
class SearchTab;
struct StartRequest;
class StatusBar;
class TabStrip;
class ToolBar;
class WebSearch;

/// The window's dependencies; tests pass their own.
struct Surroundings
{
    ServiceHosts hosts; ///< what the settings file can override
    Shell& shell;
    /// Folder of the settings file and the local pages, as toPathBytes gives it.
    std::string programFolder;
    /// Addresses behind the Help menu, as bytes.
    std::string helpPageUrl;
    std::string homePageUrl;
    std::string authorMailUrl;
    /// Certificates to trust besides the system's when a page is fetched over TLS, in PEM format. Only tests set it.
    std::string trustedCertificates = {};
    /// Whether the window keeps and offers the search history, and keeps and restores its place. A tour does neither:
    /// its searches are not the user's, and its pictures must not show the user's history.
    bool remembers = true;
    /// Asks the desktop to mark the window as one that wants attention; by default as QApplication::alert does.
    std::function<void(QWidget& window)> alert = {};
};

/// The main window: tab strip, five frames of controls, toolbar, menus and status bar, and everything that the tabs
/// share.
///
/// The constructor makes the controls. Call load() once, before the window is shown.
class Main final : public QMainWindow, public SearchWindow
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Main)

public:
    explicit Main(const Surroundings& surroundings);
    ~Main() override;

    /// Reads the settings, records the layout, writes and shows the empty gallery page, sizes the window and its
    /// columns. Returns false, after an error box, when the program cannot continue.
    bool load();

    /// Shows the requested tab and types the requested texts. Presses the start button if all fields of the tab are
    /// filled then; otherwise the first empty one gets the focus.
    void begin(const StartRequest& request);

    /// Stops all searches, empties the front tab's view, and reports that memory ran out. Handles
    /// Application::outOfMemory.
    void outOfMemory();

    // SearchWindow
    ReceiveState& receiveState() override { return receiveState_; }
    const ServiceHosts& serviceHosts() const override { return surroundings_.hosts; }
    bool isDirect() const override;
    Endpoint proxy() const override { return {CurrentProxyHost, CurrentProxyPort}; }
    const std::string& trustedCertificates() const override { return surroundings_.trustedCertificates; }
    Shell& shell() override { return surroundings_.shell; }
    const std::string& programFolder() const override { return surroundings_.programFolder; }
    void showConnection(std::string_view caption) override;
    void showActivity(std::string_view text) override;

signals:
    /// One of the program's own pages could not be written. Emitted after the error box.
    void cannotGoOn();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // What Stop resets while the tab `front` is in front: the timer of the tab `timer`, the socket of the tab `socket`,
    // and the rest of `front`.
    struct StopRow
    {
        SearchTab* front;
        SearchTab* timer;
        SearchTab* socket;
    };

    void makeControls();
    void makeMenus();
    void makeToolbar();
    void makeShortcuts();
    void makeBusySign();
    void makeListCommands();
    void joinTabs();
    void makeMemories();

    std::string settingsPath() const;

    /// Copies host and port from the loaded settings. Returns false when the port does not fit, after an error box of
    /// `owner`.
    bool takeProxy(QWidget* owner);

    // Handlers and commands, named after control and event.
    void Form_Resize();
    void TabStrip1_Click();
    void ProxySwitch_Change();
    void exitmnu_Click();
    void proxymnu_Click();
    void helpmnu_Click() {}
    void contentmnu_Click();
    void emailauth_Click();
    void webpage_Click();
    void aboutmnu_Click();
    void stopmnu_Click();

    /// Gives the focus to the front tab's first field, with its text selected.
    void goToField();

    /// Presses the front tab's start button, if it is enabled.
    void repeatSearch();

    void showOwnAbout() { showAbout(this); }
    void showAbout(QWidget* owner);

    /// Empties the buffer, the activity panel and the result view, shows "Closed", enables the button, stops the timer
    /// and closes the socket.
    void bringToRest(const StopRow& row);

    /// Frees the response received so far, unless another exchange is running.
    void giveMemoryBack();
    SearchTab* frontTab() const; // null when the selected tab has no known tag

    Surroundings surroundings_;
    ReceiveState receiveState_;
    std::unique_ptr<Registry> registry_;
    ProxySettings settings_;
    std::string CurrentProxyHost;
    std::int16_t CurrentProxyPort = 0;

    HiddenText* ProxySwitch = nullptr;
    TabStrip* TabStrip1 = nullptr;
    ToolBar* Toolbar1 = nullptr;
    ImageList* ImageList1 = nullptr;
    StatusBar* StatusBar1 = nullptr;
    FieldHistory* history_ = nullptr;
    RememberedPlaces* places_ = nullptr;
    QLabel* ConnectionPanel = nullptr;
    QLabel* ActivityPanel = nullptr;
    WebSearch* STI = nullptr;
    PageCheck* SPS = nullptr;
    ImageSearch* IMG = nullptr;
    DownloadSearch* SFD = nullptr;
    FileSearch* SFS = nullptr;
    std::array<SearchTab*, 5> tabs_{};
    BusySign* busySign_ = nullptr;
    std::vector<StopRow> stopExceptions_; // with any other tab in front, Stop resets all of that tab

    ChangeSize changeSize_;
    std::unique_ptr<FormLayout> layout_;
    bool sized_ = false; // true once load() has set the window's size
};

} // namespace quarrynet
