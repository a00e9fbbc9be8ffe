#pragma once

#include <QObject>
#include <QTimer>

class QWebEnginePage;

namespace quarrynet {

/// Watches the process that draws a page: whether it still answers, and how much memory it holds. A hostile page can
/// keep it busy, or let it grow, for as long as it is shown.
class PageWatch final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageWatch)

public:
    /// So many seconds may pass without an answer.
    static constexpr int kPatience = 10;
    /// In bytes; a gallery of ordinary thumbnails takes a fifth of it.
    static constexpr qint64 kMaxMemory = 512 << 20;

    /// `page` has to outlive the watch.
    PageWatch(QWebEnginePage& page, QObject* parent);

signals:
    /// No answer came for too long.
    void hangs();
    /// The process holds more memory than it may.
    void grows();

private:
    void look();

    QWebEnginePage& page_;
    QTimer timer_;
    int unanswered_ = 0; // seconds; 0 while nothing is asked
};

} // namespace quarrynet
