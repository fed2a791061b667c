// How late after each true change of the displayed second the tick that shows it runs, with
// the real clock and the real QTimer. Run: build/bench/bench_tickerlatency [seconds, default 60]
#include "benchsupport.h"
#include "systemclock.h"
#include "timerengine.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(2, atoi(argv[1])) : 60;

    SystemClock clock;
    SilentPlayer sound;
    TimerEngine engine(clock, sound);
    engine.loadSession(showWithOneCue(3600));

    // The displayed second changes just after each whole second from the cue's start.
    qint64 startUs = 0;
    long long shown = -1;
    std::vector<double> lateMs;
    int ticks = 0;
    engine.setOnStateChange([&](const TimerStateSnapshot &s) {
        const qint64 nowNs = steadyNs();
        ++ticks;
        const auto second = static_cast<long long>(std::floor(s.remaining));
        if (shown >= 0 && second != shown) {
            const long long boundaryNs = (startUs + (3600 - shown) * 1'000'000LL) * 1000;
            lateMs.push_back((nowNs - boundaryNs) / 1e6);
        }
        shown = second;
    });
    startUs = clock.monotonicUs(); // read just before: the figures include the start's own µs
    engine.start(0);

    QTimer::singleShot(seconds * 1000, &app, &QCoreApplication::quit);
    app.exec();

    std::sort(lateMs.begin(), lateMs.end());
    const double median = lateMs.empty() ? 0 : lateMs[lateMs.size() / 2];
    const double worst = lateMs.empty() ? 0 : lateMs.back();
    std::printf("%d s, %d ticks (%.1f per second), %zu second changes\n", seconds, ticks,
                ticks / double(seconds), lateMs.size());
    std::printf("tick showing a new second, after the true change: median %.3f ms, max %.3f ms, "
                "min %.3f ms\n",
                median, worst, lateMs.empty() ? 0 : lateMs.front());
    return 0;
}
