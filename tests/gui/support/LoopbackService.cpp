#include "LoopbackService.h"

#include <algorithm>

#include <QRandomGenerator>
#include <QSslSocket>
#include <QTcpSocket>

#ifdef Q_OS_WIN
#include <winsock2.h>
#else
#include <sys/socket.h>
#endif

namespace {

#ifdef Q_OS_WIN
constexpr int kEndOfSending = SD_SEND;
#else
constexpr int kEndOfSending = SHUT_WR;
#endif

} // namespace

LoopbackService::LoopbackService(QObject* parent) : LoopbackService(std::make_unique<QTcpServer>(), parent) {}

LoopbackService::LoopbackService(std::unique_ptr<QTcpServer> server, QObject* parent)
    : QObject(parent), server_(std::move(server))
{
    // The port must also be valid for a proxy, that is, at most 32767. The system would choose larger ones.
    for (int tries = 0; tries < 1000 && !server_->isListening(); ++tries)
        server_->listen(QHostAddress::LocalHost,
                        static_cast<quint16>(QRandomGenerator::global()->bounded(1024, 32768)));
    if (!server_->isListening())
        qFatal("no free loopback port");
    connect(server_.get(), &QTcpServer::pendingConnectionAvailable, this, &LoopbackService::accept);
}

LoopbackService::~LoopbackService()
{
    for (QTcpSocket* connection : open_.keys())
        connection->disconnect(this);
}

void LoopbackService::answerWith(const QByteArray& body, const QByteArray& header)
{
    answerWithPieces({header + "\r\n\r\n" + body});
}

void LoopbackService::answerWithPieces(const QList<QByteArray>& pieces)
{
    mode_ = Mode::Answer;
    pieces_ = pieces;
}

void LoopbackService::answerByTarget(std::function<QByteArray(const QByteArray&)> bodyFor)
{
    mode_ = Mode::ByTarget;
    bodyFor_ = std::move(bodyFor);
}

QList<QByteArray> LoopbackService::requestLines() const
{
    QList<QByteArray> lines;
    for (const QByteArray& request : requests_)
        lines.append(request.left(request.indexOf("\r\n")));
    return lines;
}

QByteArray LoopbackService::lastRequestLine() const
{
    return requests_.isEmpty() ? QByteArray() : requestLines().last();
}

bool LoopbackService::isSent() const
{
    for (QTcpSocket* connection : open_.keys()) {
        const auto* tls = qobject_cast<QSslSocket*>(connection);
        if (connection->bytesToWrite() > 0 || (tls && tls->encryptedBytesToWrite() > 0))
            return false;
    }
    return true;
}

void LoopbackService::accept()
{
    while (QTcpSocket* connection = server_->nextPendingConnection()) {
        open_.insert(connection, {});
        connect(connection, &QTcpSocket::readyRead, this, [this, connection] { read(connection); });
        connect(connection, &QTcpSocket::disconnected, this, [this, connection] {
            open_.remove(connection);
            connection->deleteLater();
        });
        read(connection);
    }
}

void LoopbackService::read(QTcpSocket* connection)
{
    QByteArray& request = open_[connection];
    request += connection->readAll();
    if (!request.endsWith("\r\n\r\n"))
        return;
    const QByteArray whole = request;
    request.clear();
    requests_.append(whole);
    emit requested();
    answer(connection, whole);
}

void LoopbackService::answer(QTcpSocket* connection, const QByteArray& request)
{
    if (mode_ == Mode::Stall)
        return;
    if (mode_ == Mode::ByTarget) {
        const QByteArray body = bodyFor_(request.split(' ').value(1));
        connection->write(body.isNull() ? QByteArray("HTTP/1.1 404 Not Found\r\n\r\n")
                                        : "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + body);
        connection->disconnectFromHost();
        return;
    }
    for (const QByteArray& piece : pieces_) {
        connection->write(piece);
        connection->flush(); // sends each piece separately, so that it can arrive alone
    }
    connection->disconnectFromHost();
}

void LoopbackService::release()
{
    mode_ = Mode::Answer;
    for (QTcpSocket* connection : open_.keys())
        answer(connection, {});
}

int LoopbackService::openConnections() const
{
#ifdef Q_OS_WIN
    // Under Wine, a socket that has sent something does not learn of a reset before it is used again.
    return static_cast<int>(std::ranges::count_if(open_.keys(), [](const QTcpSocket* connection) {
        const char nothing = 0;
        const auto socket = static_cast<SOCKET>(connection->socketDescriptor());
        return ::send(socket, &nothing, 0, 0) != SOCKET_ERROR || ::WSAGetLastError() == WSAEWOULDBLOCK;
    }));
#else
    return static_cast<int>(open_.size());
#endif
}

void LoopbackService::reset()
{
    for (QTcpSocket* connection : open_.keys())
        resetOne(*connection);
}

void LoopbackService::resetOne(QTcpSocket& connection)
{
    const linger none = {1, 0};
#ifdef Q_OS_WIN
    const auto socket = static_cast<SOCKET>(connection.socketDescriptor());
#else
    const auto socket = static_cast<int>(connection.socketDescriptor());
#endif
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&none), sizeof none);
#ifdef Q_OS_WIN
    ::closesocket(socket); // the toolkit would switch lingering off again before it closes
#endif
    connection.abort();
}

void LoopbackService::send(const QByteArray& bytes)
{
    for (QTcpSocket* connection : open_.keys()) {
        connection->write(bytes);
        connection->flush();
    }
}

void LoopbackService::cut()
{
    for (QTcpSocket* connection : open_.keys()) {
        connection->flush();
        ::shutdown(static_cast<int>(connection->socketDescriptor()), kEndOfSending);
    }
}

void LoopbackService::finish()
{
    for (QTcpSocket* connection : open_.keys())
        connection->disconnectFromHost();
}
