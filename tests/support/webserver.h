// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

namespace plexa::test
{

/// A web server on the loopback device. It gives every request the same answer. If the head of the answer
/// promises a length of its own, the server closes the connection after the answer.
class WebServer : public QTcpServer
{
public:
    WebServer()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *const socket = nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { reply(*socket); });
        });
        listen(QHostAddress::LocalHost);
    }

    QUrl url(const QString &path, const QString &scheme = QStringLiteral("http")) const
    {
        return QUrl(QStringLiteral("%1://127.0.0.1:%2/%3").arg(scheme).arg(serverPort()).arg(path));
    }

    void answerWith(const QByteArray &newBody, const QByteArray &newHead = "200 OK")
    {
        body = newBody;
        head = newHead;
    }

    QByteArray head; ///< status line and more header lines; if empty, the server never answers
    QByteArray body;
    QByteArrayList requests; ///< as they arrived

private:
    void reply(QTcpSocket &socket)
    {
        constexpr char kHandshake = '\x16'; // of TLS, which this server does not speak
        const QByteArray request = socket.peek(socket.bytesAvailable());
        if (!request.contains("\r\n\r\n") && !request.startsWith(kHandshake))
            return; // the rest is on its way
        requests.append(socket.readAll());
        if (head.isEmpty())
            return;
        if (head.contains("Content-Length")) {
            socket.write("HTTP/1.1 " + head + "\r\n\r\n" + body);
            socket.disconnectFromHost();
        } else { // the client disconnects
            socket.write("HTTP/1.1 " + head + "\r\nContent-Length: " + QByteArray::number(body.size()) +
                         "\r\n\r\n" + body);
        }
    }
};

} // namespace plexa::test
