#include "platform/webengine/BrowserView.h"

#include <QChildEvent>
#include <QMouseEvent>
#include <QWebEngineCookieStore>
#include <QWebEngineDownloadRequest>
#include <QWebEngineHistory>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

#include "platform/view_keys.h"
#include "platform/webengine/BrowserPage.h"
#include "platform/webengine/RequestGuard.h"

namespace quarrynet {

namespace {

// The pages' script was written for an older browser. It asks for all mouse events by a function and a number that
// browsers have dropped or may drop; the events come to it all the same.
constexpr const char* kOldBrowser = "if (!document.captureEvents) document.captureEvents = function() {};\n"
                                    "if (window.Event && Event.MOUSEUP === undefined) Event.MOUSEUP = 2;\n";

QWebEngineScript oldBrowser()
{
    QWebEngineScript script;
    script.setName(QStringLiteral("older browser"));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(true);
    script.setSourceCode(QString::fromLatin1(kOldBrowser));
    return script;
}

bool choosesLink(const QEvent& event)
{
    if (event.type() == QEvent::MouseButtonRelease)
        return true;
    if (event.type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<const QKeyEvent&>(event).key();
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

bool isHistoryButton(const QEvent& event)
{
    if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonRelease)
        return false;
    const Qt::MouseButton button = static_cast<const QMouseEvent&>(event).button();
    return button == Qt::BackButton || button == Qt::ForwardButton;
}

} // namespace

// A profile without a name keeps everything in memory.
BrowserView::BrowserView(const PageViewHost& host, QWidget* parent)
    : QWebEngineView(parent)
    , host_(host)
    , profile_(std::make_unique<QWebEngineProfile>())
    , guard_(new RequestGuard(this))
    , page_(new BrowserPage(*guard_, profile_.get(), this))
{
    restrict();
    profile_->scripts()->insert(oldBrowser());
    profile_->setUrlRequestInterceptor(guard_);
    profile_->installUrlSchemeHandler(PictureHandler::scheme(), new PictureHandler(host_.pictures, this));
    setPage(page_);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);

    connect(page_, &BrowserPage::linkActivated, this,
            [this](const QByteArray& address) { host_.linkActivated(address); });
    connect(page_, &QWebEnginePage::loadFinished, this, [this] { page_->history()->clear(); });
    connect(page_, &QWebEnginePage::renderProcessTerminated, this,
            [this](QWebEnginePage::RenderProcessTerminationStatus status) {
                if (status != QWebEnginePage::NormalTerminationStatus)
                    host_.failed(tr("The browser view has ended unexpectedly."));
            });
}

BrowserView::~BrowserView()
{
    delete page_; // before its profile
}

void BrowserView::restrict()
{
    profile_->setHttpCacheType(QWebEngineProfile::MemoryHttpCache);
    profile_->setPersistentCookiesPolicy(QWebEngineProfile::NoPersistentCookies);
    profile_->cookieStore()->setCookieFilter([](const QWebEngineCookieStore::FilterRequest&) { return false; });
    profile_->setSpellCheckEnabled(false);
    connect(profile_.get(), &QWebEngineProfile::downloadRequested, this,
            [](QWebEngineDownloadRequest* download) { download->cancel(); });

    QWebEngineSettings* settings = profile_->settings();
    for (const auto attribute :
         {QWebEngineSettings::JavascriptCanOpenWindows, QWebEngineSettings::JavascriptCanAccessClipboard,
          QWebEngineSettings::LocalStorageEnabled, QWebEngineSettings::PluginsEnabled,
          QWebEngineSettings::PdfViewerEnabled, QWebEngineSettings::FullScreenSupportEnabled,
          QWebEngineSettings::ScreenCaptureEnabled, QWebEngineSettings::WebGLEnabled,
          QWebEngineSettings::HyperlinkAuditingEnabled, QWebEngineSettings::AutoLoadIconsForPage,
          QWebEngineSettings::DnsPrefetchEnabled, QWebEngineSettings::AllowRunningInsecureContent,
          QWebEngineSettings::AllowGeolocationOnInsecureOrigins, QWebEngineSettings::NavigateOnDropEnabled,
          QWebEngineSettings::ErrorPageEnabled})
        settings->setAttribute(attribute, false);
    // The pages are local, show each other in frames and show pictures of the net. What they may load of either, the
    // guard decides.
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
    settings->setUnknownUrlSchemePolicy(QWebEngineSettings::DisallowUnknownUrlSchemes);
}

void BrowserView::showPage(const QString& path, const std::vector<GalleryPicture>& /*pictures*/)
{
    guard_->allowPage(path);
    setUrl(QUrl::fromLocalFile(path));
}

void BrowserView::childEvent(QChildEvent* event)
{
    // The widget that draws the page is made, and made anew, behind this one. It gets the events.
    if (event->added() && event->child()->isWidgetType())
        event->child()->installEventFilter(this);
    QWebEngineView::childEvent(event);
}

bool BrowserView::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool key = type == QEvent::ShortcutOverride || type == QEvent::KeyPress || type == QEvent::KeyRelease;
    if (key && leadsAway(*static_cast<QKeyEvent*>(event))) {
        event->accept(); // no menu shortcut either
        return true;
    }
    if (isHistoryButton(*event))
        return true;
    if (choosesLink(*event))
        page_->personActed();
    return QWebEngineView::eventFilter(watched, event);
}

} // namespace quarrynet
