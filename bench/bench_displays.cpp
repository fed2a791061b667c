// The two output windows at work, on the real clock and a real X server: a calm 10-minute cue
// runs for a while (60 s unless given) with the stage and confidence windows at 1920 × 1080.
// Prints, for each window, the frames drawn per second; the CPU the whole process used; how
// late the frame showing each new second was swapped after the true second; the resident memory.
// Run under X: bench/run-display-bench.sh [seconds] [--opengl]
#include "benchsupport.h"
#include "displayclock.h"
#include "renderingbackend.h"
#include "systemclock.h"
#include "timerengine.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlEngineExtensionPlugin>
#include <QQuickWindow>
#include <QTimer>


#include <algorithm>
#include <cstdio>
#include <vector>

Q_IMPORT_QML_PLUGIN(KaironPlugin)


int main(int argc, char **argv)
{
    if (const std::optional<int> probed = RenderingBackend::runProbeIfAsked(argc, argv))
        return *probed;
    RenderingBackend::prepareEnvironment();
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    const bool opengl = args.contains(QStringLiteral("--opengl"));
    int seconds = 60;
    for (const QString &a : args.mid(1))
        if (a.toInt() > 0)
            seconds = a.toInt();
    const QString renderer = opengl ? QString() : RenderingBackend::chooseForThisMachine();
    std::printf("OpenGL renderer: %s; Qt Quick backend: %s\n",
                renderer.isEmpty() ? "(not asked)" : qPrintable(renderer),
                QQuickWindow::sceneGraphBackend() == QLatin1String("software") ? "software" : "OpenGL (RHI)");

    SystemClock clock;
    SilentPlayer sound;
    TimerEngine engine(clock, sound);
    engine.loadSession(showWithOneCue(600));
    DisplayClock displayClock(clock);
    QQmlEngine qml;
    qml.addImportPath(QStringLiteral("qrc:/"));

    struct Output {
        const char *name;
        std::unique_ptr<QQuickWindow> window;
        int frames = 0;
        QString shown;
    };
    std::vector<Output> outputs;
    outputs.push_back({"stage", nullptr});
    outputs.push_back({"confidence", nullptr});
    int x = 0;
    for (Output &o : outputs) {
        const QString file = o.name == std::string("stage") ? QStringLiteral("StageWindow.qml")
                                                              : QStringLiteral("ConfidenceWindow.qml");
        QQmlComponent component(&qml, QUrl(QStringLiteral("qrc:/Kairon/displays/") + file));
        o.window.reset(qobject_cast<QQuickWindow *>(component.createWithInitialProperties(
            {{QStringLiteral("engine"), QVariant::fromValue(&engine)},
             {QStringLiteral("clock"), QVariant::fromValue(&displayClock)}})));
        if (!o.window)
            qFatal("%s", qPrintable(component.errorString()));
        o.window->setGeometry(x, 0, 1920, 1080);
        o.window->show();
        x += 1920;
    }

    // From the start of the cue, the shown second changes at each whole second of the real
    // clock; a swap that carries a new text is late by the time since the last such instant.
    qint64 cueStartUs = 0;
    bool measuring = false;
    std::vector<double> lateMs;
    for (Output &o : outputs) {
        QObject::connect(o.window.get(), &QQuickWindow::frameSwapped, o.window.get(), [&, w = &o] {
            if (!measuring)
                return;
            ++w->frames;
            if (std::string(w->name) != "stage")
                return;
            const QString text = engine.remaining() >= 0 ? TimerEngine::format(engine.remaining(), true) : QString();
            if (text == w->shown)
                return;
            w->shown = text;
            const qint64 intoSecondUs = (clock.monotonicUs() - cueStartUs) % 1'000'000;
            if (qEnvironmentVariableIsSet("KAIRON_BENCH_VERBOSE") && lateMs.size() < 3)
                std::printf("swap at %.1f ms with %s\n", (clock.monotonicUs() - cueStartUs) / 1000.0, qPrintable(text));
            lateMs.push_back(intoSecondUs / 1000.0);
        });
    }

    if (qEnvironmentVariableIsSet("KAIRON_BENCH_VERBOSE")) {
        QQuickWindow *stageWindow = outputs[0].window.get();
        QObject::connect(stageWindow, &QQuickWindow::beforeSynchronizing, stageWindow, [&] {
            if (measuring && clock.monotonicUs() - cueStartUs < 300'000)
                std::printf("sync at %.1f ms, remaining %.4f\n", (clock.monotonicUs() - cueStartUs) / 1000.0, engine.remaining());
        }, Qt::DirectConnection);
        QObject::connect(&engine, &TimerEngine::clockChanged, stageWindow, [&] {
            if (measuring && clock.monotonicUs() - cueStartUs < 300'000)
                std::printf("clock at %.1f ms, remaining %.4f\n", (clock.monotonicUs() - cueStartUs) / 1000.0, engine.remaining());
        });
    }
    CpuMeter meter;
    QTimer::singleShot(2000, [&] { // let the windows settle first
        cueStartUs = clock.monotonicUs();
        engine.start(0);
        meter.start();
        measuring = true;
    });
    QTimer::singleShot(2000 + seconds * 1000, [&] {
        measuring = false;
        const double wall = meter.wallSeconds();
        for (const Output &o : outputs)
            std::printf("%s window: %d frames in %.1f s, %.2f frames/s\n", o.name, o.frames, wall,
                        o.frames / wall);
        meter.printCpu();
        lateMs.erase(lateMs.begin()); // the first text is the one shown at the start
        if (qEnvironmentVariableIsSet("KAIRON_BENCH_VERBOSE")) {
            for (double ms : lateMs)
                std::printf("%.1f ", ms);
            std::printf("\n");
        }
        printMedianAndMax("frame showing a new second swapped after the true second", lateMs);
        std::printf("resident memory: %.1f MiB\n", residentKiB() / 1024.0);
        QCoreApplication::quit();
    });
    return app.exec();
}
