#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QByteArray>
#include <QHash>
#include <QTcpServer>

class QTcpSocket;

/// A service on a free loopback port, owned by the test. It records every request and responds as configured:
/// completely, in pieces, late, cut short or never.
class LoopbackService final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LoopbackService)

public:
    explicit LoopbackService(QObject* parent = nullptr);
    /// A service whose connections `server` makes, such as one of TLS.
    explicit LoopbackService(std::unique_ptr<QTcpServer> server, QObject* parent = nullptr);
    ~LoopbackService() override;

    quint16 port() const { return server_->serverPort(); }

    /// Sets the response to every further request; the connection is closed after it.
    void answerWith(const QByteArray& body, const QByteArray& header = "HTTP/1.1 200 OK\r\nContent-Type: text/html");

    /// Sets the exact bytes of every response, header included, in these pieces.
    void answerWithPieces(const QList<QByteArray>& pieces);

    /// Responds according to the request's target (its second word), or with 404 to any other.
    void answerByTarget(std::function<QByteArray(const QByteArray& target)> bodyFor);

    /// Accepts requests without responding until release() or reset() is called.
    void stall() { mode_ = Mode::Stall; }

    /// Sends the response that stall() held back on all waiting connections, and closes them.
    void release();
    /// Ends all waiting connections with a reset.
    void reset();
    static void resetOne(QTcpSocket& connection);
    /// Sends bytes on all open connections and keeps them open.
    void send(const QByteArray& bytes);
    /// Closes all open connections in an orderly way.
    void finish();
    /// Ends what is sent on all open connections, over TLS without the TLS close.
    void cut();

    /// The requests so far, each with its header block.
    const QList<QByteArray>& requests() const { return requests_; }
    /// The last request's first line.
    QByteArray lastRequestLine() const;
    /// The first lines of all requests.
    QList<QByteArray> requestLines() const;
    /// Returns whether the system has taken everything that was sent.
    bool isSent() const;
    int openConnections() const;

signals:
    void requested();

private:
    enum class Mode
    {
        Answer,
        Stall,
        ByTarget
    };

    void accept();
    void read(QTcpSocket* connection);
    void answer(QTcpSocket* connection, const QByteArray& request);

    std::unique_ptr<QTcpServer> server_;
    Mode mode_ = Mode::Answer;
    QList<QByteArray> pieces_;
    std::function<QByteArray(const QByteArray&)> bodyFor_;
    QList<QByteArray> requests_;
    QHash<QTcpSocket*, QByteArray> open_;
};
