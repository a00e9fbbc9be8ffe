#include "platform/tls_faults.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDateTime>
#include <QHostAddress>
#include <QSslCertificate>
#include <QUrl>

namespace quarrynet {

namespace {

enum FaultNumber
{
    // WinSock's
    ProtocolNotSupported = 10043,
    TimedOut = 10060,
    // those of Windows' Internet functions
    CertificateDate = 12037,
    CertificateName = 12038,
    ClientCertificateNeeded = 12044,
    UnknownIssuer = 12045,
    SecureChannel = 12157,
    InvalidCertificate = 12169,
    RevokedCertificate = 12170,
};

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(TlsFaults)
};

QString day(const QDateTime& time)
{
    return time.toUTC().date().toString(Qt::ISODate);
}

TlsFault faultOf(const QSslError& error, const QString& name)
{
    switch (error.error()) {
    case QSslError::CertificateExpired:
        return {CertificateDate, Texts::tr("the certificate expired on %1").arg(day(error.certificate().expiryDate()))};
    case QSslError::CertificateNotYetValid:
        return {CertificateDate,
                Texts::tr("the certificate is not valid before %1").arg(day(error.certificate().effectiveDate()))};
    case QSslError::HostNameMismatch:
        return wrongNameFault(name);
    case QSslError::SelfSignedCertificate:
        return {UnknownIssuer, Texts::tr("the certificate is self-signed")};
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetIssuerCertificate:
    case QSslError::UnableToGetLocalIssuerCertificate:
    case QSslError::UnableToVerifyFirstCertificate:
    case QSslError::CertificateUntrusted:
        return {UnknownIssuer, Texts::tr("the certificate's issuer is unknown to this system")};
    case QSslError::CertificateRevoked:
    case QSslError::CertificateBlacklisted:
        return {RevokedCertificate, Texts::tr("the certificate is revoked")};
    default:
        return {InvalidCertificate, error.errorString()};
    }
}

/// Returns the part of a toolkit's text without the codes of its TLS library ("error:0A00010B:SSL routines::").
QString withoutCodes(const QString& reason)
{
    const qsizetype codes = reason.indexOf(QLatin1String("error:"));
    const qsizetype end = reason.lastIndexOf(u':');
    if (codes < 0 || end < codes)
        return reason;
    return reason.mid(end + 1).trimmed();
}

} // namespace

QString nameToVerify(const QString& host)
{
    QHostAddress address(host);
    if (!address.isNull()) {
        address.setScopeId({}); // belongs to this machine; a certificate cannot have it
        return address.toString();
    }
    QString name = QString::fromLatin1(QUrl::toAce(host)).toLower();
    if (name.endsWith(u'.'))
        name.chop(1);
    return name;
}

bool certificateNames(const QSslCertificate& certificate, const QString& name)
{
    const QMultiMap<QSsl::AlternativeNameEntryType, QString> names = certificate.subjectAlternativeNames();
    const QHostAddress address(name);
    if (!address.isNull()) {
        const QStringList addresses = names.values(QSsl::IpAddressEntry);
        return std::any_of(addresses.begin(), addresses.end(),
                           [&](const QString& entry) { return QHostAddress(entry) == address; });
    }
    const qsizetype firstDot = name.indexOf(u'.');
    const QString wildcard = firstDot > 0 ? u'*' + name.mid(firstDot) : QString();
    const QStringList hosts = names.values(QSsl::DnsEntry);
    return std::any_of(hosts.begin(), hosts.end(), [&](const QString& entry) {
        const QString known = QString::fromLatin1(QUrl::toAce(entry)).toLower();
        return known == name || (!wildcard.isEmpty() && entry.toLower() == wildcard);
    });
}

TlsFault wrongNameFault(const QString& name)
{
    return {CertificateName, Texts::tr("the certificate is not for %1").arg(name)};
}

TlsFault certificateFault(const QList<QSslError>& errors, const QString& name)
{
    QStringList descriptions;
    for (const QSslError& error : errors) {
        const QString description = faultOf(error, name).description;
        if (!descriptions.contains(description))
            descriptions.append(description);
    }
    return {faultOf(errors.first(), name).number,
            Texts::tr("The server cannot be trusted: %1").arg(descriptions.join(QLatin1String("; ")))};
}

TlsFault alertFault(QSsl::AlertType alert)
{
    switch (alert) {
    case QSsl::AlertType::CertificateRequired:
        return {ClientCertificateNeeded, Texts::tr("The server demands a certificate of its clients")};
    case QSsl::AlertType::ProtocolVersion:
        return {SecureChannel, Texts::tr("The server does not support TLS 1.2 or later")};
    case QSsl::AlertType::UnrecognizedName:
        return {CertificateName, Texts::tr("The server does not know the host name")};
    default:
        return {SecureChannel,
                Texts::tr("The server refused the secure connection (TLS alert %1)").arg(static_cast<int>(alert))};
    }
}

TlsFault handshakeFault(const QString& reason)
{
    return {SecureChannel, Texts::tr("The server does not speak TLS as it should: %1").arg(withoutCodes(reason))};
}

TlsFault closedHandshakeFault()
{
    return {SecureChannel, Texts::tr("The server closed the connection during the TLS handshake")};
}

TlsFault handshakeTimeoutFault()
{
    return {TimedOut, Texts::tr("The attempt to connect timed out: the server does not answer over TLS")};
}

TlsFault connectionFault(const QString& reason)
{
    return {SecureChannel, Texts::tr("The secure connection failed: %1").arg(withoutCodes(reason))};
}

TlsFault noTlsFault()
{
    return {ProtocolNotSupported,
            Texts::tr("No TLS library is installed, so addresses with https:// cannot be fetched")};
}

} // namespace quarrynet
