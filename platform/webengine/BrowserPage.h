#pragma once

#include <functional>

#include <QWebEnginePage>

namespace quarrynet {

class RequestGuard;

/// A page that rejects navigation. Instead it reports the address as a link, if the user chose it. It shows no dialogs,
/// opens no windows, accepts no files and grants no permissions.
class BrowserPage final : public QWebEnginePage
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BrowserPage)

public:
    /// `guard` decides which pages may be shown. `profile` must outlive the page.
    BrowserPage(const RequestGuard& guard, QWebEngineProfile* profile, QObject* parent);

    /// Allows the next link within five seconds. Call when the user presses a button or a key that may choose one.
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
    qint64 linkAllowedUntil_ = 0; // in milliseconds of the system's monotonic clock
};

} // namespace quarrynet
