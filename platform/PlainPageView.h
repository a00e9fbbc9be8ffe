#pragma once

#include <QTextBrowser>

#include "platform/PageView.h"

namespace quarrynet {

/// The view without a browser engine: texts, links and pictures of a page, no scripts and no styles of others. Of a
/// page with frames it shows the first one.
class PlainPageView : public QTextBrowser, public PageView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PlainPageView)

public:
    PlainPageView(PageViewHost host, QWidget* parent);

    QWidget& widget() override { return *this; }
    void showPage(const QString& path) override;

protected:
    QVariant loadResource(int type, const QUrl& name) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showPicture(const QUrl& name, const Picture& picture);

    PageViewHost host_;
    // What is fetched for the page that is shown; a new page begins a new one, and what comes for the old is dropped.
    std::unique_ptr<QObject> fetches_;
    QTextDocument* shown_ = nullptr; // the last page's document, ours to delete
};

} // namespace quarrynet
