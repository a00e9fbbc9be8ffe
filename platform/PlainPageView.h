#pragma once

#include <memory>
#include <vector>

#include <QTextBrowser>

#include "platform/PageView.h"

namespace quarrynet {

/// The view without a browser engine: the pictures of the gallery, each with its address as caption and link. It reads
/// no page, so nothing in one can do anything to it.
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
    // What is fetched for the gallery that is shown; a new one begins anew, and what comes for the old is dropped.
    std::unique_ptr<QObject> fetches_;
    QTextDocument* shown_ = nullptr; // the last gallery's document, ours to delete
};

} // namespace quarrynet
