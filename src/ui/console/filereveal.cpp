#include "filereveal.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#if KAIRON_HAS_DBUS
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#endif

namespace FileReveal {

namespace {

void openFolder(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

} // namespace

void show(const QString &path)
{
#if KAIRON_HAS_DBUS
    static const QString service = QStringLiteral("org.freedesktop.FileManager1");
    QDBusConnection bus = QDBusConnection::sessionBus();
    QDBusConnectionInterface *registry = bus.isConnected() ? bus.interface() : nullptr;
    const bool offered = registry
                         && (registry->isServiceRegistered(service).value()
                             || registry->activatableServiceNames().value().contains(service));
    if (offered) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            service, QStringLiteral("/org/freedesktop/FileManager1"), service,
            QStringLiteral("ShowItems"));
        call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
        // Asynchronous: a slow file manager never holds up the console.
        auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [path](QDBusPendingCallWatcher *w) {
            if (w->isError())
                openFolder(path);
            w->deleteLater();
        });
        return;
    }
#endif
    openFolder(path);
}

} // namespace FileReveal
