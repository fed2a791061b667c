#pragma once

#include "manualclock.h"
#include "timerengine.h"

#include <QCoreApplication>
#include <QStringList>
#include <QTimeZone>

#include <chrono>

// Records the alert sounds the engine asks for, with the monotonic time of each.
class RecordingAlertPlayer final : public AlertPlayer
{
public:
    struct Played {
        QString name;
        qint64 atMs;
    };

    explicit RecordingAlertPlayer(const Clock &clock) : m_clock(clock) {}
    void play(const QString &name) override
    {
        played.append({name, m_clock.monotonicUs() / 1000});
    }
    QStringList names() const
    {
        QStringList list;
        for (const Played &p : played)
            list << p.name;
        return list;
    }

    QList<Played> played;

private:
    const Clock &m_clock;
};

// An engine on a hand-moved clock in Paris, with its sounds and state hook recorded.
struct EngineFixture {
    explicit EngineFixture(
        const QDateTime &start = QDateTime(QDate(2026, 11, 21), QTime(14, 0), QTimeZone("Europe/Paris")))
        : clock(start.toUTC(), QTimeZone("Europe/Paris"))
    {
        engine.setOnStateChange([this](const TimerStateSnapshot &s) { snapshots << s; });
    }

    // Runs the jobs the engine posted to the event loop (follow-on, doors start, blink end).
    static void runPostedJobs() { QCoreApplication::sendPostedEvents(); }

    ManualClock clock;
    RecordingAlertPlayer sound{clock};
    TimerEngine engine{clock, sound};
    QList<TimerStateSnapshot> snapshots;
};

inline Cue durationCue(const QString &name, double duration, double warning = 120,
                       double danger = 30, bool autoFollow = false)
{
    Cue cue;
    cue.name = name;
    cue.duration = duration;
    cue.warningThreshold = warning;
    cue.dangerThreshold = danger;
    cue.autoFollow = autoFollow;
    return cue;
}

inline TimerSession showOf(const QList<Cue> &cues)
{
    TimerSession session(QDateTime(QDate(2026, 11, 1), QTime(9, 0), Qt::UTC));
    session.name = QStringLiteral("Test");
    session.cues = cues;
    return session;
}
