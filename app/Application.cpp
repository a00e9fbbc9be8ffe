#include "app/Application.h"

#include <new>

namespace quarrynet {

namespace {

constexpr std::size_t kReserve = std::size_t{4} << 20; // a message box, its layout and fonts

std::unique_ptr<std::string> makeReserve()
{
    try {
        return std::make_unique<std::string>(kReserve, '\1');
    } catch (const std::bad_alloc&) {
        return nullptr; // without it, the next message box may fail
    }
}

} // namespace

Application::Application(int& argc, char** argv) : QApplication(argc, argv), reserve_(makeReserve()) {}

bool Application::notify(QObject* receiver, QEvent* event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
        // Other threads deliver their events here, too.
        if (!telling_.exchange(true)) {
            reserve_.reset();
            try {
                QMetaObject::invokeMethod(this, &Application::tell, Qt::QueuedConnection);
            } catch (const std::bad_alloc&) {
                telling_ = false; // the next event that runs out of memory tries again
            }
        }
        return true;
    }
}

void Application::tell()
{
    try {
        emit outOfMemory();
    } catch (const std::bad_alloc&) {
        // There is not even enough for the message. What the receivers could free is free.
    }
    reserve_ = makeReserve();
    telling_ = false;
}

} // namespace quarrynet
