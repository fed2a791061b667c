#include "requestgate.h"

#include "weberror.h"

#include <QTcpSocket>
#include <QTimer>

namespace {
const char handedOverProperty[] = "kaironHandedOver";
const char upgradedProperty[] = "kaironUpgraded";

// The value of one header in a raw header block, or an empty array.
QByteArray headerValue(const QByteArray &headers, const QByteArray &name)
{
    const QList<QByteArray> lines = headers.split('\n');
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray &line = lines[i];
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().compare(name, Qt::CaseInsensitive) == 0)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}
} // namespace

RequestGate::RequestGate(QObject *parent) : QTcpServer(parent) {}

QByteArray RequestGate::errorResponse(int status, const QByteArray &reason, const QString &message)
{
    const QByteArray body = webErrorBody(message);
    return "HTTP/1.1 " + QByteArray::number(status) + ' ' + reason
           + "\r\nContent-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size())
           + "\r\nConnection: close\r\n\r\n" + body;
}

void RequestGate::incomingConnection(qintptr socketDescriptor)
{
    auto *socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(socketDescriptor)) {
        delete socket;
        return;
    }
    // Answers and pushes are small and wanted now: none waits for the peer to acknowledge the
    // one before it (a WebSocket frame's header and its payload are two writes).
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    auto *deadline = new QTimer(socket);
    deadline->setSingleShot(true);
    connect(deadline, &QTimer::timeout, socket, [this, socket] {
        if (!socket->property(handedOverProperty).toBool())
            reject(socket, 408, "Request Timeout",
                   QStringLiteral("Requête trop lente : elle n'est pas arrivée en entier à temps"));
    });
    deadline->start(m_timeoutMs);
    // Connected before the HTTP server's own handler, so it sees each arrival first.
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { inspect(socket); });
}

void RequestGate::inspect(QTcpSocket *socket)
{
    if (socket->property(upgradedProperty).toBool())
        return;
    if (socket->property(handedOverProperty).toBool()) {
        if (socket->bytesAvailable() > maxRequestBytes)
            reject(socket, 413, "Payload Too Large",
                   QStringLiteral("Requête trop volumineuse (64 Kio au plus)"));
        return;
    }
    const QByteArray data = socket->peek(maxRequestBytes + 1);
    const qsizetype headerEnd = data.indexOf("\r\n\r\n");
    if (headerEnd < 0) {
        if (data.size() > maxRequestBytes)
            reject(socket, 413, "Payload Too Large",
                   QStringLiteral("Requête trop volumineuse (64 Kio au plus)"));
        return; // the rest of the headers is still on its way
    }
    const QByteArray headers = data.left(headerEnd);
    bool ok = true;
    const QByteArray lengthText = headerValue(headers, "Content-Length");
    const qint64 bodyLength = lengthText.isEmpty() ? 0 : lengthText.toLongLong(&ok);
    if (!ok || bodyLength < 0 || headerEnd + 4 + bodyLength > maxRequestBytes) {
        reject(socket, 413, "Payload Too Large",
               QStringLiteral("Requête trop volumineuse (64 Kio au plus)"));
        return;
    }
    if (data.size() < headerEnd + 4 + bodyLength)
        return;
    socket->setProperty(handedOverProperty, true);
    if (headerValue(headers, "Upgrade").compare("websocket", Qt::CaseInsensitive) == 0)
        socket->setProperty(upgradedProperty, true);
    stopDeadline(socket);
    addPendingConnection(socket);
    emit newConnection();
    // The request is already buffered: the server must be told it can read it.
    QMetaObject::invokeMethod(socket, [socket] {
        if (socket->bytesAvailable() > 0)
            emit socket->readyRead();
    }, Qt::QueuedConnection);
}

void RequestGate::stopDeadline(QTcpSocket *socket)
{
    if (auto *deadline = socket->findChild<QTimer *>())
        deadline->stop();
}

void RequestGate::reject(QTcpSocket *socket, int status, const QByteArray &reason,
                         const QString &message)
{
    socket->disconnect(this);
    stopDeadline(socket); // one refusal only, even if the client never reads it
    socket->readAll();
    socket->write(errorResponse(status, reason, message));
    socket->disconnectFromHost();
}
