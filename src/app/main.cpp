// The composition root: creates the long-lived objects, wires them and loads the views.
#include "appflowstate.h"
#include "approotproperties.h"
#include "batchimport.h"
#include "brandassets.h"
#include "commandline.h"
#include "consolecontroller.h"
#include "displayclock.h"
#include "filereveal.h"
#include "followcontroller.h"
#include "followsession.h"
#include "formatters.h"
#include "launchproject.h"
#include "networkcoordinator.h"
#include "outputwindows.h"
#include "processexit.h"
#include "qttranslations.h"
#include "quitsignals.h"
#include "renderingbackend.h"
#include "screenmanager.h"
#include "sessionstore.h"
#include "settingscontroller.h"
#include "showrecovery.h"
#include "soundmanager.h"
#include "startuptrace.h"
#include "systemclock.h"
#include "timerengine.h"
#include "toastcenter.h"
#include "triggerdispatcher.h"
#include "webserver.h"

#include <QDebug>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlEngineExtensionPlugin>
#include <QQuickWindow>
#include <QScreen>
#include <QUrl>

#include <cstdio>

Q_IMPORT_QML_PLUGIN(KaironPlugin)

namespace {

// The output windows: the identifier Main.qml opens them by, and its property.
struct OutputWindow {
    const char *identifier;
    const char *property;
};
constexpr OutputWindow outputWindows[] = {{"stage", "stageWindow"},
                                          {"confidence", "confidenceWindow"}};

// Tells the recovery where the output windows are, and each time one shows, hides or moves.
void watchOutputs(QObject *root, ShowRecovery &recovery)
{
    recovery.setOutputReader([root] {
        QList<LiveState::Output> outputs;
        for (const OutputWindow &output : outputWindows) {
            const auto *window = root->property(output.property).value<QQuickWindow *>();
            if (window && window->isVisible())
                outputs.append({QString::fromLatin1(output.identifier),
                                window->screen() ? window->screen()->name() : QString(),
                                window->visibility() == QWindow::FullScreen});
        }
        return outputs;
    });
    for (const OutputWindow &output : outputWindows) {
        auto *window = root->property(output.property).value<QQuickWindow *>();
        if (!window)
            continue;
        const auto moved = [&recovery] { recovery.outputsMoved(); };
        QObject::connect(window, &QWindow::visibleChanged, &recovery, moved);
        QObject::connect(window, &QWindow::screenChanged, &recovery, moved);
        QObject::connect(window, &QWindow::visibilityChanged, &recovery, moved);
    }
}

// Opens again the output windows of a resumed show, full screen on their displays when those
// are connected.
void reopenOutputs(ShowRecovery &recovery, OutputWindows &outputs)
{
    const QList<QScreen *> connected = QGuiApplication::screens();
    for (const LiveState::Output &output : recovery.outputsToReopen()) {
        const auto screen = std::find_if(connected.cbegin(), connected.cend(),
                                         [&](const QScreen *s) { return s->name() == output.screen; });
        if (output.fullScreen && screen != connected.cend())
            outputs.sendTo(output.window, int(screen - connected.cbegin()));
        else
            outputs.open(output.window);
    }
}

// The application from its start to its end, QGuiApplication included.
int runApplication(int argc, char *argv[], const CommandLine &commandLine)
{
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
    network.attach(&engine, clock);
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
    // The cues' messages to other gear; a failure is a quiet toast, never a stop.
    TriggerDispatcher triggers(network.osc());
    triggers.attach(engine);
    QObject::connect(&triggers, &TriggerDispatcher::failed, &toasts, &ToastCenter::showInfo);
    OutputWindows outputs(screens, toasts, clock);
    SessionStore store(clock);
    ConsoleController console(engine, store, flow, toasts, clock, &FileReveal::show);
    console.setTriggerSender([&triggers](const CueTrigger &trigger, const TriggerContext &context, auto done) {
        triggers.sendNow(trigger, context, std::move(done));
    });
    // A show interrupted last time comes back first, where its clock is now.
    ShowRecovery recovery(engine, store, flow, toasts, clock);
    const std::optional<QString> file = commandLine.projectFiles.isEmpty()
                                            ? std::nullopt
                                            : std::optional(commandLine.projectFiles.first());
    if (!recovery.resumeIfInterrupted(file) && file && !LaunchProject::open(*file, store, engine, flow, toasts)) {
        recovery.showOpenedFrom(*file);
        if (commandLine.projectFiles.size() > 1) {
            const QString ignored = commandLine.ignoredFilesWarning();
            qWarning().noquote() << "kairon :" << ignored;
            LaunchProject::toastOnArrival(flow, toasts, AppFlowState::Workspace, ignored, ToastMessage::Info);
        }
    }
    SettingsController settings(engine, network, web, store);
    // As a backup of a main machine, when the preferences say so: before any window shows,
    // the main's show is asked for.
    FollowSession followSession(engine, clock);
    web.setFollowSession(&followSession);
    FollowController follow(followSession, flow, clock, sounds);
    follow.setBeforeFollowing([&] {
        console.saveBeforeQuit();
        recovery.showClosed();
    });
    follow.applyStored();

    // Asked once remote control listens: the answer takes a moment, and only the windows need it.
    RenderingBackend::chooseForThisMachine();
    QQmlApplicationEngine qml;
    qml.addImportPath(QStringLiteral("qrc:/"));
    qml.setInitialProperties(
        AppRootObjects{&engine, &displayClock, &flow, &brand, &screens, &toasts, &console, &store,
                       &settings, &outputs, &follow}
            .initialProperties());
    QObject::connect(
        &qml, &QQmlApplicationEngine::objectCreationFailed, &app,
        [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
    qml.load(QUrl(QStringLiteral("qrc:/Kairon/Main.qml")));
    if (qml.rootObjects().isEmpty())
        return 1;
    QObject *root = qml.rootObjects().first();
    auto *operatorWindow = root->property("operatorWindow").value<QQuickWindow *>();
    watchOutputs(root, recovery);
    reopenOutputs(recovery, outputs);

    // Quitting, whatever asks for it (the menu, a signal, the end of the desktop session),
    // saves the open show and closes it: no recovery is left for the next launch.
    QuitSignals quitSignals;
    QObject::connect(&quitSignals, &QuitSignals::quitRequested, &app, &QCoreApplication::quit);
    QObject::connect(&app, &QGuiApplication::commitDataRequest, &app, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &app, [&] {
        if (flow.stage() == AppFlowState::Workspace)
            console.saveBeforeQuit();
        recovery.showClosed();
    });
    QObject::connect(operatorWindow, &QQuickWindow::frameSwapped, operatorWindow,
                     [] { StartupTrace::mark("first-frame"); }, Qt::SingleShotConnection);
    // The X server gone, Qt calls exit(1): the show's recovery file stays as it was, for the
    // next launch, and the process ends without a crash.
    exitAtOnceOnLibraryExit();
    return app.exec();
}

} // namespace

int main(int argc, char *argv[])
{
    if (const std::optional<int> probed = RenderingBackend::runProbeIfAsked(argc, argv))
        return *probed;
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const CommandLine commandLine = CommandLine::parse(arguments);
    switch (commandLine.action) {
    case CommandLine::Action::Help:
        std::fputs(CommandLine::helpText().toUtf8().constData(), stdout);
        return 0;
    case CommandLine::Action::Version:
        std::fputs(CommandLine::versionText().toUtf8().constData(), stdout);
        return 0;
    case CommandLine::Action::Refuse:
        std::fprintf(stderr, "kairon : %s\n%s\n", commandLine.error.toUtf8().constData(),
                     "« kairon --help » donne la liste des options.");
        return 2;
    case CommandLine::Action::Import: {
        QCoreApplication app(argc, argv); // no window, no display needed
        return BatchImport::run(commandLine);
    }
    case CommandLine::Action::OpenWindow:
        break;
    }
    RenderingBackend::prepareEnvironment();
    exitProcess(runApplication(argc, argv, commandLine));
}
