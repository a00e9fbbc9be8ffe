#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QStringList>
#include <QUrl>
#include <QWidget>

#include "platform/PictureFetcher.h"

class QLabel;
class QVBoxLayout;

namespace quarrynet {

/// Shows one of the program's local pages in a browser engine. The engine is a plug-in that is loaded when the view is
/// first shown, so it costs nothing before. If the plug-in is missing or the engine cannot start, a plain view replaces
/// it.
///
/// The view never leaves its page: links are only reported, and neither the page nor a key can navigate. The page gets
/// pictures over HTTP, and no other access to the network or the file system.
class HtmlView final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HtmlView)
    /// The page to show, as a file: address, or empty.
    Q_PROPERTY(QUrl url READ url NOTIFY urlChanged)
    /// Whether the browser engine shows the page.
    Q_PROPERTY(bool browser READ hasBrowser)
    /// The message about the engine that is shown above the page; usually empty.
    Q_PROPERTY(QString message READ message)
    /// The zoom of the pages in per cent.
    Q_PROPERTY(int zoom READ zoom)

public:
    explicit HtmlView(QWidget* parent = nullptr);
    ~HtmlView() override;

    /// Shows the page at `path`; reloads it if it is already shown. `pictures` is the gallery on the page, for a view
    /// that does not read pages.
    void navigate(const QString& path, std::vector<GalleryPicture> pictures = {});
    QUrl url() const { return url_; }

    /// Fetches pictures through this HTTP proxy from now on, or directly if `host` is empty.
    void setProxy(const QString& host, quint16 port);

    /// Sets the folders to search for the plug-in, in this order. The default is the program's folder, then the
    /// installation's library folder. Has no effect after the view was first shown.
    void setEngineFolders(const QStringList& folders) { engineFolders_ = folders; }

    bool hasBrowser() const { return hasBrowser_; }
    QString message() const;
    int zoom() const;

signals:
    /// The user chose a link. `address` is an http, https or ftp address as openableAddress returns it.
    void linkActivated(const std::string& address);
    void urlChanged();

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void start();
    void startPlain();
    void takeView(std::unique_ptr<PageView> view);
    void engineFailed(const QString& reason);
    void activate(const QByteArray& address);
    void say(const QString& message);
    void changeZoom(Zoom change);
    PageLook look() const;
    PageViewHost host();

    QUrl url_;
    std::vector<GalleryPicture> gallery_; // on the page
    QStringList engineFolders_;
    PictureFetcher pictures_;
    QVBoxLayout* layout_;
    QLabel* messageLabel_;
    std::unique_ptr<PageView> view_;
    std::size_t zoom_; // a place in the table of zooms
    bool started_ = false;
    bool hasBrowser_ = false;
};

} // namespace quarrynet
