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
    // Seconds are counted here and not read from a clock: a machine that slept, or a program that was stopped, is not
    // the page's fault.
    if (unanswered_ > 0) {
        if (++unanswered_ > kPatience) {
            timer_.stop();
            emit hangs();
        }
        return;
    }
    unanswered_ = 1;
    // The frames' page is a line long, and its process draws the frames too.
    page_.toPlainText([watch = QPointer(this)](const QString&) {
        if (watch)
            watch->unanswered_ = 0;
    });
}

} // namespace quarrynet
