#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace quarrynet {

/// Has screen readers speak a message that no control in focus shows. Without a screen reader it does nothing.
///
/// It stands in the accessibility tree as a notification of the window that appears with each message: the toolkit has
/// no event for announcements before version 6.8, and its alert event is not passed on.
class Announcer final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Announcer)

public:
    /// `window` must outlive the object.
    explicit Announcer(QWidget& window);

    void say(const QString& message);

    QWidget& window() const { return window_; }
    const QString& message() const { return message_; }

private:
    QWidget& window_;
    QString message_;
};

} // namespace quarrynet
