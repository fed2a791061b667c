#pragma once

#include "alertplayer.h"
#include "timersession.h"

#include <QFile>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

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

// CPU time the whole process has used, user and system, in seconds.
inline double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &t) { return t.tv_sec + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The process's resident memory, in KiB.
inline long residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    return 0;
}

// "WHAT: n=… median … ms, max … ms" for a list of durations in milliseconds.
inline void printMedianAndMax(const char *what, std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    if (!ms.empty())
        std::printf("%s: n=%zu median %.2f ms, max %.2f ms\n", what, ms.size(), ms[ms.size() / 2], ms.back());
}

// The CPU the whole process uses over a stretch of wall time, from start() on.
struct CpuMeter {
    double cpuAtStart = 0;
    qint64 wallAtStartNs = 0;

    void start()
    {
        cpuAtStart = cpuSeconds();
        wallAtStartNs = steadyNs();
    }
    double wallSeconds() const { return (steadyNs() - wallAtStartNs) / 1e9; }
    void printCpu() const
    {
        std::printf("CPU of the whole process: %.2f %% of one core\n",
                    100.0 * (cpuSeconds() - cpuAtStart) / wallSeconds());
    }
};
