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

/// Shows one of the program's local pages. Behind it works a browser engine, a plug-in that is loaded when the view is
/// first shown, so that a program that never shows it does not pay for it. Where the plug-in is missing, or the engine
/// cannot start, a plain view stands in.
///
/// The page stays what it is: links are handed out and never followed here, and neither the page nor a key leads away
/// from it. Its pictures come over HTTP; nothing else of the net or the file system is open to it.
class HtmlView final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HtmlView)
    /// The local page that is shown, or will be once the view is shown: a file: address, or empty.
    Q_PROPERTY(QUrl url READ url NOTIFY urlChanged)
    /// Whether the browser engine shows the page.
    Q_PROPERTY(bool browser READ hasBrowser)
    /// What the view has to say about its engine, as shown above the page; mostly empty.
    Q_PROPERTY(QString message READ message)

public:
    explicit HtmlView(QWidget* parent = nullptr);
    ~HtmlView() override;

    /// Shows the page at `path`, reading it anew if it is shown already. `pictures` are the gallery that the page
    /// shows, for a view that reads no pages.
    void navigate(const QString& path, std::vector<GalleryPicture> pictures = {});
    QUrl url() const { return url_; }

    /// Pictures come through this HTTP proxy from now on; directly where `host` is empty.
    void setProxy(const QString& host, quint16 port);

    /// Where the plug-in is looked for, in this order; by default beside the program and in the installation's library
    /// folder. Heeded until the view is first shown.
    void setEngineFolders(const QStringList& folders) { engineFolders_ = folders; }

    bool hasBrowser() const { return hasBrowser_; }
    QString message() const;

signals:
    /// A person chose a link. The address is an http, https or ftp one, in the form that openableAddress gives it.
    void linkActivated(const std::string& address);
    void urlChanged();

protected:
    void showEvent(QShowEvent* event) override;
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
    PageViewHost host();

    QUrl url_;
    std::vector<GalleryPicture> gallery_; // that the page shows
    QStringList engineFolders_;
    PictureFetcher pictures_;
    QVBoxLayout* layout_;
    QLabel* messageLabel_;
    std::unique_ptr<PageView> view_;
    bool started_ = false;
    bool hasBrowser_ = false;
};

} // namespace quarrynet
