#pragma once

#include "osccodec.h"

#include <QHostAddress>
#include <QList>
#include <QObject>

#include <functional>
#include <QUdpSocket>

#include <memory>

// The sockets of OSCService, on its thread "kairon.osc": the listener, which decodes every
// datagram it receives, and the one outgoing destination.
class OscSocketWorker : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    ~OscSocketWorker() override;

    void startListening(quint16 port);
    void configureSend(const QString &host, quint16 port);
    void sendDatagram(const QByteArray &datagram);
    // Sends one datagram to `host` (an address, or a name resolved first) and `port`, apart
    // from the destination above; then `done` gets nothing once it left, or the French
    // reason it could not.
    void sendTo(const QString &host, quint16 port, const QByteArray &datagram,
                const std::function<void(const QString &)> &done);
    void stopListening();
    void stop();

signals:
    // Every message decoded from the datagrams that were waiting, in arrival order.
    void received(const QList<OSCMessage> &messages);
    // `ok` with an empty text when listening works, else the French reason.
    void listenStatus(bool ok, const QString &text);

private:
    void readPending();

    std::unique_ptr<QUdpSocket> m_listener;
    std::unique_ptr<QUdpSocket> m_sender;
    std::unique_ptr<QUdpSocket> m_oneOffSender; // for sendTo, made at its first use
    QHostAddress m_destination; // null until the host is resolved
    quint16 m_destinationPort = 0;
    int m_lookupId = -1;
    QByteArray m_buffer; // reused for every datagram
};
