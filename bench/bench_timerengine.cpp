// The engine's own cost: one tick with the state hook attached, one snapshot, and list edits,
// on a show of 10 and of 2,000 cues. Run: build/bench/bench_timerengine
#include "benchsupport.h"
#include "manualclock.h"
#include "systemclock.h"
#include "timerengine.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <type_traits>

using namespace std::chrono_literals;

namespace {

template <typename ClockType>
ClockType makeClock()
{
    if constexpr (std::is_same_v<ClockType, ManualClock>)
        return ManualClock(QDateTime(QDate(2026, 11, 21), QTime(18, 0), Qt::UTC),
                           QTimeZone("Europe/Paris"));
    else
        return SystemClock();
}

TimerSession showOfSize(int count)
{
    TimerSession session(QDateTime(QDate(2026, 11, 1), QTime(9, 0), Qt::UTC));
    for (int i = 0; i < count; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Intervention %1").arg(i + 1);
        cue.speaker = QStringLiteral("Orateur %1").arg(i + 1);
        cue.duration = 36000; // long enough never to reach zero while measured
        session.cues << cue;
    }
    return session;
}

template <typename ClockType>
struct Bench {
    explicit Bench(int cues)
    {
        engine.loadSession(showOfSize(cues));
        engine.setOnStateChange([this](const TimerStateSnapshot &s) { last = s; });
        engine.start(cues / 2);
    }
    ClockType clock = makeClock<ClockType>();
    SilentPlayer sound;
    TimerEngine engine{clock, sound};
    TimerStateSnapshot last;
};

// One period of the ticker: the manual clock fires the armed tick, which recomputes the clock,
// checks the alerts, calls the hook with a fresh snapshot and re-arms the ticker.
void tickWithHook(benchmark::State &state)
{
    Bench<ManualClock> b(int(state.range(0)));
    for (auto _ : state) {
        b.clock.advance(100ms);
        benchmark::DoNotOptimize(b.last.remaining);
    }
}
BENCHMARK(tickWithHook)->Arg(10)->Arg(2000);

// The same tick on the real clocks, re-arming the real QTimer each time.
void tickWithHookOnSystemClock(benchmark::State &state)
{
    Bench<SystemClock> b(int(state.range(0)));
    for (auto _ : state) {
        b.engine.tick();
        benchmark::DoNotOptimize(b.last.remaining);
    }
}
BENCHMARK(tickWithHookOnSystemClock)->Arg(10)->Arg(2000);

void snapshot(benchmark::State &state)
{
    Bench<ManualClock> b(int(state.range(0)));
    for (auto _ : state) {
        TimerStateSnapshot s = b.engine.snapshot();
        benchmark::DoNotOptimize(s);
    }
}
BENCHMARK(snapshot)->Arg(10)->Arg(2000);

void updateCue(benchmark::State &state)
{
    Bench<ManualClock> b(int(state.range(0)));
    Cue cue = b.engine.session().cues[1];
    int n = 0;
    for (auto _ : state) {
        cue.notes = QString::number(++n);
        b.engine.updateCue(cue);
    }
}
BENCHMARK(updateCue)->Arg(10)->Arg(2000);

void undo(benchmark::State &state)
{
    Bench<ManualClock> b(int(state.range(0)));
    Cue cue = b.engine.session().cues[1];
    int n = 0;
    for (auto _ : state) {
        state.PauseTiming();
        cue.notes = QString::number(++n);
        b.engine.updateCue(cue);
        state.ResumeTiming();
        b.engine.undo();
    }
}
BENCHMARK(undo)->Arg(10)->Arg(2000);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
