#pragma once

#include <functional>

#include <QBuffer>
#include <QHash>
#include <QImage>
#include <QTcpServer>
#include <QTcpSocket>

/// An HTTP server on a free loopback port, owned by the test. It answers each request by its target, which is the
/// absolute address when the server is used as a proxy, and closes the connection.
class PictureServer : public QObject
{
public:
    PictureServer()
    {
        connect(&server_, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* connection = server_.nextPendingConnection())
                serve(connection);
        });
        server_.listen(QHostAddress::LocalHost);
    }

    quint16 port() const { return server_.serverPort(); }
    QString address(const QString& target) const
    {
        using namespace Qt::Literals::StringLiterals;
        return u"http://127.0.0.1:%1%2"_s.arg(port()).arg(target);
    }

    /// `answer` is the whole response. Adds a Content-Length if it has none: a client that does not know whether a
    /// response is complete may send its request again.
    void answer(const QByteArray& target, const QByteArray& answer) { answers_[target] = withLength(answer); }

    void answerWithPicture(const QByteArray& target, Qt::GlobalColor color, const QByteArray& header = {})
    {
        answer(target, "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n" + header + "\r\n" + png(color));
    }

    static QByteArray png(Qt::GlobalColor color)
    {
        QImage image(90, 60, QImage::Format_RGB32);
        image.fill(color);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

    /// The complete requests so far, and their targets.
    QList<QByteArray> requests;
    QList<QByteArray> targets() const
    {
        QList<QByteArray> result;
        for (const QByteArray& request : requests)
            result.append(request.split(' ').value(1));
        return result;
    }

private:
    static QByteArray withLength(QByteArray answer)
    {
        const qsizetype end = answer.indexOf("\r\n\r\n");
        if (answer.startsWith("HTTP/") && end >= 0 && !answer.left(end).contains("Content-Length"))
            answer.insert(end, "\r\nContent-Length: " + QByteArray::number(answer.size() - end - 4));
        return answer;
    }

    void serve(QTcpSocket* connection)
    {
        auto received = std::make_shared<QByteArray>();
        connect(connection, &QTcpSocket::disconnected, connection, &QObject::deleteLater);
        connect(connection, &QTcpSocket::readyRead, this, [this, connection, received] {
            *received += connection->readAll();
            if (!received->contains("\r\n\r\n"))
                return;
            requests.append(*received);
            const QByteArray target = received->split(' ').value(1);
            received->clear();
            const QByteArray none = withLength("HTTP/1.1 404 Not Found\r\nContent-Type: text/html\r\n\r\nNothing");
            connection->write(answers_.value(target, none));
            connection->disconnectFromHost();
        });
    }

    QTcpServer server_;
    QHash<QByteArray, QByteArray> answers_;
};
