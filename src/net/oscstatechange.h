#pragma once

#include "osccodec.h"

#include <QList>
#include <QString>

class TimerEngine;

// What a show-control program is told at once on each change of the transport or of the show
// controls, when it asks for it: "/kairon/state" and "/kairon/message". Flags travel as 32-bit
// integers 1 or 0 and texts as strings, like the per-second messages.
namespace OSCStateChange {

inline constexpr char stateAddress[] = "/kairon/state";
inline constexpr char messageAddress[] = "/kairon/message";

// "/kairon/state": running, paused, cue number, cue name, blackout, freeze, clock mode
// (type tags ",iiisiii").
struct ShowState {
    bool running = false;
    bool paused = false;
    int cueNumber = 0; // the active cue's place in the running order, from 1; 0 when none
    QString cueName;   // "" when no cue is active
    bool blackout = false;
    bool freeze = false;
    bool clockMode = false;

    bool operator==(const ShowState &) const = default;
    QList<OSCArgument> arguments() const;
};

// "/kairon/message": the text on air ("" when none) and whether it is urgent (",si"). A message
// taken off air is never urgent.
struct OnAir {
    QString text;
    bool urgent = false;

    bool operator==(const OnAir &) const = default;
    QList<OSCArgument> arguments() const;
};

ShowState showStateOf(const TimerEngine &engine);
OnAir onAirOf(const TimerEngine &engine);

} // namespace OSCStateChange
