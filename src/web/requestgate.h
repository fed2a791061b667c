#pragma once

#include <QTcpServer>

class QTcpSocket;

// The listening socket of the web server. It holds each new connection until its first request
// has fully arrived, so that an oversized request (413) or a client that sends too slowly (408)
// is answered here, before the HTTP server parses anything. Later requests on a kept-alive
// connection are checked for size as they arrive.
class RequestGate : public QTcpServer
{
    Q_OBJECT
public:
    explicit RequestGate(QObject *parent = nullptr);

    static constexpr qint64 maxRequestBytes = 64 * 1024; // headers and body together
    void setRequestTimeoutMs(int ms) { m_timeoutMs = ms; }

    // The JSON error answer with its status line, closing the connection.
    static QByteArray errorResponse(int status, const QByteArray &reason, const QString &message);

protected:
    void incomingConnection(qintptr socketDescriptor) override;

private:
    void inspect(QTcpSocket *socket);
    static void stopDeadline(QTcpSocket *socket);
    void reject(QTcpSocket *socket, int status, const QByteArray &reason, const QString &message);

    int m_timeoutMs = 5000;
};
