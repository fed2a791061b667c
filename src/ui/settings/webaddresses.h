#pragma once

#include <QHostAddress>
#include <QList>
#include <QString>

// Where the web pages can be opened from: the machine's IPv4 addresses and the pages' URLs.
namespace WebAddresses {

// One IPv4 address of the machine and the network interface that holds it.
struct InterfaceAddress {
    QString interfaceName; // as the system shows it: "eth0", "wlp2s0", "Wi-Fi"…
    QHostAddress address;
    bool loopback = false;

    bool operator==(const InterfaceAddress &) const = default;
};

// One of the pages the server shows.
struct Page {
    QString path;   // "/stage"
    QString title;  // "Stage"
    QString detail; // what it is for, in a few words
};

// The three pages, in the order they are listed: the stage display, the confidence display,
// the index that links to both.
QList<Page> pages();

// Every IPv4 address of the interfaces that are up, in the system's order.
QList<InterfaceAddress> machineAddresses();

// The addresses to give for a server bound to `bound`. Bound to one address: that one (with
// its interface's name when the machine lists it). Bound to every interface: each address of
// the machine but the loopback ones, which no other device can reach; the loopback ones only
// when the machine has no other, so that the pages can still be opened on this computer.
QList<InterfaceAddress> reachableAt(const QList<InterfaceAddress> &machine, const QHostAddress &bound);

// "http://ADDRESS:PORT/PATH".
QString pageUrl(const QHostAddress &address, quint16 port, const QString &path);

} // namespace WebAddresses
