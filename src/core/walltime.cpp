#include "walltime.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace WallTime {
namespace {

int offsetAt(const QTimeZone &zone, qint64 utcSeconds)
{
    return zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(utcSeconds, Qt::UTC));
}

// The instant of `time`'s hour and minute on `date` in `zone`, or `fallback` when it can't be
// built.
QDateTime sameTimeOn(QDate date, const QDateTime &time, const QTimeZone &zone,
                     const QDateTime &fallback)
{
    const QTime t = time.toTimeZone(zone).time();
    return instantAt(date, t.hour(), t.minute(), zone).value_or(fallback);
}

} // namespace

std::optional<QDateTime> instantAt(QDate date, int hour, int minute, const QTimeZone &zone)
{
    if (!zone.isValid() || !date.isValid())
        return std::nullopt;
    // The wall-clock reading as seconds, as if it were UTC; an instant u shows it when
    // u + offset(u) equals it.
    const qint64 local = QDateTime(date, QTime(hour, minute), Qt::UTC).toSecsSinceEpoch();
    std::vector<int> offsets;
    for (qint64 probe : {local - 86400, local, local + 86400}) {
        const int offset = offsetAt(zone, probe);
        if (std::find(offsets.begin(), offsets.end(), offset) == offsets.end())
            offsets.push_back(offset);
    }
    std::optional<qint64> first;
    for (int offset : offsets) {
        const qint64 candidate = local - offset;
        if (offsetAt(zone, candidate) == offset && (!first || candidate < *first))
            first = candidate;
    }
    if (first)
        return QDateTime::fromSecsSinceEpoch(*first, Qt::UTC);

    // Skipped by a daylight-saving change: the first instant after the gap is the transition
    // that opened it.
    const auto [lowest, highest] = std::minmax_element(offsets.begin(), offsets.end());
    const QTimeZone::OffsetData transition =
        zone.nextTransition(QDateTime::fromSecsSinceEpoch(local - *highest - 1, Qt::UTC));
    if (transition.atUtc.isValid() && transition.atUtc.toSecsSinceEpoch() <= local - *lowest)
        return transition.atUtc.toUTC();
    return std::nullopt;
}

QDateTime resolveHardOut(const Cue &cue, const QDateTime &now, const QTimeZone &zone)
{
    if (!cue.hardOutTime) {
        const double ms = std::isfinite(cue.duration) ? cue.duration * 1000 : 0;
        return now.addMSecs(std::llround(std::clamp(ms, -1e15, 1e15)));
    }
    const QDate today = now.toTimeZone(zone).date();
    QDateTime target = sameTimeOn(today, *cue.hardOutTime, zone, now);
    constexpr qint64 graceMs = 6 * 3600 * 1000;
    if (target <= now && target.msecsTo(now) > graceMs)
        target = sameTimeOn(today.addDays(1), *cue.hardOutTime, zone, target);
    return target;
}

QDateTime resolveDoorsTarget(const QDateTime &time, const QDateTime &now, const QTimeZone &zone)
{
    const QDate today = now.toTimeZone(zone).date();
    QDateTime target = sameTimeOn(today, time, zone, time);
    if (target <= now)
        target = sameTimeOn(today.addDays(1), time, zone, target.addDays(1));
    return target;
}

} // namespace WallTime
