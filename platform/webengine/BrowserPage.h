#pragma once

#include <functional>

#include <QWebEnginePage>

namespace quarrynet {

class RequestGuard;

/// A page that stays where it is: what would lead away from it is handed out as a link, and only when a person chose
/// it. It shows no dialogs, opens no windows, takes no files and grants no permissions.
class BrowserPage final : public QWebEnginePage
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BrowserPage)

public:
    /// `guard` knows the pages that may be shown. `profile` has to outlive the page.
    BrowserPage(const RequestGuard& guard, QWebEngineProfile* profile, QObject* parent);

    /// A person pressed a button or a key that may choose a link: the next link within a moment is theirs.
    void personActed();

signals:
    void linkActivated(const QByteArray& address);

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage* createWindow(WebWindowType type) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList& oldFiles,
                            const QStringList& acceptedMimeTypes) override;
    void javaScriptAlert(const QUrl& origin, const QString& text) override;
    bool javaScriptConfirm(const QUrl& origin, const QString& text) override;
    bool javaScriptPrompt(const QUrl& origin, const QString& text, const QString& preset, QString* result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& message, int line,
                                  const QString& source) override;

private:
    void offerLink(const QUrl& address);

    const RequestGuard& guard_;
    qint64 linkAllowedUntil_ = 0; // milliseconds of the system's monotonic clock
};

} // namespace quarrynet
