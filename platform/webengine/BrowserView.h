#pragma once

#include <memory>

#include <QWebEngineView>

#include "platform/PageView.h"
#include "platform/view_keys.h"

class QWebEngineProfile;

namespace quarrynet {

class BrowserPage;
class PictureHandler;
class RequestGuard;

/// The browser engine's view of one page, with restrictions against hostile pages.
class BrowserView final : public QWebEngineView, public PageView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BrowserView)

public:
    BrowserView(const PageViewHost& host, QWidget* parent);
    ~BrowserView() override;

    QWidget& widget() override { return *this; }
    void showPage(const QString& path, const std::vector<GalleryPicture>& pictures) override;
    void setLook(const PageLook& look) override;

protected:
    void childEvent(QChildEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void restrict();
    void giveUp(const QString& reason);
    void insertGalleryScript(); // for the next page

    PageViewHost host_;
    std::unique_ptr<QWebEngineProfile> profile_;
    RequestGuard* guard_;
    PictureHandler* pictures_;
    BrowserPage* page_;
    QUrl shown_;
    WheelZoom wheel_;
    double zoom_ = 1;
    PageLook look_;
    QStringList notes_; // of the pictures on the page, see GalleryPicture
    int retries_ = 0;   // left for the page that is shown
};

} // namespace quarrynet
