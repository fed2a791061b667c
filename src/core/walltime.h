#pragma once

#include "cue.h"

#include <QDate>
#include <QDateTime>
#include <QTimeZone>

#include <optional>

// Times of day in the user's calendar, as the hard-out and doors targets need them.
namespace WallTime {

// The instant at hour:minute:00 on `date` in `zone`. A time skipped by a daylight-saving
// change gives the first instant after the gap; a time that occurs twice gives the first of
// the two. Absent when the zone or the date is unusable.
std::optional<QDateTime> instantAt(QDate date, int hour, int minute, const QTimeZone &zone);

// When a hard-out cue started at `now` ends: the hour and minute of its end time today, or
// tomorrow when that is more than six hours past (so 00:30 chosen at 23:00 means tomorrow,
// while 14:00 chosen at 14:10 stays today and the cue starts already in overtime). Without an
// end time, `now` plus the cue's duration.
QDateTime resolveHardOut(const Cue &cue, const QDateTime &now, const QTimeZone &zone);

// When a doors countdown towards the hour and minute of `time` ends: today, or tomorrow as soon
// as that time is reached or past (no grace, unlike hard-out cues).
QDateTime resolveDoorsTarget(const QDateTime &time, const QDateTime &now, const QTimeZone &zone);

} // namespace WallTime
