#pragma once

#include <deque>

#include <QNetworkAccessManager>
#include <QPointer>

#include "platform/PageView.h"

namespace quarrynet {

/// Fetches raster pictures over HTTP, directly or through a proxy. It keeps no cookies, asks for no passwords, and
/// tells servers no more about this system than a search does. A picture that exceeds a limit becomes an empty Picture.
class PictureFetcher final : public QObject, public PictureSource
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PictureFetcher)

public:
    static constexpr qint64 kMaxBytes = 4 << 20;   // per picture, as sent
    static constexpr qint64 kMaxPixels = 4 << 20;  // per picture
    static constexpr qsizetype kMaxAddress = 8192; // in bytes, as sent
    static constexpr int kAtOnce = 6;              // pictures fetched at the same time
    static constexpr int kMaxWaiting = 64;         // pictures that wait for those

    explicit PictureFetcher(QObject* parent = nullptr);

    /// Fetches through the HTTP proxy at `host` and `port` from now on, or directly if `host` is empty.
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
