#pragma once

#include "common/FetchSession.h"
#include "platform/TcpClientSocket.h"

namespace quarrynet {

/// A client socket with its fetch cycle. Each event of the socket calls the matching function of the cycle.
class Exchange final
{
public:
    /// `name` is the control name of the socket, which becomes a child of `parent`. `tab` and `shared` must outlive the
    /// exchange.
    Exchange(const QString& name, const FetchSettings& settings, FetchTab& tab, ReceiveState& shared, QObject* parent);

    TcpClientSocket& socket() { return socket_; }
    FetchSession& session() { return session_; }

private:
    Q_DISABLE_COPY_MOVE(Exchange)

    TcpClientSocket socket_;
    FetchSession session_;
};

} // namespace quarrynet
