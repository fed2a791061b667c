#pragma once

#include "alertplayer.h"
#include "timersession.h"

#include <chrono>

// What the benchmarks share: an alert player that plays nothing, a one-cue show, a clock.

class SilentPlayer final : public AlertPlayer
{
public:
    void play(const QString &) override {}
};

// A show of one cue of `seconds`, long enough not to end while measured.
inline TimerSession showWithOneCue(double seconds)
{
    TimerSession show;
    Cue cue;
    cue.duration = seconds;
    show.cues << cue;
    return show;
}

// Nanoseconds on the monotonic clock, comparable between threads.
inline qint64 steadyNs()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}
