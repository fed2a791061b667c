#include "webaddresses.h"

#include <QNetworkInterface>
#include <QUrl>

namespace WebAddresses {

QList<Page> pages()
{
    return {{QStringLiteral("/stage"), QStringLiteral("Stage"), QStringLiteral("Écran de l'intervenant")},
            {QStringLiteral("/confidence"), QStringLiteral("Confidence"),
             QStringLiteral("Écran de retour : cue en cours, suivant, intervenant")},
            {QStringLiteral("/overlay"), QStringLiteral("Overlay"),
             QStringLiteral("Le temps restant sur l'image, pour un mélangeur vidéo")},
            {QStringLiteral("/"), QStringLiteral("Accueil"),
             QStringLiteral("Le nom du show et les liens vers les écrans")}};
}

QList<InterfaceAddress> machineAddresses()
{
    QList<InterfaceAddress> found;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        const auto flags = interface.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp) || !flags.testFlag(QNetworkInterface::IsRunning))
            continue;
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries) {
            const QHostAddress ip = entry.ip();
            if (ip.protocol() != QAbstractSocket::IPv4Protocol)
                continue;
            found.append({interface.humanReadableName(), ip,
                          flags.testFlag(QNetworkInterface::IsLoopBack) || ip.isLoopback()});
        }
    }
    return found;
}

QList<InterfaceAddress> reachableAt(const QList<InterfaceAddress> &machine, const QHostAddress &bound)
{
    if (bound.isNull())
        return {};
    const bool everyInterface = bound == QHostAddress(QHostAddress::Any)
                                || bound == QHostAddress(QHostAddress::AnyIPv4)
                                || bound == QHostAddress(QHostAddress::AnyIPv6);
    if (!everyInterface) {
        for (const InterfaceAddress &entry : machine)
            if (entry.address.isEqual(bound, QHostAddress::ConvertV4MappedToIPv4))
                return {entry};
        return {{QString(), bound, bound.isLoopback()}};
    }
    QList<InterfaceAddress> others;
    QList<InterfaceAddress> loopbacks;
    for (const InterfaceAddress &entry : machine)
        (entry.loopback ? loopbacks : others).append(entry);
    return others.isEmpty() ? loopbacks : others;
}

QString pageUrl(const QHostAddress &address, quint16 port, const QString &path)
{
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(address.toString());
    url.setPort(port);
    url.setPath(path);
    return url.toString();
}

} // namespace WebAddresses
