#pragma once

#include <QSet>
#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineUrlSchemeHandler>

#include "platform/PageView.h"

namespace quarrynet {

/// Allows requests for the program's own pages and for pictures, and blocks all others, such as local files, scripts
/// and sockets. Redirects pictures to PictureHandler, so the engine itself never uses the network.
class RequestGuard final : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RequestGuard)

public:
    /// Maximum number of retries for a page whose loading was aborted.
    static constexpr int kMaxRetries = 3;
    /// Maximum number of page loads for one shown page: the page and its frame, and both again per retry. Limited
    /// because a page may reload itself.
    static constexpr int kMaxLoads = 2 * (1 + kMaxRetries);
    /// Maximum number of requests of any kind, including blocked ones. More count as a flood.
    static constexpr int kMaxRequests = 1000;

    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    /// Replaces the shown page: the page at `path` and the program's own pages beside it may be loaded from now on.
    void allowPage(const QString& path);
    bool allows(const QUrl& page) const;

    void interceptRequest(QWebEngineUrlRequestInfo& request) override;

signals:
    /// The page sent more than `kMaxRequests` requests.
    void flooded();

private:
    QSet<QUrl> pages_;
    int loads_ = 0;    // of the page that is shown
    int requests_ = 0; // likewise
};

/// Serves the addresses to which RequestGuard redirects pictures, from the program's own picture source.
class PictureHandler final : public QWebEngineUrlSchemeHandler
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PictureHandler)

public:
    PictureHandler(PictureSource& pictures, QObject* parent) : QWebEngineUrlSchemeHandler(parent), pictures_(pictures)
    {}

    /// Returns the scheme of those addresses. Call registerScheme() before the engine starts.
    static QByteArray scheme() { return QByteArrayLiteral("quarrynet-picture"); }
    static void registerScheme();

    /// Converts `picture`, an http or https address, to an address of the scheme, and back (empty for any other
    /// address).
    static QUrl addressFor(const QUrl& picture);
    static QUrl pictureAt(const QUrl& address);

    /// Maximum number of pixels of all pictures of one page together.
    static constexpr qint64 kMaxPixels = 32 << 20;

    /// Resets the limits, for a new page.
    void beginPage();

    void requestStarted(QWebEngineUrlRequestJob* job) override;

private:
    PictureSource& pictures_;
    int fetches_ = 0;   // for the page that is shown
    qint64 pixels_ = 0; // likewise
};

} // namespace quarrynet
