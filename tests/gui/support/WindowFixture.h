#pragma once

#include <memory>

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "BoxWatcher.h"
#include "LoopbackService.h"
#include "app/Main.h"
#include "platform/HiddenListBox.h"
#include "platform/HiddenText.h"
#include "platform/HtmlView.h"
#include "platform/Shell.h"
#include "platform/TcpClientSocket.h"

/// A Shell that opens nothing and records the addresses.
class RecordingShell final : public quarrynet::Shell
{
public:
    void open(std::string_view address) override { opened.push_back(std::string(address)); }
    std::vector<std::string> opened;
};

/// The real window, with a service of the test and with its settings in a temporary folder.
class WindowFixture
{
public:
    /// Makes the window, loads and shows it. The window finds files that the test has put into folder().
    void start();
    /// Makes and loads the window without showing it. Returns the result of Main::load().
    bool load();

    quarrynet::Main& main() { return *main_; }
    /// As the program has its folder: with the system's separators.
    QString folder() const { return QDir::toNativeSeparators(folder_.path()); }
    QString settingsFile() const { return folder() + QDir::separator() + QLatin1String("Quarrynet.ini"); }
    /// Activates the window; without a window manager nothing else does after a box has closed.
    void activate();
    void writeSettings(const QByteArray& text);
    /// Call before start(): switches the proxy on in the settings, with the test's service as the proxy. The hosts of
    /// the searches are web.example, img.example, down.example and file.example, at port 80.
    void useServiceAsProxy();

    /// Returns a control of the window by its name. Aborts the test if there is none.
    template <class Control>
    Control* control(const char* name)
    {
        auto* found = main_->findChild<Control*>(QLatin1String(name));
        if (!found)
            qFatal("no control %s", name);
        return found;
    }

    QString text(const char* label) { return control<QLabel>(label)->text(); }
    std::string hidden(const char* name) { return control<quarrynet::HiddenText>(name)->text(); }
    int socketState(const char* name) { return control<QObject>(name)->property("state").toInt(); }
    /// Returns the rows of a list view, with cells joined by "|".
    QStringList rows(const char* list);

    /// Brings a tab (1 to 5) to the front as a click on it does.
    void chooseTab(int tag);

    /// Types into a field as a user does, replacing its text.
    void type(const char* field, const QString& text);

    LoopbackService service;
    RecordingShell shell;
    BoxWatcher boxes;
    quarrynet::ServiceHosts hosts;
    /// Trusted besides the system's certificates, in PEM format.
    std::string trustedCertificates;
    bool remembers = true; ///< as in Surroundings
    int alerts = 0;        ///< how often the window asked for attention
    /// Opens addresses: `shell`, unless a test sets another.
    quarrynet::Shell* opener = &shell;
    /// Folders to search for the browser engine's plug-in; empty by default, so that tests see the plain view.
    QStringList engineFolders;

private:
    QTemporaryDir folder_;
    std::unique_ptr<quarrynet::Main> main_;
};
