#pragma once

#include <QNetworkAccessManager>

#include "platform/PageView.h"

namespace quarrynet {

/// Fetches pictures over HTTP, directly or through a proxy. It keeps no cookies, asks nobody for a password, and gives
/// up on a picture that is larger than 16 MB or does not go on for half a minute.
class PictureFetcher : public QObject, public PictureSource
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PictureFetcher)

public:
    explicit PictureFetcher(QObject* parent = nullptr);

    /// From now on through the HTTP proxy at `host` and `port`; directly where `host` is empty.
    void setProxy(const QString& host, quint16 port);

    void fetch(const QUrl& address, QObject* context, std::function<void(const Picture&)> done) override;

private:
    QNetworkAccessManager network_;
};

} // namespace quarrynet
