#include "mainclockoffset.h"

#include <algorithm>
#include <cmath>

bool MainClockOffset::addRoundTrip(qint64 sentMs, qint64 mainMs, qint64 receivedMs)
{
    const qint64 trip = receivedMs - sentMs;
    if (trip < 0)
        return false;
    m_samples.append({trip, double(mainMs) - double(sentMs + receivedMs) / 2.0});
    if (m_samples.size() > keptSamples)
        m_samples.removeFirst();
    // Of trips as fast, the newest: the clocks may have drifted since the older.
    const auto best = std::min_element(m_samples.crbegin(), m_samples.crend(),
                                       [](const Sample &a, const Sample &b) { return a.tripMs < b.tripMs; });
    const bool moved = !m_offsetMs || std::fabs(best->offsetMs - *m_offsetMs) >= 1;
    m_offsetMs = best->offsetMs;
    return moved;
}

void MainClockOffset::reset()
{
    m_samples.clear();
    m_offsetMs.reset();
}

LiveState MainClockOffset::toLocal(LiveState state) const
{
    const qint64 offset = std::llround(m_offsetMs.value_or(0));
    const auto shift = [offset](std::optional<qint64> &instant) {
        if (instant)
            *instant -= offset;
    };
    state.capturedAtMs -= offset;
    shift(state.hardOutTargetMs);
    shift(state.pausedSinceMs);
    shift(state.doorsTargetMs);
    return state;
}
