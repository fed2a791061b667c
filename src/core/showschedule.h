#pragma once

#include "cue.h"
#include "timersession.h"

#include <QDateTime>
#include <QList>
#include <QTimeZone>

#include <optional>

// One cue of the show's plan.
struct PlannedCue {
    QDateTime start;
    QDateTime end;
    // A hard-out whose time of day falls before the cue's planned start: it is planned with no
    // length, and the list says "Fin avant le début".
    bool endsBeforeStart = false;
    // A cue with a fixed start: that start minus the planned end of the cues before it, in
    // seconds; negative when they overrun it (a shortfall).
    std::optional<double> marginBefore;

    bool operator==(const PlannedCue &) const = default;
};

// The show's timetable: where each cue should start and end, from the show's start.
struct ShowPlan {
    QDateTime start;
    QList<PlannedCue> cues; // one per cue of the show, in its order
    QDateTime end;          // the last cue's planned end; the start for a show without cues

    bool operator==(const ShowPlan &) const = default;
};

// Where the show stands, as the engine knows it: the cue running or paused and when it was
// started, or else the last cue left and when.
struct ShowPosition {
    std::optional<int> activeIndex;
    QDateTime activeStartedAt;
    std::optional<int> lastEndedIndex;
    QDateTime lastEndedAt;
    // What the active cue's clock has left, adjustments and pauses included: it ends that much
    // after now (at once in overtime). Unknown: it runs its planned length from its start.
    std::optional<double> activeRemaining;
};

// How the show runs against its plan.
struct ScheduleStatus {
    // Where the show is minus where it should be, in seconds: positive when late.
    double offsetSeconds = 0;
    QDateTime projectedEnd;
    // For each cue still to come (after the active or last one), when it should now start;
    // an invalid date for the others.
    QList<QDateTime> expectedStarts;
};

// The show's plan and the live offset. The plan starts at the show's start; each cue starts at
// the end of the one before, or at its own fixed start, and lasts its planned length, or up to
// its end time for a hard-out cue. Times of day (end times, fixed starts) are placed on the day
// nearest to the moment they follow, so that a show crosses midnight.
namespace ShowSchedule {

// None for a show without a start time.
std::optional<ShowPlan> plan(const TimerSession &session, const QTimeZone &zone);

// For the active cue: its actual start minus its planned start, plus what it has overrun of its
// planned length (pauses count as time spent). Between cues: from the last cue's end, and the
// time waited past the next cue's planned start. Before any cue: the time past the show's
// start. Later cues then follow from where the show is, a fixed start or an end time holding
// them where they fall later.
ScheduleStatus status(const ShowPlan &plan, const QList<Cue> &cues, const ShowPosition &position,
                      const QDateTime &now, const QTimeZone &zone);

// The offset alone, as status() gives it, without walking the cues to come.
double offset(const ShowPlan &plan, const QList<Cue> &cues, const ShowPosition &position, const QDateTime &now);

// The console's line: "Retard : +04:12" from 30 s late, "Avance : −01:30" from 30 s early,
// "À l'heure" within.
QString offsetText(double offsetSeconds);
// The speaker's line, in whole minutes: "Programme : +4 min de retard", "Programme : 2 min
// d'avance", "Programme : à l'heure".
QString speakerText(double offsetSeconds);

// Seconds within which the show is on time, and from which its lateness is a warning, then a
// danger.
constexpr double onTimeSeconds = 30;
constexpr double lateWarningSeconds = 120;
constexpr double lateDangerSeconds = 300;

} // namespace ShowSchedule
