#include "oscsocketworker.h"

#include <QHostInfo>
#include <QVariant>

#ifdef Q_OS_LINUX
#include <sys/socket.h>
#endif

namespace {

// Room for bursts of commands: the kernel keeps datagrams here while the thread catches up.
constexpr int receiveBufferBytes = 8 * 1024 * 1024;

void enlargeReceiveBuffer(QUdpSocket &socket)
{
    socket.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, QVariant(receiveBufferBytes));
#ifdef Q_OS_LINUX
    // Past the system's ceiling when the process may (as root); ignored otherwise.
    const int bytes = receiveBufferBytes;
    ::setsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_RCVBUFFORCE, &bytes, sizeof bytes);
#endif
}

} // namespace

OscSocketWorker::~OscSocketWorker()
{
    stop();
}

void OscSocketWorker::startListening(quint16 port)
{
    stopListening();
    if (port == 0) {
        emit listenStatus(false, QStringLiteral("Port invalide"));
        return;
    }
    auto socket = std::make_unique<QUdpSocket>();
    // No address reuse: on Linux the default would let two programs share the port, and a
    // port already taken would never be reported.
    if (!socket->bind(QHostAddress::Any, port, QAbstractSocket::DontShareAddress)) {
        const QAbstractSocket::SocketError error = socket->error();
        const QString reason = socket->errorString();
        if (error == QAbstractSocket::SocketResourceError
            || error == QAbstractSocket::UnsupportedSocketOperationError)
            emit listenStatus(false, QStringLiteral("Échec écoute port %1 : %2").arg(port).arg(reason));
        else
            emit listenStatus(false, QStringLiteral("Port %1 indisponible (%2). Déjà utilisé ? "
                                                    "(QLab = 53000)")
                                         .arg(port)
                                         .arg(reason));
        return;
    }
    enlargeReceiveBuffer(*socket);
    connect(socket.get(), &QUdpSocket::readyRead, this, &OscSocketWorker::readPending);
    m_listener = std::move(socket);
    emit listenStatus(true, QString());
    readPending();
}

void OscSocketWorker::readPending()
{
    if (!m_listener)
        return;
    QList<OSCMessage> messages;
    while (m_listener->hasPendingDatagrams()) {
        const qint64 size = m_listener->pendingDatagramSize();
        m_buffer.resize(std::max<qint64>(size, 0));
        const qint64 read = m_listener->readDatagram(m_buffer.data(), m_buffer.size());
        if (read < 0)
            break;
        if (std::optional<OSCMessage> message = OSCCodec::decode(QByteArrayView(m_buffer.constData(), read)))
            messages.append(std::move(*message));
    }
    if (!messages.isEmpty())
        emit received(messages);
}

void OscSocketWorker::stopListening()
{
    m_listener.reset();
}

void OscSocketWorker::configureSend(const QString &host, quint16 port)
{
    if (m_lookupId >= 0)
        QHostInfo::abortHostLookup(m_lookupId);
    m_lookupId = -1;
    m_sender.reset();
    m_destination.clear();
    if (host.isEmpty() || port == 0)
        return;
    m_sender = std::make_unique<QUdpSocket>();
    m_destinationPort = port;
    QHostAddress literal;
    if (literal.setAddress(host)) {
        m_destination = literal;
        return;
    }
    // A name is resolved in the background; until then, messages to it are dropped.
    m_lookupId = QHostInfo::lookupHost(host, this, [this](const QHostInfo &info) {
        if (info.lookupId() != m_lookupId)
            return;
        m_lookupId = -1;
        const QList<QHostAddress> addresses = info.addresses();
        const auto ipv4 = std::find_if(addresses.cbegin(), addresses.cend(), [](const QHostAddress &a) {
            return a.protocol() == QAbstractSocket::IPv4Protocol;
        });
        if (ipv4 != addresses.cend())
            m_destination = *ipv4;
        else if (!addresses.isEmpty())
            m_destination = addresses.first();
    });
}

void OscSocketWorker::sendDatagram(const QByteArray &datagram)
{
    if (m_sender && !m_destination.isNull())
        m_sender->writeDatagram(datagram, m_destination, m_destinationPort);
}

void OscSocketWorker::sendTo(const QString &host, quint16 port, const QByteArray &datagram,
                             const std::function<void(const QString &)> &done)
{
    if (!m_oneOffSender)
        m_oneOffSender = std::make_unique<QUdpSocket>();
    auto write = [this, port, datagram, done, host](const QHostAddress &address) {
        if (m_oneOffSender->writeDatagram(datagram, address, port) < 0)
            done(QStringLiteral("envoi impossible à %1 (%2)").arg(host, m_oneOffSender->errorString()));
        else
            done(QString());
    };
    QHostAddress literal;
    if (literal.setAddress(host)) {
        write(literal);
        return;
    }
    QHostInfo::lookupHost(host, this, [write, done, host](const QHostInfo &info) {
        if (info.addresses().isEmpty()) {
            done(QStringLiteral("hôte inconnu : %1").arg(host));
            return;
        }
        const QList<QHostAddress> addresses = info.addresses();
        const auto ipv4 = std::find_if(addresses.cbegin(), addresses.cend(), [](const QHostAddress &a) {
            return a.protocol() == QAbstractSocket::IPv4Protocol;
        });
        write(ipv4 != addresses.cend() ? *ipv4 : addresses.first());
    });
}

void OscSocketWorker::stop()
{
    stopListening();
    configureSend(QString(), 0);
}
