#include "showschedule.h"

#include "timerengine.h"

#include <cmath>

namespace ShowSchedule {

namespace {

// The moment of that time of day (hour and minute) nearest to `near`, in `zone`: the day
// before, the same day or the day after.
QDateTime nearest(const QDateTime &timeOfDay, const QDateTime &near, const QTimeZone &zone)
{
    const QTime local = timeOfDay.toTimeZone(zone).time();
    const QTime wanted(local.hour(), local.minute());
    const QDate day = near.toTimeZone(zone).date();
    QDateTime best;
    for (int shift : {-1, 0, 1}) {
        const QDateTime candidate(day.addDays(shift), wanted, zone);
        if (!best.isValid()
            || std::llabs(candidate.msecsTo(near)) < std::llabs(best.msecsTo(near)))
            best = candidate;
    }
    return best;
}

bool hasEndTime(const Cue &cue)
{
    return cue.mode == TimerMode::HardOut && cue.hardOutTime.has_value();
}

// Where a cue placed at `start` ends: its end time if it has one (never before its start),
// else after its planned length.
QDateTime endFrom(const Cue &cue, const QDateTime &start, const QTimeZone &zone, bool *before = nullptr)
{
    if (hasEndTime(cue)) {
        const QDateTime end = nearest(*cue.hardOutTime, start, zone);
        if (before)
            *before = end < start;
        return end < start ? start : end;
    }
    return start.addMSecs(qint64(std::llround(cue.duration * 1000)));
}

// Where a cue that would follow on at `after` is planned to start: at its fixed start if it has
// one, even before `after` (the cues before it then overrun it: a shortfall).
QDateTime startFrom(const Cue &cue, const QDateTime &after, const QTimeZone &zone)
{
    return cue.fixedStart ? nearest(*cue.fixedStart, after, zone) : after;
}

double seconds(const QDateTime &from, const QDateTime &to)
{
    return double(from.msecsTo(to)) / 1000.0;
}

} // namespace

std::optional<ShowPlan> plan(const TimerSession &session, const QTimeZone &zone)
{
    if (!session.scheduledStart)
        return std::nullopt;
    ShowPlan plan;
    plan.start = *session.scheduledStart;
    QDateTime t = plan.start;
    for (const Cue &cue : session.cues) {
        PlannedCue planned;
        planned.start = startFrom(cue, t, zone);
        if (cue.fixedStart)
            planned.marginBefore = seconds(t, planned.start);
        planned.end = endFrom(cue, planned.start, zone, &planned.endsBeforeStart);
        t = planned.end;
        plan.cues.append(planned);
    }
    plan.end = t;
    return plan;
}

namespace {

// Where the show goes on from: the offset, the first cue still to come and when the show is
// free to start it.
struct Standing {
    double offsetSeconds = 0;
    int next = 0;
    QDateTime freeAt;
};

Standing standingOf(const ShowPlan &plan, const QList<Cue> &cues, const ShowPosition &position,
                    const QDateTime &now)
{
    const auto planned = [&plan](int i) -> const PlannedCue & { return plan.cues.at(i); };
    const int count = int(std::min(cues.size(), plan.cues.size()));
    Standing s;
    if (position.activeIndex && *position.activeIndex < count) {
        const int i = *position.activeIndex;
        const PlannedCue &p = planned(i);
        s.offsetSeconds = std::max(seconds(p.start, position.activeStartedAt), seconds(p.end, now));
        s.freeAt = position.activeRemaining
                       ? now.addMSecs(qint64(std::llround(std::max(0.0, *position.activeRemaining) * 1000)))
                       : p.end.addMSecs(qint64(std::llround(s.offsetSeconds * 1000)));
        if (hasEndTime(cues[i]))
            s.freeAt = std::max(now, p.end); // an end time holds, whenever the cue began
        s.next = i + 1;
    } else if (position.lastEndedIndex && *position.lastEndedIndex < count) {
        const int i = *position.lastEndedIndex;
        const QDateTime due = i + 1 < count ? planned(i + 1).start : planned(i).end;
        s.offsetSeconds = i + 1 < count
                              ? std::max(seconds(planned(i).end, position.lastEndedAt), seconds(due, now))
                              : seconds(planned(i).end, position.lastEndedAt);
        // The next cue can go now: each second waited makes an early show less early, as the
        // offset says.
        s.freeAt = i + 1 < count ? now : position.lastEndedAt;
        s.next = i + 1;
    } else {
        s.offsetSeconds = std::max(0.0, seconds(plan.start, now));
        s.freeAt = std::max(now, plan.start);
    }
    return s;
}

} // namespace

double offset(const ShowPlan &plan, const QList<Cue> &cues, const ShowPosition &position, const QDateTime &now)
{
    return standingOf(plan, cues, position, now).offsetSeconds;
}

ScheduleStatus status(const ShowPlan &plan, const QList<Cue> &cues, const ShowPosition &position,
                      const QDateTime &now, const QTimeZone &zone)
{
    ScheduleStatus status;
    status.expectedStarts.resize(cues.size());
    const int count = int(std::min(cues.size(), plan.cues.size()));
    const Standing standing = standingOf(plan, cues, position, now);
    status.offsetSeconds = standing.offsetSeconds;
    QDateTime t = standing.freeAt;
    for (int j = standing.next; j < count; ++j) {
        const QDateTime start = std::max(startFrom(cues[j], t, zone), t);
        status.expectedStarts[j] = start;
        t = endFrom(cues[j], start, zone);
    }
    status.projectedEnd = t;
    return status;
}

QString offsetText(double offsetSeconds)
{
    // To the nearest second: the console reads it at the clock's ticks, which may fall a hair
    // before the second they show.
    offsetSeconds = std::round(offsetSeconds);
    if (std::fabs(offsetSeconds) < onTimeSeconds)
        return QStringLiteral("À l'heure");
    if (offsetSeconds > 0)
        return QStringLiteral("Retard : +") + TimerEngine::format(offsetSeconds, false);
    return QStringLiteral("Avance : \u2212") + TimerEngine::format(-offsetSeconds, false);
}

QString speakerText(double offsetSeconds)
{
    if (std::fabs(offsetSeconds) < onTimeSeconds)
        return QStringLiteral("Programme : à l'heure");
    const long long minutes = std::max(1LL, std::llround(std::fabs(offsetSeconds) / 60));
    if (offsetSeconds > 0)
        return QStringLiteral("Programme : +%1 min de retard").arg(minutes);
    return QStringLiteral("Programme : %1 min d'avance").arg(minutes);
}

} // namespace ShowSchedule
