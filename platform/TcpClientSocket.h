#pragma once

#include <QObject>
#include <QTcpSocket>

#include "common/FetchSession.h"
#include "platform/ResetWitness.h"

namespace quarrynet {

struct WinSockError;

class TlsSocket;

/// A TCP client socket with the operations, events and ten states that the fetch cycle uses.
///
/// It never uses a proxy by itself; callers connect to one like to any host. Error numbers are those of WinSock, which
/// users can look up: 10061 refused, 11001 host not found, 10054 reset, 10060 timed out, 10051 network unreachable,
/// 10065 host unreachable, 10053 aborted, 10049 for a port that does not exist. `TlsFault` has those of TLS.
///
/// Until the handshake of TLS has ended and the certificate was accepted, the state is Connecting.
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
    void ConnectTls(std::string_view host, int port) override;
    void SendData(std::string_view bytes) override;
    void GetData(std::string& text) override;
    SocketState State() const override;

    /// Returns true from Connect until the connection fails or either side closes it.
    bool isOpen() const { return socket_ && ended_ == SocketState::Closed; }

    /// Sets certificates to trust besides the system's, in PEM format. Further connections use them.
    void setTrustedCertificates(const std::string& pem) { trustedCertificates_ = pem; }

signals:
    /// isOpen() has changed.
    void openChanged(bool open);
    void connected();
    void dataArrival();
    void sendProgress();
    void sendComplete();
    /// The server closed the connection. All its data has been announced before.
    void closedByPeer();
    /// The connection over TLS ended without the TLS close. All data that arrived has been announced before.
    void cutOff();
    /// The connection failed; no other signal follows. `description` is an English text to show.
    void failed(int number, const QString& description);

private:
    int stateNumber() const { return static_cast<int>(State()); }
    /// Ends the connection, if there is one. It emits no further signals.
    void leave();
    void announce();
    /// Closes the current socket and starts connecting a new one.
    void open(std::string_view host, int port, bool tls);
    void fail(const WinSockError& error);
    void fail(int number, const QString& description);
    void socketFailed(QAbstractSocket::SocketError error);
    void bytesWritten();

    // Each connection has its own socket object, so events that were still queued when Close was called are ignored.
    QTcpSocket* socket_ = nullptr;
    TlsSocket* tls_ = nullptr; // the same object, if it is one of TLS
    std::string trustedCertificates_;
    ResetWitness witness_;
    SocketState ended_ = SocketState::Closed; // the state while there is no socket
    bool announcedOpen_ = false;
};

} // namespace quarrynet
