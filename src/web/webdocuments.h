#pragma once

#include <QJsonObject>

class Clock;
class TimerEngine;

// The documents remote control serves. The state document of GET /api/state is the live
// document and the show document together, each cue also saying whether it is the active one.
// A WebSocket viewer gets the two parts apart, since the show changes only when it is edited,
// loaded or closed (see the README).

// The show: `sessionName` and `cues` (each cue's texts, durations, thresholds and colours).
// ViewerFeed::showEdited() compares the same fields of the cues.
QJsonObject webShowDocument(const TimerEngine &engine);

// Everything else: the snapshot's fields with the clock read now, the active cue's row, the
// blink and the doors, what a page needs to count and show the time of day by itself (the
// instants the shown seconds change and the displays' time zone), and `schedule`: null for a
// show without a start time, else {showStartMs, offsetSeconds, projectedEndMs, text, color}, the
// show against its timetable read at the wall clock's nearest whole second (the offset rounded
// to the second, the projected end cut to it, the speaker's line and its "#RRGGBB" colour).
QJsonObject webLiveDocument(const TimerEngine &engine, const Clock &clock);

// The live document and the show together, each cue also saying whether it is the active one;
// for a show with a start time, each cue also has `plannedStartMs` and `expectedStartMs` (null
// unless it is still to come), also listed alone in `schedule.cues`.
QJsonObject webStateDocument(const TimerEngine &engine, const Clock &clock);

// Milliseconds from `nowMs` (the wall clock, ms since the epoch) until the instant the schedule
// is read at (its nearest whole second) changes: at each half second, 1 to 1000 ms away.
qint64 msUntilScheduleReadingChanges(qint64 nowMs);

// Milliseconds from now until the shown whole second of `remaining` changes, for a clock that
// runs down at one second per second. The display truncates toward zero ("-00:00" for -0.4).
qint64 msUntilShownSecondChanges(double remaining);
