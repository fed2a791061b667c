// The composition root: creates the long-lived objects, wires them and loads the views.
#include "formatters.h"
#include "networkcoordinator.h"
#include "qttranslations.h"
#include "screenmanager.h"
#include "soundmanager.h"
#include "systemclock.h"
#include "timerengine.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Kairon"));
    QGuiApplication::setOrganizationName(QStringLiteral("Kairon"));

    SystemClock clock;
    Fmt::setTimeZone(clock.timeZone());
    installQtTranslations(app);
    SoundManager sounds;
    TimerEngine engine(clock, sounds);
    // Remote control is live before any window shows.
    NetworkCoordinator network;
    network.attach(&engine);
    ScreenManager screens(clock);

    QQmlApplicationEngine qml;
    QObject::connect(
        &qml, &QQmlApplicationEngine::objectCreationFailed, &app,
        [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
    qml.setInitialProperties({{QStringLiteral("screens"), QVariant::fromValue(&screens)}});
    qml.load(QUrl(QStringLiteral("qrc:/Kairon/Main.qml")));
    return app.exec();
}
