#include "tickphase.h"

#include <cmath>

namespace TickPhase {

qint64 delayUntilNextTickMs(double remaining)
{
    if (!std::isfinite(remaining) || std::fabs(remaining) > 1e12)
        return periodMs;
    const double untilChange = secondsUntilDisplayedSecondChanges(remaining);
    // Rounded to the microsecond first, so that floating-point noise cannot add a millisecond.
    const qint64 micros = std::llround(untilChange * 1e6);
    const qint64 target = (micros + leadUs + 999) / 1000;
    const qint64 delay = target % periodMs;
    return delay == 0 ? periodMs : delay;
}

double secondsUntilDisplayedSecondChanges(double remaining)
{
    return remaining >= 0 ? remaining - std::floor(remaining) : std::floor(-remaining) + 1 + remaining;
}

qint64 displayedSecond(double remaining)
{
    if (!std::isfinite(remaining) || std::fabs(remaining) > 1e12)
        return 0;
    return remaining >= 0 ? qint64(std::floor(remaining)) : -1 - qint64(std::floor(-remaining));
}

} // namespace TickPhase
