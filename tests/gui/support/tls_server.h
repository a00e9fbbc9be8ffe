#pragma once

#include <memory>

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>

#include "tests/support/certificates.h"

/// Returns a server of TLS with a certificate of the test. `change` may change its configuration.
template <class Change>
std::unique_ptr<QTcpServer> makeTlsServer(const quarrynet::certificates::Issued& identity, Change change)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(QByteArray::fromStdString(identity.certificate)));
    configuration.setPrivateKey(QSslKey(QByteArray::fromStdString(identity.key), QSsl::Ec));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    change(configuration);
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(configuration);
    return server;
}

inline std::unique_ptr<QTcpServer> makeTlsServer(const quarrynet::certificates::Issued& identity)
{
    return makeTlsServer(identity, [](QSslConfiguration&) {});
}
