#pragma once

#include <array>
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

class DownloadSearch;
class FileSearch;
class HiddenText;
class ImageList;
class ImageSearch;
class PageCheck;
class Registry;
class SearchTab;
class StatusBar;
class TabStrip;
class ToolBar;
class WebSearch;

/// What the window needs of the world around it; a test hands in its own.
struct Surroundings
{
    ServiceHosts hosts;
    Shell& shell;
    /// Folder of the settings file and the local pages, as bytes.
    std::string programFolder;
    /// Addresses behind the Help menu, as bytes.
    std::string helpPageUrl;
    std::string homePageUrl;
    std::string authorMailUrl;
};

/// The main window: tab strip, five frames of controls, toolbar, menus and status bar, and all that the tabs share.
///
/// Constructing makes the controls; load() is the start-up and runs once, before the window is shown.
class Main final : public QMainWindow, public SearchWindow
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Main)

public:
    explicit Main(const Surroundings& surroundings);
    ~Main() override;

    /// Reads the settings, records the layout, writes and shows the empty gallery page, sizes the window and its
    /// columns. False when the program cannot go on; the box that says why has been answered then.
    bool load();

    /// Brings all tabs to rest, empties the view of the one in front, and says that memory ran out. For the event that
    /// could not be handled (see Application).
    void outOfMemory();

    // SearchWindow
    ReceiveState& receiveState() override { return receiveState_; }
    const ServiceHosts& serviceHosts() const override { return surroundings_.hosts; }
    bool isDirect() const override;
    Endpoint proxy() const override { return {CurrentProxyHost, CurrentProxyPort}; }
    Shell& shell() override { return surroundings_.shell; }
    const std::string& programFolder() const override { return surroundings_.programFolder; }
    void showConnection(std::string_view caption) override;
    void showActivity(std::string_view text) override;

signals:
    /// A page of the program's own could not be written; the box that says so has been answered.
    void cannotGoOn();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // What Stop acts on while `front` is in front: everything of that tab, but the timer and the socket of these.
    struct StopRow
    {
        SearchTab* front;
        SearchTab* timer;
        SearchTab* socket;
    };

    void makeControls();
    void makeMenus();
    void makeToolbar();
    void joinTabs();

    std::string settingsPath() const;

    /// Takes host and port from the loaded settings. Returns false when the port does not fit, after `owner`'s box that
    /// says so has been answered.
    bool takeProxy(QWidget* owner);

    // Handlers and commands, named control and event.
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

    void showOwnAbout() { showAbout(this); }
    void showAbout(QWidget* owner);

    /// Empties the buffer, the activity panel and the result view, shows "Closed", enables the button, stops the timer
    /// and closes the socket.
    void bringToRest(const StopRow& row);

    /// Frees the response that was received so far, unless another exchange is under way.
    void giveMemoryBack();
    SearchTab* frontTab() const; // null when the selected tab carries no known tag

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
    QLabel* ConnectionPanel = nullptr;
    QLabel* ActivityPanel = nullptr;
    WebSearch* STI = nullptr;
    PageCheck* SPS = nullptr;
    ImageSearch* IMG = nullptr;
    DownloadSearch* SFD = nullptr;
    FileSearch* SFS = nullptr;
    std::array<SearchTab*, 5> tabs_{};
    std::vector<StopRow> stopExceptions_; // the tabs that are not in it are brought to rest whole

    ChangeSize changeSize_;
    std::unique_ptr<FormLayout> layout_;
    bool sized_ = false; // the start-up has come to the window's size
};

} // namespace quarrynet
