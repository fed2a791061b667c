// How long the main thread waits on the saves of a show of 100,000 cues (60 MB): the console's
// autosave after an edit, and the operator's Ctrl+S, each while a cue runs and the operator
// keeps adjusting it. A 1 ms timer measures the longest gap in the event loop while a save is
// written; a frame waits at most that long. The action itself is timed apart: an edit's
// whole-list undo step costs the same with or without a save.
//   bench_autosave [CUES]   (100000 by default)
#include "appflowstate.h"
#include "benchsupport.h"
#include "consolecontroller.h"
#include "sessionstore.h"
#include "systemclock.h"
#include "timerengine.h"
#include "toastcenter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTimer>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qunsetenv("XDG_DATA_HOME");
    QGuiApplication app(argc, argv);
    const int cues = argc > 1 ? std::atoi(argv[1]) : 100'000;

    SystemClock clock;
    SilentPlayer sound;
    TimerEngine engine(clock, sound);
    TimerSession show;
    for (int i = 0; i < cues; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Intervention %1 — table ronde des partenaires").arg(i + 1);
        cue.speaker = QStringLiteral("Intervenant %1").arg(i + 1);
        cue.notes = QStringLiteral("Micro HF 3, pupitre côté jardin, lumière douche.");
        show.cues << cue;
    }
    engine.loadSession(show);
    AppFlowState flow;
    flow.setStage(AppFlowState::Workspace);
    ToastCenter toasts(clock);
    SessionStore store(clock);
    ConsoleController console(engine, store, flow, toasts, clock, {});
    engine.start(0);

    // The event loop's longest wait, from a timer due every millisecond.
    qint64 longestGapNs = 0, lastNs = steadyNs();
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const qint64 now = steadyNs();
        longestGapNs = std::max(longestGapNs, now - lastNs);
        lastNs = now;
    });
    probe.start(1);

    const auto measure = [&](const char *what, auto action) {
        QElapsedTimer total;
        total.start();
        action();
        const double actionMs = double(total.nsecsElapsed()) / 1e6;
        longestGapNs = 0;
        lastNs = steadyNs();
        // Until the save is on disk, the running cue adjusted every 200 ms meanwhile.
        qint64 nextAdjustMs = 200;
        bool began = false;
        double onDiskMs = 0;
        while (!began || console.isSaving()) {
            app.processEvents(QEventLoop::AllEvents, 5);
            began = began || console.isSaving();
            onDiskMs = double(total.nsecsElapsed()) / 1e6;
            if (total.elapsed() >= nextAdjustMs) {
                engine.adjust(1);
                nextAdjustMs += 200;
            }
        }
        std::printf("%-24s the action %5.1f ms; on disk in %5.0f ms, the event loop waited at most "
                    "%5.1f ms meanwhile\n",
                    what, actionMs, onDiskMs, double(longestGapNs) / 1e6);
    };
    measure("autosave after an edit", [&] { engine.addCue(); });
    measure("Ctrl+S", [&] { console.saveProject(); });
    // The cue left writes its times into the list, which the save is reading (in the program,
    // the console's list model shares it too): the action includes one copy of the whole list.
    measure("Ctrl+S, then next", [&] {
        console.saveProject();
        engine.next();
    });

    QElapsedTimer alone;
    alone.start();
    store.save(engine.session());
    std::printf("%-24s %5.0f ms to encode and write on one thread\n", "a save alone",
                double(alone.nsecsElapsed()) / 1e6);
    const QString file = QDir(store.folder()).filePath(QDir(store.folder()).entryList(QDir::Files).value(0));
    std::printf("project file: %.1f MB, %d cues\n", double(QFileInfo(file).size()) / 1e6, cues + 1);
    return 0;
}
