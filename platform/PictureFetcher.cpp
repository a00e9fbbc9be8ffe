#include "platform/PictureFetcher.h"

#include <chrono>
#include <utility>

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>

namespace quarrynet {

namespace {

constexpr qint64 kMaxBytes = 16 << 20;
constexpr int kMaxRedirects = 5;
constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(30);

bool isHttp(const QUrl& address)
{
    return address.isValid() && !address.host().isEmpty() &&
           (address.scheme() == QLatin1String("http") || address.scheme() == QLatin1String("https"));
}

Picture pictureOf(QNetworkReply& reply)
{
    if (reply.error() != QNetworkReply::NoError)
        return {};
    QByteArray type = reply.header(QNetworkRequest::ContentTypeHeader).toByteArray();
    type = type.left(type.indexOf(';') < 0 ? type.size() : type.indexOf(';')).trimmed().toLower();
    // A server that does not know what it serves says the second; what is called a page is none of a page's pictures.
    if (!type.isEmpty() && !type.startsWith("image/") && type != "application/octet-stream")
        return {};
    return {reply.readAll(), type};
}

} // namespace

PictureFetcher::PictureFetcher(QObject* parent) : QObject(parent)
{
    setProxy(QString(), 0);
}

void PictureFetcher::setProxy(const QString& host, quint16 port)
{
    const bool direct = host.isEmpty();
    network_.setProxy(direct ? QNetworkProxy(QNetworkProxy::NoProxy)
                             : QNetworkProxy(QNetworkProxy::HttpProxy, host, port));
    network_.clearConnectionCache();
}

void PictureFetcher::fetch(const QUrl& address, QObject* context, std::function<void(const Picture&)> done)
{
    if (!isHttp(address)) {
        QTimer::singleShot(0, context, [done = std::move(done)] { done({}); });
        return;
    }
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(kMaxRedirects);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setTransferTimeout(static_cast<int>(kPatience.count()));

    QNetworkReply* reply = network_.get(request);
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > kMaxBytes)
            reply->abort();
    });
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, context, [reply, done = std::move(done)] { done(pictureOf(*reply)); });
}

} // namespace quarrynet
