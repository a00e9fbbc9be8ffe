#include "search/download/LinkResolution.h"

#include <QWidget>

#include "dialogs/Dialog.h"
#include "platform/Shell.h"
#include "platform/message_boxes.h"
#include "search/download/redirect.h"

namespace quarrynet {

LinkResolution::LinkResolution(SearchWindow& window, QWidget* parent)
    : QObject(parent)
    , window_(window)
    , exchange_(QStringLiteral("DownSock"), {.marksHeader = false}, *this, window.receiveState(), parent)
    , Text14(QStringLiteral("Text14"), parent)
{}

LinkResolution::~LinkResolution() = default;

void LinkResolution::start(const std::string& link)
{
    const Result<std::string> path = redirectPath(link);
    if (!path) {
        showRuntimeError(owner(), path.error());
        return;
    }
    Text14.setText(*path);
    exchange_.session().start(window_.target(site()));
    if (exchange_.socket().State() == SocketState::Closed)
        return; // memory ran out, and nothing would close the wait box
    if (!dialog_)
        dialog_ = new Dialog(owner());
    dialog_->load();
}

std::optional<std::string> LinkResolution::requestText()
{
    return linkRequest(Text14.text(), site(), window_.route());
}

void LinkResolution::handOver(const std::string& body)
{
    const Result<std::optional<std::string>> address = downloadAddress(body);
    if (!address) {
        exchangeEnded(); // closes the wait box before the message
        showRuntimeError(owner(), address.error());
        return;
    }
    // Without an address, the front page is opened, because the hidden list never has a selected entry to append.
    window_.shell().open(*address ? **address : fallbackAddress(site(), {}));
}

void LinkResolution::reportError(int number, std::string_view description)
{
    exchangeEnded();
    showSocketError(owner(), number, description);
}

void LinkResolution::exchangeEnded()
{
    if (dialog_)
        dialog_->unload();
}

QWidget* LinkResolution::owner() const
{
    return qobject_cast<QWidget*>(parent())->window();
}

} // namespace quarrynet
