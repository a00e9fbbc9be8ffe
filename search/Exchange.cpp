#include "search/Exchange.h"

#include "platform/text_border.h"

namespace quarrynet {

Exchange::Exchange(const QString& name, const FetchSettings& settings, FetchTab& tab, ReceiveState& shared,
                   QObject* parent)
    : socket_(name, parent), session_(settings, socket_, tab, shared)
{
    using Socket = TcpClientSocket;
    QObject::connect(&socket_, &Socket::connected, &socket_, [this] { session_.connected(); });
    QObject::connect(&socket_, &Socket::sendProgress, &socket_, [this] { session_.sendProgress(); });
    QObject::connect(&socket_, &Socket::sendComplete, &socket_, [this] { session_.sendComplete(); });
    QObject::connect(&socket_, &Socket::dataArrival, &socket_, [this] { session_.dataArrived(); });
    QObject::connect(&socket_, &Socket::closedByPeer, &socket_, [this] { session_.closed(); });
    QObject::connect(&socket_, &Socket::cutOff, &socket_, [this] { session_.cutOff(); });
    QObject::connect(&socket_, &Socket::failed, &socket_,
                     [this](int number, const QString& description) { session_.failed(number, toBytes(description)); });
}

} // namespace quarrynet
