#pragma once

#include <atomic>
#include <memory>
#include <string>

#include <QApplication>

namespace quarrynet {

/// The application object. An event whose handling runs out of memory ends there and then, not the program: a list of
/// very many rows is laid out and painted in events of the toolkit's own, where nobody else could catch it.
class Application final : public QApplication
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Application)

public:
    Application(int& argc, char** argv);

    bool notify(QObject* receiver, QEvent* event) override;

signals:
    /// Memory ran out in an event. Comes once for all such events until its receivers have returned, and never from
    /// inside an event's handling.
    void outOfMemory();

private:
    void tell();

    // Given up when memory runs out, so that there is some to say so.
    std::unique_ptr<std::string> reserve_;
    std::atomic<bool> telling_ = false;
};

} // namespace quarrynet
