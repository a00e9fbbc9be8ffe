#pragma once

#include <memory>

#include <QApplication>
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

/// A Shell that opens nothing and keeps what it was asked for.
class RecordingShell final : public quarrynet::Shell
{
public:
    void open(std::string_view address) override { opened.push_back(std::string(address)); }
    std::vector<std::string> opened;
};

/// The real window over a service of the test's own, with its settings in a temporary folder.
class WindowFixture
{
public:
    /// Makes the window, loads and shows it. Files put into folder() before are found there.
    void start();
    /// The same without showing it; what load() gave.
    bool load();

    quarrynet::Main& main() { return *main_; }
    QString folder() const { return folder_.path(); }
    QString settingsFile() const { return folder_.filePath(QStringLiteral("Quarrynet.ini")); }
    /// Gives the window the keyboard; without a window manager nobody does after a box has closed.
    void activate();
    void writeSettings(const QByteArray& text);
    /// Before start(): the settings switch the proxy on, and the test's service is that proxy. The searches' hosts are
    /// web.example, img.example, down.example and file.example, at port 80.
    void useServiceAsProxy();

    /// A control of the window by its name; fails the test when there is none.
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
    /// The rows of a list view, cells joined with "|".
    QStringList rows(const char* list);

    /// Brings a tab (1 to 5) to the front as a click on it does.
    void chooseTab(int tag);

    /// Types into a field as a person does, replacing what it holds.
    void type(const char* field, const QString& text);

    LoopbackService service;
    RecordingShell shell;
    BoxWatcher boxes;
    quarrynet::ServiceHosts hosts;
    /// What opens addresses: `shell`, unless a test brings its own.
    quarrynet::Shell* opener = &shell;
    /// Where the browser engine's plug-in is looked for; nowhere, so that the plain view shows what the tests look at.
    QStringList engineFolders;

private:
    QTemporaryDir folder_;
    std::unique_ptr<quarrynet::Main> main_;
};
