#pragma once

#include <QtGlobal>

namespace TickPhase {

inline constexpr qint64 periodMs = 100;
// How long after a change of the displayed second a tick lands, at least: late enough to see
// the new second, early enough that nobody can tell. Timers count in whole milliseconds, so
// the tick lands up to one millisecond later than this.
inline constexpr qint64 leadUs = 100;

// Milliseconds from now to the next tick for a countdown showing `remaining` seconds, in
// 1…100. Ticks keep the 100 ms cadence but are phased so that one lands just after each
// change of the displayed whole second: below zero that change happens as the magnitude reaches
// the next whole second, above zero just after the value falls below a whole second (a tick
// landing exactly on the boundary would show the old second for a whole period).
qint64 delayUntilNextTickMs(double remaining);

// Seconds from now until a countdown showing `remaining` (finite) displays another whole
// second: at or above zero in [0, 1), below zero in (0, 1].
double secondsUntilDisplayedSecondChanges(double remaining);

// Which whole second a countdown showing `remaining` displays, as the formatter rounds it
// (down in magnitude, the sign kept: 0.4 and -0.4 are different seconds).
qint64 displayedSecond(double remaining);

} // namespace TickPhase
