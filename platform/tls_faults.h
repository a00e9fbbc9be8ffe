#pragma once

#include <QList>
#include <QSsl>
#include <QSslError>
#include <QString>

namespace quarrynet {

/// A fault of a TLS connection. The numbers are those of Windows' Internet functions (12037 certificate out of date,
/// 12038 certificate for another name, 12045 unknown issuer, 12170 revoked, 12169 invalid in another way, 12044
/// certificate of the client demanded, 12157 other fault of the secure connection), because WinSock has none for TLS.
struct TlsFault
{
    int number;
    QString description;
};

/// Returns the name that the certificate of `host` must have: an address in its usual form, or a name in ASCII form
/// without the root's dot, which certificates never have.
QString nameToVerify(const QString& host);

/// Returns whether the subject's alternative names of `certificate` include `name` (from nameToVerify); a wildcard
/// stands for a whole leftmost label (RFC 9525 section 6.3). The toolkit also accepts a common name, to which the
/// limits of an issuer do not apply.
bool certificateNames(const QSslCertificate& certificate, const QString& name);

/// Returns the fault of a certificate that was issued for other names than `name`.
TlsFault wrongNameFault(const QString& name);

/// Returns the faults of a server's certificate as one, with the number of the first. `errors` must not be empty.
TlsFault certificateFault(const QList<QSslError>& errors, const QString& name);

/// Returns the fault that the server's alert reports.
TlsFault alertFault(QSsl::AlertType alert);

/// Returns the fault of a server that answered the handshake with something else, such as plain HTTP. `reason` is the
/// toolkit's text.
TlsFault handshakeFault(const QString& reason);

/// Returns the fault of a server that closed the connection during the handshake.
TlsFault closedHandshakeFault();

/// Returns the fault of a server that does not answer the handshake.
TlsFault handshakeTimeoutFault();

/// Returns the fault of a connection that broke after the handshake.
TlsFault connectionFault(const QString& reason);

/// Returns the fault of a system without a TLS library.
TlsFault noTlsFault();

} // namespace quarrynet
