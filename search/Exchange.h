#pragma once

#include "common/FetchSession.h"
#include "platform/TcpClientSocket.h"

namespace quarrynet {

/// A client socket with its cycle: what happens to the socket calls the cycle's functions of the same meaning.
class Exchange final
{
public:
    /// `name`: the socket's control name; it becomes a child of `parent`. `tab` and `shared` must outlive the exchange.
    Exchange(const QString& name, const FetchSettings& settings, FetchTab& tab, ReceiveState& shared, QObject* parent);

    TcpClientSocket& socket() { return socket_; }
    FetchSession& session() { return session_; }

private:
    Q_DISABLE_COPY_MOVE(Exchange)

    TcpClientSocket socket_;
    FetchSession session_;
};

} // namespace quarrynet
