#pragma once

#include <functional>

#include <QObject>

class QWidget;

namespace quarrynet {

class TcpClientSocket;

/// Shows with a thin moving line below the tab strip that the front tab's socket is open, and announces the end of
/// every tab's search.
///
/// The line lies above the frames and takes neither clicks nor the focus. It is made when a socket first opens, and it
/// stands still where the desktop does without animations (QStyle::SH_Widget_Animate).
class BusySign final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BusySign)

public:
    /// `strip` is the tab strip, a descendant of `window`. `front` returns the front tab's socket, or null.
    BusySign(QWidget& window, QWidget& strip, std::function<const TcpClientSocket*()> front);

    /// Shows the line while `socket` is open and the front tab's. The socket must outlive this object.
    void watch(TcpClientSocket& socket);

    /// Shows or hides the line. Call when another tab comes to the front.
    void refresh();

signals:
    /// A watched socket has closed, and no other search of its tab has taken its place.
    void searchEnded();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Line;

    void place();

    QWidget& window_;
    QWidget& strip_;
    std::function<const TcpClientSocket*()> front_;
    Line* line_ = nullptr;
};

} // namespace quarrynet
