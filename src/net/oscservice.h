#pragma once

#include "osccodec.h"

#include <QObject>
#include <QThread>

#include <functional>
#include <optional>

class OscSocketWorker;

// Remote control over OSC/UDP: listens on one local port and sends to one destination. The
// sockets live on the thread "kairon.osc"; commands and status reach the owner on the thread
// that owns the service (the main thread), in arrival order.
class OSCService : public QObject
{
    Q_OBJECT

public:
    using OSCMessage = ::OSCMessage;

    explicit OSCService(QObject *parent = nullptr);
    ~OSCService() override; // stops first

    // (Re)starts the listener. The outcome reaches onListenStatus: nothing when listening
    // works, else "Port invalide", "Échec écoute port N : …" or
    // "Port N indisponible (…). Déjà utilisé ? (QLab = 53000)".
    void startListening(quint16 port);
    // Replaces the outgoing destination; an empty host removes it. Names resolve in the
    // background.
    void configureSend(const QString &host, quint16 port);
    // Encodes one message and sends it if there is a destination; send errors are ignored.
    void send(const QString &address, const QList<OSCArgument> &arguments);
    // Encodes one message and sends it to `host` and `port`, whatever the destination above.
    // Then `done` is called on the main thread, unless `context` is gone by then: with nothing
    // once the message left, or with the French reason it could not (an unknown name, a
    // refused write).
    void sendTo(const QString &host, quint16 port, const QString &address,
                const QList<OSCArgument> &arguments, QObject *context,
                std::function<void(const QString &)> done);
    // Drops the listener; no status is reported for it.
    void stopListening();
    // Drops the listener and the destination.
    void stop();

    std::function<void(const OSCMessage &)> onCommand;
    std::function<void(const std::optional<QString> &)> onListenStatus;

private:
    QThread m_thread;
    OscSocketWorker *m_worker = nullptr; // lives on m_thread
};
