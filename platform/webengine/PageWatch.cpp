#include "platform/webengine/PageWatch.h"

#include <chrono>

#include <QPointer>
#include <QWebEnginePage>

#include "platform/webengine/page_process.h"

namespace quarrynet {

PageWatch::PageWatch(QWebEnginePage& page, QObject* parent) : QObject(parent), page_(page)
{
    connect(&timer_, &QTimer::timeout, this, &PageWatch::look);
    timer_.start(std::chrono::seconds(1));
}

void PageWatch::look()
{
    const qint64 process = page_.renderProcessPid();
    if (process <= 0)
        return;
    if (processMemory(process) > kMaxMemory) {
        timer_.stop();
        emit grows();
        return;
    }
    // Seconds are counted, not read from a clock, so that the time of a suspended machine or stopped program does not
    // count.
    if (unanswered_ > 0) {
        if (++unanswered_ > kPatience) {
            timer_.stop();
            emit hangs();
        }
        return;
    }
    unanswered_ = 1;
    // The outer page is one line long, and its process also renders the frames.
    page_.toPlainText([watch = QPointer(this)](const QString&) {
        if (watch)
            watch->unanswered_ = 0;
    });
}

} // namespace quarrynet
