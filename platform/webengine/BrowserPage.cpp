#include "platform/webengine/BrowserPage.h"

#include <chrono>

#include <QWebEngineNewWindowRequest>

#include "platform/webengine/RequestGuard.h"

namespace quarrynet {

namespace {

// A busy page may take a while to find the link under the pointer.
constexpr qint64 kMomentMs = 5000;

qint64 monotonicMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

BrowserPage::BrowserPage(const RequestGuard& guard, QWebEngineProfile* profile, QObject* parent)
    : QWebEnginePage(profile, parent), guard_(guard)
{
    connect(this, &QWebEnginePage::newWindowRequested, this,
            [this](QWebEngineNewWindowRequest& request) { offerLink(request.requestedUrl()); });
    connect(this, &QWebEnginePage::featurePermissionRequested, this, [this](const QUrl& origin, Feature feature) {
        setFeaturePermission(origin, feature, PermissionDeniedByUser);
    });
}

void BrowserPage::personActed()
{
    linkAllowedUntil_ = monotonicMs() + kMomentMs;
}

void BrowserPage::offerLink(const QUrl& address)
{
    // Scripts can click links too, so one press allows one link.
    if (monotonicMs() > linkAllowedUntil_)
        return;
    linkAllowedUntil_ = 0;
    emit linkActivated(address.toEncoded());
}

bool BrowserPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool /*isMainFrame*/)
{
    if (type == NavigationTypeLinkClicked) {
        offerLink(url);
        return false;
    }
    return guard_.allows(url);
}

QWebEnginePage* BrowserPage::createWindow(WebWindowType /*type*/)
{
    return nullptr;
}

QStringList BrowserPage::chooseFiles(FileSelectionMode /*mode*/, const QStringList& /*oldFiles*/,
                                     const QStringList& /*acceptedMimeTypes*/)
{
    return {};
}

void BrowserPage::javaScriptAlert(const QUrl& /*origin*/, const QString& /*text*/) {}

bool BrowserPage::javaScriptConfirm(const QUrl& /*origin*/, const QString& /*text*/)
{
    return false;
}

bool BrowserPage::javaScriptPrompt(const QUrl& /*origin*/, const QString& /*text*/, const QString& /*preset*/,
                                   QString* /*result*/)
{
    return false;
}

void BrowserPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel /*level*/, const QString& /*message*/,
                                           int /*line*/, const QString& /*source*/)
{
    // A page's messages do not belong in this program's output.
}

} // namespace quarrynet
