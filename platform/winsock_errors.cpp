#include "platform/winsock_errors.h"

#include <array>

namespace quarrynet {

namespace {

constexpr WinSockError kNoAccess = {10013,
                                    QT_TRANSLATE_NOOP("winsock_errors", "Permission to use the network was denied")};
constexpr WinSockError kNoAddress = {10049, QT_TRANSLATE_NOOP("winsock_errors", "The remote address is not valid")};
constexpr WinSockError kNoNetwork = {
    10051, QT_TRANSLATE_NOOP("winsock_errors", "The network cannot be reached from this host at this time")};
constexpr WinSockError kNetworkReset = {
    10052, QT_TRANSLATE_NOOP("winsock_errors", "The connection has timed out when SO_KEEPALIVE is set")};
constexpr WinSockError kNoBuffers = {10055, QT_TRANSLATE_NOOP("winsock_errors", "No buffer space is available")};
constexpr WinSockError kTimedOut = {10060, QT_TRANSLATE_NOOP("winsock_errors", "The attempt to connect timed out")};
constexpr WinSockError kRefused = {10061, QT_TRANSLATE_NOOP("winsock_errors", "Connection is forcefully rejected")};
constexpr WinSockError kNoHost = {
    10065, QT_TRANSLATE_NOOP("winsock_errors", "The host cannot be reached from this host at this time")};

} // namespace

WinSockError winSockError(QAbstractSocket::SocketError error, const QString& description)
{
    // Windows itself gives up connecting after 21 seconds, before the toolkit's own limit.
    const auto says = [&](const char* text) {
        return description == QCoreApplication::translate("QNativeSocketEngine", text);
    };
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return kRefused;
    case QAbstractSocket::HostNotFoundError:
        return kHostNotFound;
    case QAbstractSocket::RemoteHostClosedError:
        return kReset;
    case QAbstractSocket::SocketTimeoutError:
        return kTimedOut;
    case QAbstractSocket::NetworkError:
        if (says("Connection timed out") || says("Network operation timed out"))
            return kTimedOut;
        if (says("Host unreachable"))
            return kNoHost;
        if (says("The address is not available"))
            return kNoAddress;
        return kNoNetwork;
    case QAbstractSocket::SocketResourceError:
        return kNoBuffers;
    case QAbstractSocket::SocketAccessError:
        return kNoAccess;
    default:
        return kAborted;
    }
}

WinSockError winSockError(int number)
{
    constexpr std::array kErrors = {kNoNetwork, kNetworkReset, kAborted, kReset, kNoBuffers, kTimedOut, kNoHost};
    for (const WinSockError& error : kErrors) {
        if (error.number == number)
            return error;
    }
    return kAborted;
}

} // namespace quarrynet
