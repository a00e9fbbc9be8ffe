#include "platform/TcpClientSocket.h"

#include <QHostAddress>
#include <QNetworkProxy>

#ifdef Q_OS_WIN
#include <winsock2.h>
#else
#include <poll.h>
#endif

#include "platform/text_border.h"

namespace quarrynet {

namespace {

struct WinSockError
{
    int number;
    const char* description;
};

constexpr WinSockError kAborted = {10053, "Connection is aborted due to timeout or other failure"};
constexpr WinSockError kReset = {10054, "The connection is reset by remote side"};
constexpr WinSockError kNoSuchPort = {10049, "The remote address is not valid: a port is a number from 1 to 65535"};

WinSockError winSockError(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return {10061, "Connection is forcefully rejected"};
    case QAbstractSocket::HostNotFoundError:
        return {11001, "Host not found"};
    case QAbstractSocket::RemoteHostClosedError:
        return kReset;
    case QAbstractSocket::SocketTimeoutError:
        return {10060, "The attempt to connect timed out"};
    case QAbstractSocket::NetworkError:
        return {10051, "The network cannot be reached from this host at this time"};
    case QAbstractSocket::SocketResourceError:
        return {10055, "No buffer space is available"};
    case QAbstractSocket::SocketAccessError:
        return {10013, "Permission to use the network was denied"};
    default:
        return kAborted;
    }
}

// Qt reports a reset (RST) as it does an orderly end (FIN). Only after a reset is the other direction shut as well.
bool wasReset(qintptr descriptor)
{
#ifdef Q_OS_WIN
    char byte = 0;
    return ::recv(static_cast<SOCKET>(descriptor), &byte, 1, MSG_PEEK) == SOCKET_ERROR &&
           ::WSAGetLastError() == WSAECONNRESET;
#else
    pollfd state = {static_cast<int>(descriptor), POLLIN, 0};
    return ::poll(&state, 1, 0) == 1 && (state.revents & (POLLHUP | POLLERR)) != 0;
#endif
}

} // namespace

TcpClientSocket::TcpClientSocket(const QString& name, QObject* parent) : QObject(parent)
{
    setObjectName(name);
}

TcpClientSocket::~TcpClientSocket()
{
    Close();
}

void TcpClientSocket::Close()
{
    ended_ = SocketState::Closed;
    if (!socket_)
        return;
    socket_->disconnect(this);
    socket_->abort();
    socket_->deleteLater(); // Close is called from the socket's own signals
    socket_ = nullptr;
}

void TcpClientSocket::Connect(std::string_view host, int port)
{
    Close();
    socket_ = new QTcpSocket(this);
    socket_->setProxy(QNetworkProxy::NoProxy);
    connect(socket_, &QTcpSocket::connected, this, &TcpClientSocket::connected);
    connect(socket_, &QTcpSocket::readyRead, this, &TcpClientSocket::dataArrival);
    connect(socket_, &QTcpSocket::bytesWritten, this, &TcpClientSocket::bytesWritten);
    connect(socket_, &QTcpSocket::errorOccurred, this, &TcpClientSocket::socketFailed);
    // Queued, so that no event reaches a caller before its start is finished, not even a refusal known at once.
    QMetaObject::invokeMethod(
        socket_,
        [this, name = toText(host), port] {
            if (port < 1 || port > 65535)
                fail(kNoSuchPort.number, QString::fromLatin1(kNoSuchPort.description));
            else
                socket_->connectToHost(name, static_cast<quint16>(port));
        },
        Qt::QueuedConnection);
}

void TcpClientSocket::SendData(std::string_view bytes)
{
    if (socket_)
        socket_->write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void TcpClientSocket::GetData(std::string& text)
{
    if (!socket_)
        return;
    const auto had = text.size();
    text.resize(had + static_cast<std::size_t>(socket_->bytesAvailable()));
    const qint64 got = socket_->read(text.data() + had, static_cast<qint64>(text.size() - had));
    text.resize(had + static_cast<std::size_t>(got > 0 ? got : 0));
}

SocketState TcpClientSocket::State() const
{
    if (!socket_ || ended_ != SocketState::Closed)
        return ended_;
    switch (socket_->state()) {
    case QAbstractSocket::HostLookupState:
        return SocketState::ResolvingHost;
    case QAbstractSocket::ConnectingState:
        return SocketState::Connecting;
    case QAbstractSocket::ConnectedState:
        return SocketState::Connected;
    case QAbstractSocket::ClosingState:
        return SocketState::Closing;
    case QAbstractSocket::ListeningState:
        return SocketState::Listening;
    case QAbstractSocket::BoundState:
        return SocketState::Open;
    case QAbstractSocket::UnconnectedState:
        break;
    }
    return SocketState::Open;
}

void TcpClientSocket::fail(int number, const QString& description)
{
    ended_ = SocketState::Error;
    emit failed(number, description);
}

void TcpClientSocket::socketFailed(QAbstractSocket::SocketError error)
{
    if (error == QAbstractSocket::RemoteHostClosedError && !wasReset(socket_->socketDescriptor())) {
        ended_ = SocketState::Closing;
        // The rest of what was received is announced before the end of it.
        if (socket_->bytesAvailable() > 0)
            emit dataArrival();
        if (ended_ == SocketState::Closing)
            emit closedByPeer();
        return;
    }
    const WinSockError known = winSockError(error);
    fail(known.number, QString::fromLatin1(known.description));
}

void TcpClientSocket::bytesWritten()
{
    emit sendProgress();
    if (socket_ && socket_->bytesToWrite() == 0)
        emit sendComplete();
}

} // namespace quarrynet
