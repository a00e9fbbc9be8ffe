#include "platform/webengine/BrowserEngine.h"

#include <optional>

#include <QFileInfo>
#include <QLibraryInfo>
#include <QOpenGLContext>
#include <QQuickWindow>

#include "platform/webengine/BrowserView.h"
#include "platform/webengine/RequestGuard.h"
#include "platform/webengine/sandbox.h"

// Exported by Qt Gui for the engine; no header of the library's users declares them.
Q_GUI_EXPORT QOpenGLContext* qt_gl_global_share_context();
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext* context);

namespace quarrynet {

namespace {

constexpr const char* kFlags = "QTWEBENGINE_CHROMIUM_FLAGS";
constexpr const char* kNoSandbox = "QTWEBENGINE_DISABLE_SANDBOX"; // any value disables it, the empty one too
constexpr const char* kDebugging = "QTWEBENGINE_REMOTE_DEBUGGING";
constexpr const char* kProcess = "QTWEBENGINEPROCESS_PATH";

constexpr const char* kOurFlags = "--disable-gpu --no-first-run --disable-background-networking"
                                  " --disable-component-update --disable-sync --disable-breakpad"
                                  // The engine itself never uses the net, so it finds no host in it.
                                  " --host-resolver-rules=\"MAP * ~NOTFOUND\""
                                  " --force-webrtc-ip-handling-policy=disable_non_proxied_udp";

// Gives an environment variable another value, or none, while it lives. The engine reads its options from the
// environment when it starts; the programs that this one starts must not find them there.
class ScopedVariable
{
    Q_DISABLE_COPY_MOVE(ScopedVariable)

public:
    ScopedVariable(const char* name, const std::optional<QByteArray>& value) : name_(name)
    {
        if (qEnvironmentVariableIsSet(name))
            before_ = qgetenv(name);
        set(value);
    }

    ~ScopedVariable() { set(before_); }

private:
    void set(const std::optional<QByteArray>& value) const
    {
        if (value)
            qputenv(name_, *value);
        else
            qunsetenv(name_);
    }

    const char* name_;
    std::optional<QByteArray> before_;
};

// The program that draws the pages. The engine ends this one when it does not find it.
bool processExists()
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    return true; // it lies elsewhere there, and always beside the library
#else
    if (qEnvironmentVariableIsSet(kProcess))
        return QFileInfo(qEnvironmentVariable(kProcess)).isExecutable();
    const QString folder = QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath);
    return QFileInfo(folder + QStringLiteral("/QtWebEngineProcess")).isExecutable();
#endif
}

// Draws by the processor alone: thumbnails need no graphics card, and a program that was started without this engine
// has no context to share with it. The engine wants to look at one all the same, so it gets one that was never made.
void prepareDrawing()
{
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    if (qt_gl_global_share_context() == nullptr)
        qt_gl_set_global_share_context(new QOpenGLContext); // kept for the engine's life, which is the program's
}

} // namespace

std::unique_ptr<PageView> BrowserEngine::makeView(const PageViewHost& host, QWidget* parent, QString& reason)
{
    if (!processExists()) {
        reason = tr("its drawing process is not installed.");
        return nullptr;
    }
    switch (sandboxOfThisSystem()) {
    case Sandbox::NotForRoot:
        reason = tr("it has no sandbox when root starts it.");
        return nullptr;
    case Sandbox::Refused:
        reason = tr("this system refuses it a sandbox.");
        return nullptr;
    case Sandbox::Usable:
        break;
    }

    static bool prepared = false;
    if (!prepared) {
        prepared = true;
        prepareDrawing();
        PictureHandler::registerScheme();
    }
    // Whatever else these variables hold could take the sandbox away or open a port to the page.
    const ScopedVariable flags(kFlags, kOurFlags);
    const ScopedVariable sandbox(kNoSandbox, std::nullopt);
    const ScopedVariable debugging(kDebugging, std::nullopt);
    return std::make_unique<BrowserView>(host, parent);
}

} // namespace quarrynet
