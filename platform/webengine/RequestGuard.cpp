#include "platform/webengine/RequestGuard.h"

#include <string_view>

#include <QBuffer>
#include <QFileInfo>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

#include "common/local_pages.h"

namespace quarrynet {

namespace {

bool isHttp(const QUrl& address)
{
    return address.scheme() == QStringLiteral("http") || address.scheme() == QStringLiteral("https");
}

bool isPageType(QWebEngineUrlRequestInfo::ResourceType type)
{
    return type == QWebEngineUrlRequestInfo::ResourceTypeMainFrame ||
           type == QWebEngineUrlRequestInfo::ResourceTypeSubFrame;
}

} // namespace

void RequestGuard::allowPage(const QString& path)
{
    const QString folder = QFileInfo(path).absolutePath();
    pages_ = {QUrl::fromLocalFile(path)};
    loads_ = 0;
    requests_ = 0;
    for (const std::string_view name : {kBlankFrameName, kBlankPageName, kGalleryFrameName, kGalleryPageName}) {
        const QString page = QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
        pages_.insert(QUrl::fromLocalFile(folder + QLatin1Char('/') + page));
    }
}

bool RequestGuard::allows(const QUrl& page) const
{
    return pages_.contains(page);
}

void RequestGuard::interceptRequest(QWebEngineUrlRequestInfo& request)
{
    if (++requests_ == kMaxRequests + 1)
        emit flooded();
    if (requests_ > kMaxRequests) {
        request.block(true);
        return;
    }
    const QUrl address = request.requestUrl();
    const auto type = request.resourceType();
    if (type == QWebEngineUrlRequestInfo::ResourceTypeImage && isHttp(address)) {
        request.redirect(PictureHandler::addressFor(address));
        return;
    }
    const bool picture = type == QWebEngineUrlRequestInfo::ResourceTypeImage &&
                         address.scheme() == QLatin1String(PictureHandler::scheme());
    const bool page = isPageType(type) && allows(address) && ++loads_ <= kMaxLoads;
    request.block(!picture && !page);
}

void PictureHandler::registerScheme()
{
    QWebEngineUrlScheme scheme(PictureHandler::scheme());
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Path);
    scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled);
    QWebEngineUrlScheme::registerScheme(scheme);
}

QUrl PictureHandler::addressFor(const QUrl& picture)
{
    QUrl address;
    address.setScheme(QLatin1String(scheme()));
    address.setPath(QLatin1String(picture.toEncoded().toHex()));
    return address;
}

QUrl PictureHandler::pictureAt(const QUrl& address)
{
    const QUrl picture = QUrl::fromEncoded(QByteArray::fromHex(address.path().toLatin1()), QUrl::StrictMode);
    return isHttp(picture) ? picture : QUrl();
}

void PictureHandler::beginPage()
{
    fetches_ = 0;
    pixels_ = 0;
}

void PictureHandler::requestStarted(QWebEngineUrlRequestJob* job)
{
    if (++fetches_ > kMaxPagePictures) {
        job->fail(QWebEngineUrlRequestJob::RequestDenied);
        return;
    }
    pictures_.fetch(pictureAt(job->requestUrl()), job, [this, job](const Picture& picture) {
        pixels_ += static_cast<qint64>(picture.size.width()) * picture.size.height();
        if (picture.bytes.isEmpty() || pixels_ > kMaxPixels) {
            job->fail(QWebEngineUrlRequestJob::RequestFailed);
            return;
        }
        auto* buffer = new QBuffer; // the engine reads it as long as the job exists
        buffer->setData(picture.bytes);
        buffer->open(QIODevice::ReadOnly);
        connect(job, &QObject::destroyed, buffer, &QObject::deleteLater);
        job->reply(picture.type, buffer);
    });
}

} // namespace quarrynet
