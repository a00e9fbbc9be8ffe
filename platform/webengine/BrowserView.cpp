#include "platform/webengine/BrowserView.h"

#include <QChildEvent>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QWebEngineCookieStore>
#include <QWebEngineDownloadRequest>
#include <QWebEngineHistory>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

#include "ground/utf8.h"
#include "platform/webengine/BrowserPage.h"
#include "platform/webengine/PageWatch.h"
#include "platform/webengine/RequestGuard.h"
#include "platform/webengine/gallery_script.h"
#include "platform/webengine/page_process.h"

namespace quarrynet {

namespace {

// Characters that change the text direction become U+FFFD, as everywhere in the program, so that no address is
// displayed backwards.
constexpr const char* kMarks = R"js(
(function () {
    const kShown = ['title', 'alt', 'placeholder', 'value', 'label']; // attributes that views display
    const cleaned = text => text.replace(/[MARKS]/g, '\ufffd');
    const nodes = document.createTreeWalker(document, NodeFilter.SHOW_TEXT | NodeFilter.SHOW_ELEMENT);
    while (nodes.nextNode()) {
        const node = nodes.currentNode;
        if (node.nodeType == Node.TEXT_NODE) {
            const text = cleaned(node.data);
            if (text != node.data)
                node.data = text;
            continue;
        }
        for (const name of kShown) {
            const text = node.getAttribute(name);
            if (text && text != cleaned(text))
                node.setAttribute(name, cleaned(text));
        }
    }
})()
)js";

QString marksScript()
{
    QString marks;
    for (char16_t unit = 0; unit < 0xFFFF; ++unit) {
        if (turnsDirection(unit))
            marks += QChar(unit);
    }
    return QString::fromLatin1(kMarks).replace(QLatin1String("MARKS"), marks);
}

constexpr auto kOwnWorld = QWebEngineScript::ApplicationWorld;

// Returns a script of the program's own that the page cannot access. It runs although the page's scripts do not.
QWebEngineScript ownScript(const QString& name, QWebEngineScript::InjectionPoint point, const QString& source)
{
    QWebEngineScript script;
    script.setName(name);
    script.setInjectionPoint(point);
    script.setWorldId(kOwnWorld);
    script.setRunsOnSubFrames(true);
    script.setSourceCode(source);
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

// Returns whether to block a button: all but the left and middle ones, which choose links. The others would open a menu
// or navigate the history.
bool isForbiddenButton(const QEvent& event)
{
    if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonRelease &&
        event.type() != QEvent::MouseButtonDblClick)
        return false;
    const Qt::MouseButton button = static_cast<const QMouseEvent&>(event).button();
    return button != Qt::LeftButton && button != Qt::MiddleButton;
}

// Returns whether to block a key. Backspace is allowed only in a field.
bool isForbiddenKey(const QKeyEvent& key, const QObject& place)
{
    if (leadsAway(key))
        return true;
    const auto* widget = qobject_cast<const QWidget*>(&place);
    return key.key() == Qt::Key_Backspace && !(widget && widget->inputMethodQuery(Qt::ImEnabled).toBool());
}

} // namespace

// A profile without a name keeps everything in memory.
BrowserView::BrowserView(const PageViewHost& host, QWidget* parent)
    : QWebEngineView(parent)
    , host_(host)
    , profile_(std::make_unique<QWebEngineProfile>())
    , guard_(new RequestGuard(this))
    , pictures_(new PictureHandler(host.pictures, this))
    , page_(new BrowserPage(*guard_, profile_.get(), this))
{
    restrict();
    profile_->scripts()->insert(ownScript(QStringLiteral("marks"), QWebEngineScript::DocumentReady, marksScript()));
    profile_->setUrlRequestInterceptor(guard_);
    profile_->installUrlSchemeHandler(PictureHandler::scheme(), pictures_);
    setPage(page_);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);

    connect(page_, &BrowserPage::linkActivated, this,
            [this](const QByteArray& address) { host_.linkActivated(address); });
    connect(page_, &QWebEnginePage::loadFinished, this, [this](bool loaded) {
        page_->history()->clear();
        setZoomFactor(zoom_);
        // Each link that was pressed in the previous page may have aborted the loading of this one.
        if (!loaded && retries_ > 0) {
            --retries_;
            setUrl(shown_);
        }
    });
    connect(page_, &QWebEnginePage::renderProcessTerminated, this,
            [this](QWebEnginePage::RenderProcessTerminationStatus status) {
                if (status != QWebEnginePage::NormalTerminationStatus)
                    host_.failed(tr("The browser view has ended unexpectedly."));
            });

    const auto* watch = new PageWatch(*page_, this);
    connect(watch, &PageWatch::hangs, this, [this] { giveUp(tr("The browser view stopped responding.")); });
    connect(watch, &PageWatch::grows, this, [this] { giveUp(tr("The browser view used too much memory.")); });
    connect(guard_, &RequestGuard::flooded, this, [this] { giveUp(tr("The page sent too many requests.")); });
}

BrowserView::~BrowserView()
{
    delete page_; // must be deleted before its profile
}

void BrowserView::restrict()
{
    profile_->setHttpCacheType(QWebEngineProfile::MemoryHttpCache);
    profile_->setPersistentCookiesPolicy(QWebEngineProfile::NoPersistentCookies);
    profile_->cookieStore()->setCookieFilter([](const QWebEngineCookieStore::FilterRequest&) { return false; });
    profile_->setSpellCheckEnabled(false);
    // The user agent of the searches, which reveals nothing about this system.
    profile_->setHttpUserAgent(QStringLiteral("Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)"));
    profile_->setHttpAcceptLanguage(QStringLiteral("*"));
    connect(profile_.get(), &QWebEngineProfile::downloadRequested, this,
            [](QWebEngineDownloadRequest* download) { download->cancel(); });

    QWebEngineSettings* settings = profile_->settings();
    for (const auto attribute :
         {QWebEngineSettings::JavascriptEnabled, QWebEngineSettings::JavascriptCanOpenWindows,
          QWebEngineSettings::JavascriptCanAccessClipboard, QWebEngineSettings::LocalStorageEnabled,
          QWebEngineSettings::PluginsEnabled, QWebEngineSettings::PdfViewerEnabled,
          QWebEngineSettings::FullScreenSupportEnabled, QWebEngineSettings::ScreenCaptureEnabled,
          QWebEngineSettings::WebGLEnabled, QWebEngineSettings::HyperlinkAuditingEnabled,
          QWebEngineSettings::AutoLoadIconsForPage, QWebEngineSettings::DnsPrefetchEnabled,
          QWebEngineSettings::AllowRunningInsecureContent, QWebEngineSettings::AllowGeolocationOnInsecureOrigins,
          QWebEngineSettings::NavigateOnDropEnabled, QWebEngineSettings::ErrorPageEnabled})
        settings->setAttribute(attribute, false);
    // The pages are local, show each other in frames, and show pictures from the network. The guard decides what they
    // may load.
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
    settings->setAttribute(QWebEngineSettings::WebRTCPublicInterfacesOnly, true);
    settings->setUnknownUrlSchemePolicy(QWebEngineSettings::DisallowUnknownUrlSchemes);
}

void BrowserView::giveUp(const QString& reason)
{
    host_.failed(reason);
    if (const qint64 process = page_->renderProcessPid(); process > 0)
        endProcess(process);
}

void BrowserView::showPage(const QString& path, const std::vector<GalleryPicture>& pictures)
{
    notes_.clear();
    for (const GalleryPicture& picture : pictures)
        notes_.append(picture.note);
    insertGalleryScript();
    guard_->allowPage(path);
    pictures_->beginPage();
    shown_ = QUrl::fromLocalFile(path);
    retries_ = RequestGuard::kMaxRetries;
    setUrl(shown_);
}

void BrowserView::insertGalleryScript()
{
    const QString name = QStringLiteral("gallery");
    QWebEngineScriptCollection* scripts = profile_->scripts();
    for (const QWebEngineScript& script : scripts->find(name))
        scripts->remove(script);
    scripts->insert(ownScript(name, QWebEngineScript::DocumentCreation, galleryScript(look_, notes_)));
}

void BrowserView::setLook(const PageLook& look)
{
    look_ = look;
    insertGalleryScript();
    page_->setBackgroundColor(look.background);
    page_->runJavaScript(restylingScript(look), kOwnWorld);
    zoom_ = look.zoom;
    setZoomFactor(zoom_);
}

void BrowserView::childEvent(QChildEvent* event)
{
    // The engine creates, and sometimes replaces, the child widget that draws the page and gets the events.
    if (event->added() && event->child()->isWidgetType())
        event->child()->installEventFilter(this);
    QWebEngineView::childEvent(event);
}

bool BrowserView::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::ShortcutOverride || type == QEvent::KeyPress || type == QEvent::KeyRelease) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (isForbiddenKey(key, *watched)) {
            event->accept(); // also no menu shortcut
            return true;
        }
        if (const std::optional<Zoom> zoom = zoomOf(key)) {
            if (type == QEvent::KeyPress)
                host_.zoomed(*zoom);
            event->accept();
            return true;
        }
        if (key.key() == Qt::Key_Escape) {
            // The engine would keep Escape, which belongs to the window. Posted, because the window's reaction may
            // destroy this view.
            if (type == QEvent::KeyPress)
                QCoreApplication::postEvent(parentWidget(), key.clone());
            event->ignore();
            return true;
        }
    }
    if (type == QEvent::Wheel &&
        wheel_.take(*static_cast<QWheelEvent*>(event), [this](Zoom zoom) { host_.zoomed(zoom); }))
        return true;
    if (isForbiddenButton(*event))
        return true;
    if (choosesLink(*event))
        page_->personActed();
    return QWebEngineView::eventFilter(watched, event);
}

} // namespace quarrynet
