#pragma once

#include <QFile>
#include <QHostAddress>
#include <QString>
#include <QTcpServer>
#include <QUdpSocket>

// A TCP port of 127.0.0.1 free at this moment: a connection to it is refused at once until
// something binds it.
inline quint16 freeTcpPort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

// A UDP port of 127.0.0.1 free at this moment.
inline quint16 freeUdpPort()
{
    QUdpSocket probe;
    probe.bind(QHostAddress::LocalHost, 0);
    return probe.localPort();
}

// Whether a UDP socket of this machine is bound to the port, IPv4 or IPv6, read from the
// kernel's socket tables. Unlike a probe that binds the port itself, looking never takes the
// port from the program or the peer that is about to bind it.
inline bool udpPortBound(quint16 port)
{
    // Each line after the header: "sl local_address:PORT rem_address:PORT st …", hexadecimal.
    const QByteArray local = ':' + QByteArray::number(port, 16).toUpper().rightJustified(4, '0') + ' ';
    for (const char *table : {"/proc/net/udp", "/proc/net/udp6"}) {
        QFile file(QString::fromLatin1(table));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        file.readLine(); // the header
        while (!file.atEnd()) {
            const QList<QByteArray> fields = file.readLine().simplified().split(' ');
            if (fields.size() > 1 && (fields[1] + ' ').endsWith(local))
                return true;
        }
    }
    return false;
}
