#pragma once

#include "cuelogentry.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

// What a show is doing now, beyond its project file: the cue on air and its clock, what has
// been played, what the outputs show. Kept in a small recovery file while a show is open, so
// that a show interrupted by a crash, a kill or a power cut resumes where the clock says it is.
struct LiveState {
    // An output window, by its identifier ("stage", "confidence"), and where it was.
    struct Output {
        QString window;
        QString screen;       // the display's name; empty when unknown
        bool fullScreen = false;

        bool operator==(const Output &) const = default;
    };

    QUuid sessionID;
    std::optional<QUuid> activeCueID;
    // Where the active cue was in the list: finds it again in a project whose cues were given
    // fresh ids when read (a file written without them).
    std::optional<int> activeCueIndex;
    std::optional<int> selectedCueIndex;
    bool running = false;
    bool paused = false;
    // The active cue's clock as it stood at `capturedAtMs` (wall clock, ms since the epoch):
    // seconds run, pauses excluded, and the remaining time as published.
    double elapsed = 0;
    double remaining = 0;
    double plannedDuration = 0;            // with the adjustments
    std::optional<qint64> hardOutTargetMs; // wall clock
    std::optional<qint64> pausedSinceMs;   // wall clock, while paused
    qint64 capturedAtMs = 0;
    QList<CueLogEntry> completedCueLog;
    double loggedOvertime = 0;
    std::optional<QString> message;
    bool messageUrgent = false;
    bool blackout = false;
    bool freeze = false;
    double frozenRemaining = 0;
    bool clockMode = false;
    std::optional<qint64> doorsTargetMs; // wall clock
    bool showLocked = false;
    QList<Output> outputs;
    // The project file the show was opened from, while the library holds no file of it yet (it
    // was opened from elsewhere and not saved since); empty otherwise. Kept by the recovery file
    // alone: the engine's own live state never names a file.
    QString projectFile;

    bool operator==(const LiveState &) const = default;

    // Whether the two differ in more than the clock's running on: a running cue's start
    // instant (capture time less elapsed) may drift by the clocks' resolution, up to
    // `toleranceSeconds`.
    bool sameAs(const LiveState &other, double toleranceSeconds = 0.25) const;
    // The elapsed time of the active cue at `wallMs`: it runs on while running, unpaused.
    double elapsedAt(qint64 wallMs) const;
};

// The recovery file: JSON, versioned; a file that does not decode is refused whole.
namespace LiveStateFile {
QByteArray encode(const LiveState &state);
std::optional<LiveState> decode(const QByteArray &bytes, QString *error = nullptr);
// The same document as a JSON object, as a main machine sends it to its followers.
QJsonObject toJson(const LiveState &state);
std::optional<LiveState> fromJson(const QJsonObject &object, QString *error = nullptr);
} // namespace LiveStateFile
