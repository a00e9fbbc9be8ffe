#pragma once

#include <atomic>
#include <memory>
#include <string>

#include <QApplication>

namespace quarrynet {

/// The application object. When an event handler runs out of memory, only the event ends, not the program: the toolkit
/// lays out and paints very long lists in events of its own, where no other code can catch the exception.
class Application final : public QApplication
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Application)

public:
    Application(int& argc, char** argv);

    bool notify(QObject* receiver, QEvent* event) override;

signals:
    /// Memory ran out in an event handler. Emitted later, from the event loop, and not again until its receivers have
    /// returned.
    void outOfMemory();

private:
    void tell();

    // Freed when memory runs out, so that the message about it has some.
    std::unique_ptr<std::string> reserve_;
    std::atomic<bool> telling_ = false;
};

} // namespace quarrynet
