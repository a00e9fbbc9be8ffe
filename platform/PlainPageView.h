#pragma once

#include <memory>
#include <vector>

#include <QTextBrowser>

#include "platform/PageView.h"

namespace quarrynet {

/// The view without a browser engine: shows the pictures of the gallery, each with its address as caption and link. It
/// does not read pages, so no page can harm it.
class PlainPageView final : public QTextBrowser, public PageView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PlainPageView)

public:
    PlainPageView(PageViewHost host, QWidget* parent);

    QWidget& widget() override { return *this; }
    void showPage(const QString& path, const std::vector<GalleryPicture>& pictures) override;

protected:
    QVariant loadResource(int type, const QUrl& name) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showPicture(std::size_t number, const Picture& picture);
    void activate(const QUrl& link);

    PageViewHost host_;
    std::vector<QByteArray> links_;
    // The context of the current gallery's fetches. A new gallery replaces it, which cancels those of the old one.
    std::unique_ptr<QObject> fetches_;
    QTextDocument* shown_ = nullptr; // the last gallery's document, owned
};

} // namespace quarrynet
