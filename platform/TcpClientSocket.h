#pragma once

#include <QObject>
#include <QTcpSocket>

#include "common/FetchSession.h"
#include "platform/ResetWitness.h"

namespace quarrynet {

/// A TCP client socket with the operations, events and ten states that the fetch cycle is written in.
///
/// Never goes through a proxy of its own accord: the request text alone decides that. Error numbers are WinSock's,
/// which people can look up: 10061 refused, 11001 host not found, 10054 reset, 10060 timed out, 10051 network
/// unreachable, 10053 aborted, 10049 for a port that does not exist.
class TcpClientSocket final : public QObject, public ClientSocket
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TcpClientSocket)
    Q_PROPERTY(int state READ stateNumber)

public:
    TcpClientSocket(const QString& name, QObject* parent);
    ~TcpClientSocket() override;

    void Close() override;
    void Connect(std::string_view host, int port) override;
    void SendData(std::string_view bytes) override;
    void GetData(std::string& text) override;
    SocketState State() const override;

    struct WinSockError;

signals:
    void connected();
    void dataArrival();
    void sendProgress();
    void sendComplete();
    /// The server closed the connection; everything that it sent has been announced before.
    void closedByPeer();
    /// The connection failed; no other signal follows. `description` is readable English.
    void failed(int number, const QString& description);

private:
    int stateNumber() const { return static_cast<int>(State()); }
    /// Ends the connection, if there is one. Nothing more is heard of it.
    void leave();
    void fail(const WinSockError& error);
    void socketFailed(QAbstractSocket::SocketError error);
    void bytesWritten();

    // A socket object a connection: an event that was on its way when Close was called belongs to the past.
    QTcpSocket* socket_ = nullptr;
    ResetWitness witness_;
    SocketState ended_ = SocketState::Closed; // the state while no socket is at work
};

} // namespace quarrynet
