#include "app/BusySign.h"

#include <algorithm>
#include <utility>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QTimerEvent>
#include <QWidget>

#include "platform/TcpClientSocket.h"

namespace quarrynet {

class BusySign::Line final : public QWidget
{
public:
    explicit Line(QWidget& window) : QWidget(&window)
    {
        setObjectName(QStringLiteral("BusyLine"));
        setAccessibleName(BusySign::tr("A search is running"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
        hide();
    }

protected:
    void showEvent(QShowEvent* /*event*/) override
    {
        since_.start();
        if (style()->styleHint(QStyle::SH_Widget_Animate, nullptr, this))
            steps_.start(kStep, this);
    }

    void hideEvent(QHideEvent* /*event*/) override { steps_.stop(); }

    void timerEvent(QTimerEvent* event) override
    {
        if (event->timerId() == steps_.timerId())
            update();
        else
            QWidget::timerEvent(event);
    }

    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Window));
        QRect bar = rect();
        if (steps_.isActive()) {
            // From beyond the left end to beyond the right one, or the other way round.
            const int length = std::max(8, width() / 5);
            const double done = static_cast<double>(since_.elapsed() % kCrossing) / kCrossing;
            const int left = static_cast<int>(done * (width() + length)) - length;
            bar.setLeft(layoutDirection() == Qt::RightToLeft ? width() - left - length : left);
            bar.setWidth(length);
        }
        painter.fillRect(bar, palette().color(QPalette::Highlight));
    }

private:
    static constexpr int kStep = 40;          // between two pictures, in milliseconds
    static constexpr qint64 kCrossing = 1600; // from end to end, in milliseconds

    QBasicTimer steps_; // runs only while the line is visible
    QElapsedTimer since_;
};

BusySign::BusySign(QWidget& window, QWidget& strip, std::function<const TcpClientSocket*()> front)
    : QObject(&window), window_(window), strip_(strip), front_(std::move(front))
{}

void BusySign::watch(TcpClientSocket& socket)
{
    connect(&socket, &TcpClientSocket::openChanged, this, [this, &socket](bool open) {
        refresh();
        if (open)
            return;
        // A new search closes the socket and opens it again at once.
        QMetaObject::invokeMethod(
            &socket,
            [this, &socket] {
                if (!socket.isOpen())
                    emit searchEnded();
            },
            Qt::QueuedConnection);
    });
}

void BusySign::refresh()
{
    const TcpClientSocket* front = front_();
    const bool busy = front && front->isOpen();
    if (busy && !line_) {
        line_ = new Line(window_);
        strip_.installEventFilter(this);
    }
    if (!line_)
        return;
    if (busy) {
        place();
        line_->raise();
    }
    line_->setVisible(busy);
}

void BusySign::place()
{
    constexpr int kThickness = 2;
    const QPoint below = strip_.mapTo(&window_, QPoint(0, strip_.height()));
    line_->setGeometry(below.x(), below.y(), strip_.width(), std::max(kThickness, strip_.height() / 12));
}

bool BusySign::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
        place();
    return QObject::eventFilter(watched, event);
}

} // namespace quarrynet
