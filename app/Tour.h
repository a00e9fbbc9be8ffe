#pragma once

#include <functional>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace quarrynet {

class Main;

/// A tour through the program without a person: it types, clicks and waits as one would, and takes a picture of the
/// window at each stop. Message boxes that come up are pictured and answered.
class Tour final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Tour)

public:
    /// The window has to outlive the tour. Pictures go to `folder`, which exists.
    Tour(Main& window, QString folder, QObject* parent = nullptr);

    /// Begins; `finished` follows from the event loop, with whether all pictures could be written.
    void start();

signals:
    void finished(bool complete);

private:
    struct Stop
    {
        QString picture;
        int tag;                                            // the tab to choose
        std::vector<std::pair<const char*, QString>> typed; // fields and what is typed into them
        const char* button;                                 // pressed then, or null
    };

    void arrive();
    void look();
    void take(QWidget& widget, const QString& name);
    bool settled() const;

    Main& window_;
    QString folder_;
    std::vector<Stop> stops_;
    std::size_t next_ = 0;
    QTimer watch_;
    QElapsedTimer since_; // the arrival, or the last sign of work
    bool complete_ = true;
};

} // namespace quarrynet
