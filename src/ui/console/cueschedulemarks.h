#pragma once

#include <QList>
#include <QString>

class TimerEngine;

// What a cue's row in the console's list says of the show's timetable.
struct CueScheduleMarks {
    QString plannedStart;  // "20:15"; empty while the show has no start time
    QString expectedStart; // "→ 20:19": a cue still to come, now due a minute or more off its plan
    bool expectedLate = false;
    // A cue with a fixed start: the room the cues before it leave, "Marge 05:00", or what they
    // overrun it by, "Dépassement 03:00".
    QString margin;
    bool shortfall = false;
    bool endsBeforeStart = false; // its end time falls before its planned start

    bool operator==(const CueScheduleMarks &) const = default;
};

// One per cue of the engine's show, in its order: all empty without a start time.
QList<CueScheduleMarks> cueScheduleMarks(const TimerEngine &engine);
