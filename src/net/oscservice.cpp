#include "oscservice.h"

#include <QCoreApplication>
#include <QPointer>

#include "oscsocketworker.h"

OSCService::OSCService(QObject *parent) : QObject(parent)
{
    qRegisterMetaType<QList<OSCMessage>>();
    m_thread.setObjectName(QStringLiteral("kairon.osc"));
    m_worker = new OscSocketWorker;
    m_worker->moveToThread(&m_thread);
    // Queued to this object's thread; the connections end with the service.
    connect(m_worker, &OscSocketWorker::received, this, [this](const QList<OSCMessage> &messages) {
        for (const OSCMessage &message : messages) {
            if (onCommand)
                onCommand(message);
        }
    });
    connect(m_worker, &OscSocketWorker::listenStatus, this, [this](bool ok, const QString &text) {
        if (onListenStatus)
            onListenStatus(ok ? std::nullopt : std::optional(text));
    });
    m_thread.start();
}

OSCService::~OSCService()
{
    // The sockets are closed on their own thread, before it ends.
    QMetaObject::invokeMethod(m_worker, [worker = m_worker] { delete worker; },
                              Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void OSCService::startListening(quint16 port)
{
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, port] { worker->startListening(port); });
}

void OSCService::configureSend(const QString &host, quint16 port)
{
    QMetaObject::invokeMethod(m_worker,
                              [worker = m_worker, host, port] { worker->configureSend(host, port); });
}

void OSCService::send(const QString &address, const QList<OSCArgument> &arguments)
{
    const QByteArray datagram = OSCCodec::encode(address, arguments);
    QMetaObject::invokeMethod(m_worker,
                              [worker = m_worker, datagram] { worker->sendDatagram(datagram); });
}

void OSCService::sendTo(const QString &host, quint16 port, const QString &address,
                        const QList<OSCArgument> &arguments, QObject *context,
                        std::function<void(const QString &)> done)
{
    const QByteArray datagram = OSCCodec::encode(address, arguments);
    // Reported through the application object, which outlives every context: `owner` is read
    // on the main thread only.
    QPointer<QObject> owner(context);
    auto report = [owner, done = std::move(done)](const QString &reason) {
        QMetaObject::invokeMethod(QCoreApplication::instance(), [owner, done, reason] {
            if (owner)
                done(reason);
        });
    };
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, host, port, datagram, report] {
        worker->sendTo(host, port, datagram, report);
    });
}

void OSCService::stopListening()
{
    QMetaObject::invokeMethod(m_worker, [worker = m_worker] { worker->stopListening(); });
}

void OSCService::stop()
{
    QMetaObject::invokeMethod(m_worker, [worker = m_worker] { worker->stop(); });
}
