#pragma once

#include "cuetrigger.h"
#include "timermode.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

// One timed item of a show. Durations and thresholds are seconds.
struct Cue {
    QUuid id = QUuid::createUuid(); // identity; finds the active cue again after list edits
    QString name = QStringLiteral("Nouveau cue");
    QString speaker;
    TimerMode mode = TimerMode::Duration;
    double duration = 600; // planned length; also the length of a hard-out cue without an end time
    std::optional<QDateTime> hardOutTime; // only its hour and minute in the user's calendar count
    std::optional<QDateTime> fixedStart;  // a planned start of its own: only its hour and minute count
    double warningThreshold = 120; // remaining time at or below which the cue is in the warning zone
    double dangerThreshold = 30;   // remaining time at or below which the cue is in the danger zone
    bool autoFollow = false;
    QString notes;
    std::optional<QString> colorHex; // kept exactly as chosen; parsed only for display
    std::optional<double> actualElapsed; // filled when the cue is left: how long it really ran
    std::optional<double> overtime;      // filled when the cue is left: how far it ran past zero
    QList<CueTrigger> triggers;          // messages to other gear as things happen to it

    bool operator==(const Cue &) const = default;
};
