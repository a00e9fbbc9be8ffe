#pragma once

#include <QSet>
#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineUrlSchemeHandler>

#include "platform/PageView.h"

namespace quarrynet {

/// Lets through what the program's pages consist of, the pages themselves and pictures, and blocks everything else,
/// local files, scripts and sockets among them. Pictures are sent on to PictureHandler, so the engine itself never
/// uses the net.
class RequestGuard final : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RequestGuard)

public:
    /// How often a page whose loading was ended is loaded again.
    static constexpr int kMaxRetries = 3;
    /// Loads of pages for one that is shown: it and its frame, and again for each retry. A page may ask for itself
    /// again.
    static constexpr int kMaxLoads = 2 * (1 + kMaxRetries);
    /// Requests of any kind, refused ones included, before the page counts as a flood.
    static constexpr int kMaxRequests = 1000;

    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    /// The page at `path` is shown from now on: it and the program's own pages beside it may be loaded.
    void allowPage(const QString& path);
    bool allows(const QUrl& page) const;

    void interceptRequest(QWebEngineUrlRequestInfo& request) override;

signals:
    /// The page asked for more than `kMaxRequests`.
    void flooded();

private:
    QSet<QUrl> pages_;
    int loads_ = 0;    // of the page that is shown
    int requests_ = 0; // likewise
};

/// Answers the addresses that RequestGuard sends pictures on to, from the program's own source of pictures.
class PictureHandler final : public QWebEngineUrlSchemeHandler
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PictureHandler)

public:
    PictureHandler(PictureSource& pictures, QObject* parent) : QWebEngineUrlSchemeHandler(parent), pictures_(pictures)
    {}

    /// The scheme of those addresses. It has to be registered before the engine starts.
    static QByteArray scheme() { return QByteArrayLiteral("quarrynet-picture"); }
    static void registerScheme();

    /// `picture`, an http or https address, as an address of the scheme, and back (empty for any other).
    static QUrl addressFor(const QUrl& picture);
    static QUrl pictureAt(const QUrl& address);

    /// In pixels, of all pictures of one page together.
    static constexpr qint64 kMaxPixels = 32 << 20;

    /// Another page is shown from now on, and may have as many pictures as the one before.
    void beginPage();

    void requestStarted(QWebEngineUrlRequestJob* job) override;

private:
    PictureSource& pictures_;
    int fetches_ = 0;   // for the page that is shown
    qint64 pixels_ = 0; // likewise
};

} // namespace quarrynet
