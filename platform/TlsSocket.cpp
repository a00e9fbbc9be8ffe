#include "platform/TlsSocket.h"

#include <chrono>

#include <QSslCertificate>
#include <QSslConfiguration>

namespace quarrynet {

namespace {

// The toolkit has a limit for connecting, and none for the handshake after it. This is the same one.
constexpr std::chrono::seconds kHandshakeLimit(30);

} // namespace

bool TlsSocket::isAvailable()
{
    return supportsSsl();
}

TlsSocket::TlsSocket(const QByteArray& trusted, QObject* parent) : QSslSocket(parent), limit_(this)
{
    QSslConfiguration configuration = sslConfiguration();
    configuration.setProtocol(QSsl::TlsV1_2OrLater);
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    // Setting any certificates ends the loading of the system's on demand, so that they must be added as well.
    if (!trusted.isEmpty())
        configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() + QSslCertificate::fromData(trusted));
    setSslConfiguration(configuration);

    limit_.setSingleShot(true);
    limit_.setInterval(kHandshakeLimit);
    connect(&limit_, &QTimer::timeout, this, [this] { emit refused(handshakeTimeoutFault()); });
    connect(this, &QAbstractSocket::connected, &limit_, qOverload<>(&QTimer::start));
    connect(this, &QSslSocket::encrypted, this, &TlsSocket::handshakeEnded);
    connect(this, &QSslSocket::alertReceived, this, [this](QSsl::AlertLevel, QSsl::AlertType type) { alerted(type); });
}

void TlsSocket::connectTo(const QString& host, quint16 port)
{
    name_ = nameToVerify(host);
    connectToHostEncrypted(host, port, name_);
}

std::optional<TlsFault> TlsSocket::faultOf(QAbstractSocket::SocketError error) const
{
    switch (error) {
    case QAbstractSocket::SslHandshakeFailedError:
        if (!sslHandshakeErrors().isEmpty())
            return certificateFault(sslHandshakeErrors(), name_);
        [[fallthrough]];
    case QAbstractSocket::SslInternalError:
    case QAbstractSocket::SslInvalidUserDataError:
        if (alert_)
            return alertFault(*alert_);
        if (ready_)
            return connectionFault(errorString());
        return closeNotified_ ? closedHandshakeFault() : handshakeFault(errorString());
    case QAbstractSocket::RemoteHostClosedError:
        if (alert_)
            return alertFault(*alert_);
        if (!ready_)
            return closedHandshakeFault();
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

void TlsSocket::handshakeEnded()
{
    limit_.stop();
    if (!certificateNames(peerCertificate(), name_)) {
        emit refused(certificateFault({QSslError(QSslError::HostNameMismatch, peerCertificate())}, name_));
        return;
    }
    ready_ = true;
    emit ready();
}

void TlsSocket::alerted(QSsl::AlertType alert)
{
    if (alert == QSsl::AlertType::CloseNotify)
        closeNotified_ = true;
    else if (alert != QSsl::AlertType::UserCancelled)
        alert_ = alert;
}

} // namespace quarrynet
