#pragma once

#include <deque>

#include <QNetworkAccessManager>
#include <QPointer>

#include "platform/PageView.h"

namespace quarrynet {

/// Fetches raster pictures over HTTP, directly or through a proxy. It keeps no cookies, asks nobody for a password, and
/// tells servers no more of this system than a search does. It gives nothing for a picture that goes beyond a bound.
class PictureFetcher final : public QObject, public PictureSource
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PictureFetcher)

public:
    static constexpr qint64 kMaxBytes = 4 << 20;   // a picture's, as it is sent
    static constexpr qint64 kMaxPixels = 4 << 20;  // a picture's
    static constexpr qsizetype kMaxAddress = 8192; // in bytes, as it is asked for
    static constexpr int kAtOnce = 6;              // pictures on their way
    static constexpr int kMaxWaiting = 64;         // pictures behind those

    explicit PictureFetcher(QObject* parent = nullptr);

    /// From now on through the HTTP proxy at `host` and `port`; directly where `host` is empty.
    void setProxy(const QString& host, quint16 port);

    void fetch(const QUrl& address, QObject* context, std::function<void(const Picture&)> done) override;

private:
    struct Order
    {
        QUrl address;
        QPointer<QObject> context;
        std::function<void(const Picture&)> done;
    };

    void startNext();
    void start(const Order& order);

    QNetworkAccessManager network_;
    std::deque<Order> waiting_;
    int running_ = 0;
};

} // namespace quarrynet
