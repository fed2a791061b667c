#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

// The engine's display state frozen into one plain value, for remote displays and controllers.
struct TimerStateSnapshot {
    bool running = false;
    bool paused = false;
    double remaining = 0; // seconds; the held value while frozen
    double elapsed = 0;   // seconds
    bool overtime = false; // judged on the live clock, even while frozen
    QString cueName = QStringLiteral("—"); // "—" when no cue is active
    QString speaker;
    std::optional<QString> nextCueName;
    std::optional<QString> message;
    bool messageUrgent = false;
    bool blackout = false;
    bool freeze = false;
    bool clockMode = false;
    double progress = 0; // 0 to 1

    // elapsed / planned, clamped to 0…1; 0 when nothing was planned.
    static double progressOf(double elapsed, double plannedDuration);

    // Keys are the field names; the two optional fields are left out when absent.
    QJsonObject toJson() const;
    // Every key but "nextCueName" and "message" is required; a missing or wrong-typed one
    // fails, with a French reason in `error`.
    static std::optional<TimerStateSnapshot> fromJson(const QJsonObject &object,
                                                      QString *error = nullptr);

    bool operator==(const TimerStateSnapshot &) const = default;
};
