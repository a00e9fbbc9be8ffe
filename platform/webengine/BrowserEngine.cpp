#include "platform/webengine/BrowserEngine.h"

#include <optional>

#include <QFileInfo>
#include <QLibraryInfo>
#include <QOpenGLContext>
#include <QQuickWindow>

#include "platform/webengine/BrowserView.h"
#include "platform/webengine/RequestGuard.h"
#include "platform/webengine/sandbox.h"

// Qt Gui exports these for the engine; no public header declares them.
Q_GUI_EXPORT QOpenGLContext* qt_gl_global_share_context();
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext* context);

namespace quarrynet {

namespace {

constexpr const char* kFlags = "QTWEBENGINE_CHROMIUM_FLAGS";
constexpr const char* kNoSandbox = "QTWEBENGINE_DISABLE_SANDBOX"; // any value disables it, even an empty one
constexpr const char* kDebugging = "QTWEBENGINE_REMOTE_DEBUGGING";
constexpr const char* kProcess = "QTWEBENGINEPROCESS_PATH";

constexpr const char* kOurFlags = "--disable-gpu --no-first-run --disable-background-networking"
                                  " --disable-component-update --disable-sync --disable-breakpad"
                                  // The engine itself never uses the network, so it must resolve no host.
                                  " --host-resolver-rules=\"MAP * ~NOTFOUND\""
                                  " --force-webrtc-ip-handling-policy=disable_non_proxied_udp";

// Changes or removes an environment variable during its lifetime. The engine reads its options from the environment
// when it starts; other child processes must not inherit them.
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

// Returns whether the engine's rendering program exists. Without it, the engine would end this process.
bool processExists()
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    return true; // elsewhere, and always installed with the library
#else
    if (qEnvironmentVariableIsSet(kProcess))
        return QFileInfo(qEnvironmentVariable(kProcess)).isExecutable();
    const QString folder = QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath);
    return QFileInfo(folder + QStringLiteral("/QtWebEngineProcess")).isExecutable();
#endif
}

// Selects software rendering: thumbnails need no graphics card, and a program that started without this engine has no
// OpenGL context to share. The engine still requires one, so it gets a context that was never created.
void prepareDrawing()
{
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    if (qt_gl_global_share_context() == nullptr)
        qt_gl_set_global_share_context(new QOpenGLContext); // the engine needs it until the process ends
}

} // namespace

std::unique_ptr<PageView> BrowserEngine::makeView(const PageViewHost& host, QWidget* parent, QString& reason)
{
    if (!processExists()) {
        reason = tr("its rendering process is not installed.");
        return nullptr;
    }
    switch (sandboxOfThisSystem()) {
    case Sandbox::NotForRoot:
        reason = tr("it cannot use a sandbox when root starts it.");
        return nullptr;
    case Sandbox::Refused:
        reason = tr("this system does not allow it a sandbox.");
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
    // Other values of these variables could disable the sandbox or open a debugging port.
    const ScopedVariable flags(kFlags, kOurFlags);
    const ScopedVariable sandbox(kNoSandbox, std::nullopt);
    const ScopedVariable debugging(kDebugging, std::nullopt);
    return std::make_unique<BrowserView>(host, parent);
}

} // namespace quarrynet
