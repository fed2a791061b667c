#pragma once

#include "cue.h"
#include "linkedspreadsheet.h"

#include <QDateTime>
#include <QList>
#include <QLocale>
#include <QString>
#include <QTimeZone>
#include <QUuid>

#include <optional>

// One show: an ordered running order of cues plus a few facts about the event.
struct TimerSession {
    QUuid id = QUuid::createUuid();
    QString name = QStringLiteral("Nouvelle session");
    QList<Cue> cues; // index 0 is cue 1 for the operator
    QDateTime createdAt = QDateTime::currentDateTimeUtc();
    QDateTime updatedAt = createdAt; // refreshed by every edit of the cue list
    std::optional<QString> client;
    std::optional<QString> venue;
    std::optional<QString> operatorName;
    std::optional<QDateTime> eventDate;
    std::optional<QString> notes;
    std::optional<LinkedSpreadsheet> linkedSpreadsheet; // when imported from a spreadsheet
    std::optional<QDateTime> scheduledStart; // the show's planned start, for its timetable
    QList<CueTrigger> triggers; // sent for every cue, besides each cue's own

    TimerSession() = default;
    // A freshly made show created at `now`.
    explicit TimerSession(const QDateTime &now) : createdAt(now), updatedAt(now) {}

    // The client, the venue and the event date (medium date style), the non-empty ones
    // joined by " · ".
    QString metadataSummary(const QLocale &locale, const QTimeZone &zone) const;
    // The same in the application's display locale and time zone (see Fmt).
    QString metadataSummary() const;

    bool operator==(const TimerSession &) const = default;
};
