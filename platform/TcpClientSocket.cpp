#include "platform/TcpClientSocket.h"

#include <algorithm>
#include <utility>

#include <QHostAddress>
#include <QNetworkProxy>
#include <QUrl>

#include "ground/ascii.h"
#include "platform/TlsSocket.h"
#include "platform/text_border.h"
#include "platform/winsock_errors.h"

namespace quarrynet {

namespace {

// Maximum size of the read buffer, in bytes. Without a limit, the socket would read everything that the system has, and
// keep that memory.
constexpr qint64 kReadAhead = 1024 * 1024;

/// Returns whether `name` is an address or a host name (RFC 1123 section 2.1, plus the underscore, which is in use).
/// Other names cannot exist, but name servers may take minutes to say so. The system would end a name at a NUL, and an
/// address at a blank, and connect to another host.
bool canBeHost(const QString& name)
{
    const QByteArray ascii = QUrl::toAce(name); // empty if a label is empty or too long
    const auto allOf = [](const auto& text, std::string_view marks) {
        return std::all_of(text.begin(), text.end(), [marks](QChar c) {
            const char latin = c.toLatin1();
            return isAsciiAlphanumeric(latin) || (latin != 0 && marks.find(latin) != std::string_view::npos);
        });
    };
    constexpr qsizetype kLongestName = 254; // including the root's dot
    if (!ascii.isEmpty() && ascii.size() <= kLongestName && allOf(QString::fromLatin1(ascii), "-._"))
        return true;
    return allOf(name, ":.%") && QHostAddress(name).protocol() == QAbstractSocket::IPv6Protocol;
}

} // namespace

TcpClientSocket::TcpClientSocket(const QString& name, QObject* parent) : QObject(parent)
{
    setObjectName(name);
}

TcpClientSocket::~TcpClientSocket()
{
    leave();
}

void TcpClientSocket::Close()
{
    ended_ = SocketState::Closed;
    leave();
    announce();
}

void TcpClientSocket::announce()
{
    if (std::exchange(announcedOpen_, isOpen()) != isOpen())
        emit openChanged(isOpen());
}

void TcpClientSocket::leave()
{
    if (!socket_)
        return;
    witness_.forget();
    socket_->disconnect(this);
    // This runs inside the socket's own signals, where an abort would crash it. A queued abort also runs in the event
    // loop of a message box, while a deferred deletion would wait for its end.
    QMetaObject::invokeMethod(socket_, &QAbstractSocket::abort, Qt::QueuedConnection);
    socket_->deleteLater();
    socket_ = nullptr;
    tls_ = nullptr;
}

void TcpClientSocket::Connect(std::string_view host, int port)
{
    open(host, port, false);
}

void TcpClientSocket::ConnectTls(std::string_view host, int port)
{
    open(host, port, true);
}

void TcpClientSocket::open(std::string_view host, int port, bool tls)
{
    Close();
    if (tls && TlsSocket::isAvailable()) {
        socket_ = tls_ = new TlsSocket(QByteArray::fromStdString(trustedCertificates_), this);
        connect(tls_, &TlsSocket::ready, this, &TcpClientSocket::connected);
        connect(tls_, &TlsSocket::refused, this,
                [this](const TlsFault& fault) { fail(fault.number, fault.description); });
    } else {
        socket_ = new QTcpSocket(this);
    }
    socket_->setProxy(QNetworkProxy::NoProxy);
    socket_->setReadBufferSize(kReadAhead);
    connect(socket_, &QTcpSocket::connected, this, [this] {
        witness_.watch(socket_->socketDescriptor());
        if (!tls_)
            emit connected();
    });
    connect(socket_, &QTcpSocket::readyRead, this, &TcpClientSocket::dataArrival);
    connect(socket_, &QTcpSocket::bytesWritten, this, &TcpClientSocket::bytesWritten);
    connect(socket_, &QTcpSocket::errorOccurred, this, &TcpClientSocket::socketFailed);
    // Queued, so that Connect returns before the first event, even if that is an immediate refusal.
    QMetaObject::invokeMethod(
        socket_,
        [this, socket = socket_, name = toText(host), port, tls] {
            if (socket != socket_)
                return; // closed in the meantime
            if (!canBeHost(name))
                fail(kHostNotFound);
            else if (port < 1 || port > 65535)
                fail(kNoSuchPort);
            else if (tls_)
                tls_->connectTo(name, static_cast<quint16>(port));
            else if (const TlsFault fault = noTlsFault(); tls)
                fail(fault.number, fault.description);
            else
                socket->connectToHost(name, static_cast<quint16>(port));
        },
        Qt::QueuedConnection);
    announce();
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
    const QAbstractSocket::SocketState state = socket_->state();
    if (tls_ && !tls_->isReady() && state == QAbstractSocket::ConnectedState)
        return SocketState::Connecting;
    switch (state) {
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

void TcpClientSocket::fail(const WinSockError& error)
{
    fail(error.number, error.shownDescription());
}

void TcpClientSocket::fail(int number, const QString& description)
{
    ended_ = SocketState::Error;
    // While the box about the first error is open, a timed-out connection would also report its end, as if the server
    // had sent everything.
    leave();
    announce();
    emit failed(number, description);
}

void TcpClientSocket::socketFailed(QAbstractSocket::SocketError error)
{
    if (ended_ != SocketState::Closed)
        return; // over TLS, the end of the data and the end of the connection are reported one after the other
    // A server that closed in order may still answer our own close with a reset.
    const bool closedInOrder = tls_ && tls_->wasClosedInOrder();
    // The toolkit reports a broken connection as closed, or as a network that cannot be reached.
    const bool asked = error == QAbstractSocket::RemoteHostClosedError || error == QAbstractSocket::NetworkError;
    const int broken = asked && !closedInOrder ? witness_.failure() : 0;
    if (tls_ && broken == 0) {
        if (const std::optional<TlsFault> fault = tls_->faultOf(error)) {
            fail(fault->number, fault->description);
            return;
        }
    }
    if (error == QAbstractSocket::RemoteHostClosedError && broken == 0) {
        const bool wasCutOff = tls_ && !closedInOrder;
        ended_ = SocketState::Closing;
        announce();
        // The remaining received data is announced before the end.
        if (socket_->bytesAvailable() > 0)
            emit dataArrival();
        if (ended_ != SocketState::Closing)
            return;
        if (wasCutOff)
            emit cutOff();
        else
            emit closedByPeer();
        return;
    }
    fail(broken != 0 ? winSockError(broken) : winSockError(error, socket_->errorString()));
}

void TcpClientSocket::bytesWritten()
{
    emit sendProgress();
    if (socket_ && socket_->bytesToWrite() == 0)
        emit sendComplete();
}

} // namespace quarrynet
