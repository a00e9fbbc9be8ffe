#pragma once

#include <QAbstractSocket>
#include <QCoreApplication>
#include <QString>

namespace quarrynet {

/// An error number of WinSock, which users can look up, with a description.
struct WinSockError
{
    int number;
    const char* description; ///< in English

    /// Returns the description in the program's language.
    QString shownDescription() const { return QCoreApplication::translate("winsock_errors", description); }
};

inline constexpr WinSockError kNoSuchPort = {
    10049, QT_TRANSLATE_NOOP("winsock_errors", "The remote address is not valid: a port is a number from 1 to 65535")};
inline constexpr WinSockError kAborted = {
    10053, QT_TRANSLATE_NOOP("winsock_errors", "Connection is aborted due to timeout or other failure")};
inline constexpr WinSockError kReset = {10054,
                                        QT_TRANSLATE_NOOP("winsock_errors", "The connection is reset by remote side")};
inline constexpr WinSockError kHostNotFound = {11001, QT_TRANSLATE_NOOP("winsock_errors", "Host not found")};

/// Returns the error that the toolkit reports as `error` with the text `description`, untranslated or in the program's
/// language. The text matters, because the toolkit gives a connection that timed out, a host and a network that cannot
/// be reached the same number.
WinSockError winSockError(QAbstractSocket::SocketError error, const QString& description);

/// Returns the error with this number of WinSock; kAborted if it is none that ends a connection.
WinSockError winSockError(int number);

} // namespace quarrynet
