#pragma once

#include <QString>

// One cue left while running: what was planned and what happened, in seconds.
struct CueLogEntry {
    QString cue;          // the cue's name
    double planned = 0;   // the length it was given (after hard-out resolution and adjustments)
    double actual = 0;    // how long it ran, pauses excluded
    double overtime = 0;  // how far past zero it went; 0 if it did not

    bool operator==(const CueLogEntry &) const = default;
};
