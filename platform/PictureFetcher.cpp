#include "platform/PictureFetcher.h"

#include <chrono>
#include <optional>
#include <string_view>
#include <utility>

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>

#include "common/raster_head.h"

namespace quarrynet {

namespace {

constexpr int kMaxRedirects = 5;
// Timeouts of a picture: without progress, and in total.
constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(30);
constexpr std::chrono::milliseconds kWholeTime = std::chrono::seconds(60);

bool isFetchable(const QUrl& address)
{
    return address.isValid() && !address.host().isEmpty() &&
           (address.scheme() == QStringLiteral("http") || address.scheme() == QStringLiteral("https")) &&
           address.toEncoded().size() <= PictureFetcher::kMaxAddress;
}

// Ignores the media type that the server declares: the content decides, as it would in a decoder.
Picture pictureOf(QNetworkReply& reply)
{
    if (reply.error() != QNetworkReply::NoError)
        return {};
    const QByteArray bytes = reply.readAll();
    const std::optional<RasterHead> head = readRasterHead({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    if (!head || static_cast<quint64>(head->width) * head->height > static_cast<quint64>(PictureFetcher::kMaxPixels))
        return {};
    const std::string_view type = mediaType(head->format);
    return {bytes, QByteArray(type.data(), static_cast<qsizetype>(type.size())),
            QSize(static_cast<int>(head->width), static_cast<int>(head->height))};
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
    if (!isFetchable(address) || waiting_.size() >= kMaxWaiting) {
        QTimer::singleShot(0, context, [done = std::move(done)] { done({}); });
        return;
    }
    waiting_.push_back({address, context, std::move(done)});
    startNext();
}

void PictureFetcher::startNext()
{
    while (running_ < kAtOnce && !waiting_.empty()) {
        const Order order = std::move(waiting_.front());
        waiting_.pop_front();
        if (order.context)
            start(order);
    }
}

void PictureFetcher::start(const Order& order)
{
    QNetworkRequest request(order.address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(kMaxRedirects);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setTransferTimeout(static_cast<int>(kPatience.count()));
    // By default, the toolkit would send its name and the user's language, and decompress responses of any size.
    request.setRawHeader("User-Agent", "Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)");
    request.setRawHeader("Accept", "*/*");
    request.setRawHeader("Accept-Language", "*");
    request.setRawHeader("Accept-Encoding", "identity");

    QNetworkReply* reply = network_.get(request);
    ++running_;
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > kMaxBytes)
            reply->abort();
    });
    QTimer::singleShot(kWholeTime, reply, &QNetworkReply::abort);
    connect(order.context, &QObject::destroyed, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::finished, this, [this, reply, context = order.context, done = order.done] {
        --running_;
        reply->deleteLater();
        if (context)
            done(pictureOf(*reply));
        startNext();
    });
}

} // namespace quarrynet
