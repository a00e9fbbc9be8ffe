#pragma once

#include <QObject>
#include <QTimer>

class QWebEnginePage;

namespace quarrynet {

/// Monitors the process that renders a page: whether it responds, and how much memory it uses. A hostile page can keep
/// it busy or make it grow as long as the page is shown.
class PageWatch final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageWatch)

public:
    /// Timeout of a response, in seconds.
    static constexpr int kPatience = 10;
    /// Maximum memory, in bytes. A gallery of ordinary thumbnails uses a fifth of it.
    static constexpr qint64 kMaxMemory = 512 << 20;

    /// `page` must outlive the watch.
    PageWatch(QWebEnginePage& page, QObject* parent);

signals:
    /// The process did not respond within the timeout.
    void hangs();
    /// The process uses more than the maximum memory.
    void grows();

private:
    void look();

    QWebEnginePage& page_;
    QTimer timer_;
    int unanswered_ = 0; // seconds; 0 while no request is pending
};

} // namespace quarrynet
