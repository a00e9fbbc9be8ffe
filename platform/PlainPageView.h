#pragma once

#include <memory>
#include <vector>

#include <QTextBrowser>

#include "platform/PageView.h"
#include "platform/view_keys.h"

namespace quarrynet {

class GalleryLayout;

/// The view without a browser engine: shows the pictures of the gallery as a grid, each with its address as caption and
/// link. It does not read pages, so no page can harm it.
class PlainPageView final : public QTextBrowser, public PageView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PlainPageView)

public:
    PlainPageView(PageViewHost host, QWidget* parent);

    QWidget& widget() override { return *this; }
    void showPage(const QString& path, const std::vector<GalleryPicture>& pictures) override;
    void setLook(const PageLook& look) override;

protected:
    QVariant loadResource(int type, const QUrl& name) override;
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void showPicture(std::size_t number, const Picture& picture);
    void activate(const QUrl& link);
    void follow();
    void moveTo(int number);
    QFont zoomedFont() const;

    PageViewHost host_;
    std::vector<QByteArray> links_;
    // The context of the current gallery's fetches. A new gallery replaces it, which cancels those of the old one.
    std::unique_ptr<QObject> fetches_;
    QTextDocument* shown_ = nullptr;  // the last gallery's document, owned
    GalleryLayout* layout_ = nullptr; // of that document, which owns it
    PageLook look_;
    WheelZoom wheel_;
};

} // namespace quarrynet
