#pragma once

#include <QHash>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

// Receivers of the cues' triggers for the tests, on 127.0.0.1.

// A UDP port of 127.0.0.1 that keeps every datagram it receives.
struct OscReceiver {
    OscReceiver()
    {
        socket.bind(QHostAddress::LocalHost, 0);
        QObject::connect(&socket, &QUdpSocket::readyRead, [this] {
            while (socket.hasPendingDatagrams()) {
                QByteArray d(int(socket.pendingDatagramSize()), Qt::Uninitialized);
                socket.readDatagram(d.data(), d.size());
                datagrams.append(d);
            }
        });
    }
    QUdpSocket socket;
    QList<QByteArray> datagrams;
};

// A bare HTTP server on 127.0.0.1: keeps each request's first line and body, and answers with
// `status`, or not at all when `silent`.
struct HttpReceiver {
    HttpReceiver()
    {
        server.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&server, &QTcpServer::newConnection, [this] {
            while (QTcpSocket *socket = server.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] {
                    buffer[socket] += socket->readAll();
                    const QByteArray &data = buffer[socket];
                    const qsizetype end = data.indexOf("\r\n\r\n");
                    if (end < 0)
                        return;
                    const qsizetype lengthAt = data.toLower().indexOf("content-length:");
                    const int length = lengthAt < 0 ? 0 : data.mid(lengthAt + 15, data.indexOf('\r', lengthAt) - lengthAt - 15).trimmed().toInt();
                    if (data.size() < end + 4 + length)
                        return;
                    requests.append(data.left(data.indexOf("\r\n")) + ' ' + data.mid(end + 4, length));
                    if (!silent)
                        socket->write("HTTP/1.1 " + QByteArray::number(status)
                                      + " X\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
                });
            }
        });
    }
    QString url(const char *path) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(server.serverPort()).arg(QLatin1StringView(path));
    }
    QTcpServer server;
    QHash<QTcpSocket *, QByteArray> buffer;
    QList<QByteArray> requests;
    int status = 200;
    bool silent = false;
};
