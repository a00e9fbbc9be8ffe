#pragma once

#include <functional>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace quarrynet {

class Main;

/// An unattended tour through the program: it types, clicks and waits as a person would, and saves a screenshot of the
/// window at each stop. For each message box, it saves a screenshot and accepts the box.
class Tour final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Tour)

public:
    /// `window` must outlive the tour. Screenshots go to `folder`, which must exist.
    Tour(Main& window, QString folder, QObject* parent = nullptr);

    /// Starts the tour. `finished` follows from the event loop; `complete` is false if a stop timed out or a screenshot
    /// could not be written.
    void start();

signals:
    void finished(bool complete);

private:
    struct Stop
    {
        QString picture;
        int tag;                                            // the tab to choose
        std::vector<std::pair<const char*, QString>> typed; // fields and what is typed into them
        const char* button;                                 // pressed after the typing, or null
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
    QElapsedTimer since_; // since the arrival or the last activity
    bool complete_ = true;
};

} // namespace quarrynet
