#pragma once

#include <optional>

#include <QSslSocket>
#include <QTimer>

#include "platform/tls_faults.h"

namespace quarrynet {

/// A client socket of TLS 1.2 or later that verifies the server's certificate and name.
///
/// The certificates that the system trusts are trusted. Revocation is not checked. The toolkit loads its TLS library
/// with the first socket, which takes time, so one is made only when it is needed.
class TlsSocket final : public QSslSocket
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TlsSocket)

public:
    /// Returns whether the system has a TLS library that the toolkit can use. Without one, no socket may be made.
    static bool isAvailable();

    /// `trusted` are certificates in PEM format to trust besides the system's.
    TlsSocket(const QByteArray& trusted, QObject* parent);

    /// Starts connecting. `host` is a name or an address.
    void connectTo(const QString& host, quint16 port);

    /// Returns whether the handshake has ended and the server's certificate was accepted.
    bool isReady() const { return ready_; }

    /// Returns whether the server announced the end of its data (close_notify, RFC 8446 section 6.1).
    bool wasClosedInOrder() const { return closeNotified_; }

    /// Returns what ended the connection, for the error that it reported, or nothing when TLS has no part in it.
    std::optional<TlsFault> faultOf(QAbstractSocket::SocketError error) const;

signals:
    /// The handshake has ended and the server's certificate was accepted. Nothing was sent before.
    void ready();
    /// The server's certificate is not accepted, or the handshake takes longer than the toolkit lets a connection take.
    void refused(const quarrynet::TlsFault& fault);

private:
    void handshakeEnded();
    void alerted(QSsl::AlertType alert);

    QString name_; // the one that the certificate must have
    QTimer limit_;
    bool ready_ = false;
    bool closeNotified_ = false;
    std::optional<QSsl::AlertType> alert_;
};

} // namespace quarrynet
