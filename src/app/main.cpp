// The composition root: creates the long-lived objects, wires them and loads the views.
#include "appflowstate.h"
#include "approotproperties.h"
#include "brandassets.h"
#include "consolecontroller.h"
#include "displayclock.h"
#include "filereveal.h"
#include "formatters.h"
#include "launchproject.h"
#include "networkcoordinator.h"
#include "qttranslations.h"
#include "renderingbackend.h"
#include "screenmanager.h"
#include "sessionstore.h"
#include "settingscontroller.h"
#include "soundmanager.h"
#include "startuptrace.h"
#include "systemclock.h"
#include "timerengine.h"
#include "toastcenter.h"
#include "webserver.h"

#include <QDebug>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlEngineExtensionPlugin>
#include <QQuickWindow>
#include <QUrl>

Q_IMPORT_QML_PLUGIN(KaironPlugin)

int main(int argc, char *argv[])
{
    if (const std::optional<int> probed = RenderingBackend::runProbeIfAsked(argc, argv))
        return *probed;
    RenderingBackend::prepareEnvironment();
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Kairon"));
    QGuiApplication::setOrganizationName(QStringLiteral("Kairon"));

    SystemClock clock;
    Fmt::setTimeZone(clock.timeZone());
    // Every text is French; a French-speaking user keeps the conventions of their own country.
    if (QLocale::system().language() != QLocale::French)
        Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
    installQtTranslations(app);
    SoundManager sounds;
    TimerEngine engine(clock, sounds);
    // Remote control is live before any window shows.
    NetworkCoordinator network;
    QObject::connect(&network, &NetworkCoordinator::oscStatusChanged, [&network] {
        if (!network.oscStatus())
            StartupTrace::mark("osc-listening");
    });
    network.attach(&engine);
    WebServer web(engine, clock);
    QObject::connect(&web, &WebServer::webStatusChanged, [&web] {
        if (web.webStatus())
            qWarning().noquote() << "kairon-web:" << *web.webStatus();
    });
    web.applyWebSettings();
    if (web.serverPort() != 0)
        StartupTrace::mark("web-listening");
    DisplayClock displayClock(clock);
    ScreenManager screens(clock);
    AppFlowState flow;
    BrandAssets brand; // the cached logo at once, a fresh one from the maker's site later
    brand.downloadRemote();
    ToastCenter toasts(clock);
    SessionStore store(clock);
    if (const std::optional<QString> file = LaunchProject::fileArgument(app.arguments()))
        LaunchProject::open(*file, store, engine, flow, toasts);
    ConsoleController console(engine, store, flow, toasts, screens, clock, &FileReveal::show);
    SettingsController settings(engine, network, web, store);

    // Asked once remote control listens: the answer takes a moment, and only the windows need it.
    RenderingBackend::chooseForThisMachine();
    QQmlApplicationEngine qml;
    qml.addImportPath(QStringLiteral("qrc:/"));
    qml.setInitialProperties(
        AppRootObjects{&engine, &displayClock, &flow, &brand, &screens, &toasts, &console, &store,
                       &settings}
            .initialProperties());
    QObject::connect(
        &qml, &QQmlApplicationEngine::objectCreationFailed, &app,
        [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
    qml.load(QUrl(QStringLiteral("qrc:/Kairon/Main.qml")));
    if (qml.rootObjects().isEmpty())
        return 1;
    auto *operatorWindow = qml.rootObjects().first()->property("operatorWindow").value<QQuickWindow *>();
    QObject::connect(operatorWindow, &QQuickWindow::frameSwapped, operatorWindow,
                     [] { StartupTrace::mark("first-frame"); }, Qt::SingleShotConnection);
    return app.exec();
}
