// The console at work beside the two outputs, on the real clock and a real X server: a show of
// 200 cues runs with the console, stage and confidence windows at 1920 × 1080. Prints the frames
// the console draws per second while calm, the CPU of the whole process, and how soon the frame
// showing a new state follows a real key press (Space, sent by xdotool): from the key's arrival
// in the program, and from the moment xdotool was started.
// Run under X: bench/run-console-bench.sh [seconds]
#include "appflowstate.h"
#include "approotproperties.h"
#include "benchsupport.h"
#include "brandassets.h"
#include "consolecontroller.h"
#include "displayclock.h"
#include "networkcoordinator.h"
#include "renderingbackend.h"
#include "screenmanager.h"
#include "sessionstore.h"
#include "systemclock.h"
#include "timerengine.h"
#include "toastcenter.h"
#include "webserver.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQmlEngineExtensionPlugin>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

Q_IMPORT_QML_PLUGIN(KaironPlugin)

namespace {

// Notes when Space reaches the program.
class KeyWatch : public QObject
{
public:
    qint64 arrivedNs = 0;
    bool eventFilter(QObject *, QEvent *event) override
    {
        // The menu shortcut takes Space before the window sees a key press: its first sign is
        // the shortcut override the application sends.
        const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
        if (key && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space && !arrivedNs)
            arrivedNs = steadyNs();
        return false;
    }
};

} // namespace

int main(int argc, char **argv)
{
    if (const std::optional<int> probed = RenderingBackend::runProbeIfAsked(argc, argv))
        return *probed;
    RenderingBackend::prepareEnvironment();
    QGuiApplication app(argc, argv);
    int seconds = 30;
    for (const QString &a : app.arguments().mid(1))
        if (a.toInt() > 0)
            seconds = a.toInt();
    RenderingBackend::chooseForThisMachine();

    SystemClock clock;
    SilentPlayer sound;
    TimerEngine engine(clock, sound);
    TimerSession show;
    show.name = QStringLiteral("Banc d'essai");
    for (int i = 0; i < 200; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Cue %1").arg(i + 1);
        cue.duration = 600;
        show.cues << cue;
    }
    engine.loadSession(show);
    DisplayClock displayClock(clock);
    ScreenManager screens(clock);
    AppFlowState flow;
    flow.setStage(AppFlowState::Workspace);
    BrandAssets brand{QUrl()};
    ToastCenter toasts(clock);
    SessionStore store(clock);
    OutputWindows outputs(screens, toasts, clock);
    ConsoleController console(engine, store, flow, toasts, clock, {});
    NetworkCoordinator network; // remote control off, as on a fresh installation
    WebServer web(engine, clock);
    SettingsController settings(engine, network, web, store);
    FollowSession followSession(engine, clock);
    FollowController follow(followSession, flow, clock, sound);

    QQmlApplicationEngine qml;
    qml.addImportPath(QStringLiteral("qrc:/"));
    qml.setInitialProperties(
        AppRootObjects{&engine, &displayClock, &flow, &brand, &screens, &toasts, &console, &store,
                       &settings, &outputs, &follow}
            .initialProperties());
    qml.load(QUrl(QStringLiteral("qrc:/Kairon/Main.qml")));
    if (qml.rootObjects().isEmpty())
        return 1;
    QObject *root = qml.rootObjects().first();
    const auto window = [&](const char *name) { return root->property(name).value<QQuickWindow *>(); };
    QQuickWindow *operatorWindow = window("operatorWindow");
    operatorWindow->setGeometry(0, 0, 1920, 1080);
    int x = 1920;
    for (const char *output : {"stageWindow", "confidenceWindow"}) {
        window(output)->setGeometry(x, 0, 1920, 1080);
        window(output)->show();
        x += 1920;
    }
    operatorWindow->requestActivate();

    KeyWatch keys;
    app.installEventFilter(&keys);
    bool measuring = false;
    int frames = 0;
    bool stateChanged = false;
    qint64 launchedNs = 0;
    std::vector<double> fromArrival, fromLaunch;
    QObject::connect(&engine, &TimerEngine::runStateChanged, [&] { stateChanged = true; });
    QObject::connect(operatorWindow, &QQuickWindow::frameSwapped, operatorWindow, [&] {
        if (measuring)
            ++frames;
        if (stateChanged && keys.arrivedNs) {
            const qint64 now = steadyNs();
            fromArrival.push_back((now - keys.arrivedNs) / 1e6);
            fromLaunch.push_back((now - launchedNs) / 1e6);
            stateChanged = false;
            keys.arrivedNs = 0;
        }
    });

    CpuMeter meter;
    int count = 0; // key presses sent
    QTimer::singleShot(2000, [&] {
        engine.start(0);
        meter.start();
        measuring = true;
    });
    QTimer::singleShot(2000 + seconds * 1000, [&] {
        measuring = false;
        const double wall = meter.wallSeconds();
        std::printf("console window, calm: %d frames in %.1f s, %.2f frames/s\n", frames, wall, frames / wall);
        meter.printCpu();
        std::printf("resident memory: %.1f MiB\n", residentKiB() / 1024.0);
        // Then twenty Space presses, 700 ms apart, each pausing or resuming the cue, typed into
        // the operator's window (given the keyboard focus first, as a click would).
        const QString windowId = QString::number(operatorWindow->winId());
        QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("windowfocus"), QStringLiteral("--sync"), windowId});
        auto *presses = new QTimer(&app);
        presses->setInterval(700);
        QObject::connect(presses, &QTimer::timeout, [&, presses] {
            if (count++ == 20) {
                presses->stop();
                printMedianAndMax("key press to the frame showing it, from its arrival", fromArrival);
                printMedianAndMax("key press to the frame showing it, from xdotool's start", fromLaunch);
                std::printf("presses that reached the window: %zu of 20\n", fromArrival.size());
                QCoreApplication::quit();
                return;
            }
            stateChanged = false;
            keys.arrivedNs = 0;
            launchedNs = steadyNs();
            QProcess::startDetached(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("space")});
        });
        presses->start();
    });
    return app.exec();
}
