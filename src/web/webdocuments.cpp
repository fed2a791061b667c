#include "webdocuments.h"

#include "apptheme.h"
#include "clock.h"
#include "formatters.h"
#include "showschedule.h"
#include "tickphase.h"
#include "timerengine.h"

#include <QJsonArray>
#include <QJsonValue>

#include <cmath>

namespace {
// "#RRGGBB", as the pages' style sheet writes colours.
QString cssHex(const ThemeColor &color)
{
    return QStringLiteral("#%1%2%3")
        .arg(color.red, 2, 16, QLatin1Char('0'))
        .arg(color.green, 2, 16, QLatin1Char('0'))
        .arg(color.blue, 2, 16, QLatin1Char('0'))
        .toUpper();
}

qint64 floorDiv(qint64 a, qint64 b)
{
    return a / b - (a % b != 0 && (a < 0) != (b < 0));
}

// The wall clock rounded to the nearest whole second, in ms since the epoch.
qint64 nearestWholeSecondMs(qint64 ms)
{
    return floorDiv(ms + 500, 1000) * 1000;
}

// The show against its timetable, read at the wall clock's nearest whole second, the active
// cue's clock read for that instant too: a show that runs late, or waits between cues, then
// moves its offset and its projected end together, once a second, rather than at each tick or
// at two different instants. None without a start time.
std::optional<ScheduleStatus> scheduleReading(const TimerEngine &engine, const Clock &clock)
{
    const std::optional<ShowPlan> &plan = engine.schedulePlan();
    if (!plan)
        return std::nullopt;
    const QDateTime now = clock.now();
    const qint64 ms = now.toMSecsSinceEpoch();
    const qint64 readMs = nearestWholeSecondMs(ms);
    ShowPosition position = engine.showPosition();
    if (position.activeRemaining && !engine.isPaused())
        *position.activeRemaining += double(ms - readMs) / 1000.0;
    return ShowSchedule::status(*plan, engine.session().cues, position, now.addMSecs(readMs - ms),
                                clock.timeZone());
}

QJsonValue msSinceEpoch(const QDateTime &at)
{
    return at.isValid() ? QJsonValue(double(at.toMSecsSinceEpoch())) : QJsonValue(QJsonValue::Null);
}

// `schedule` of the live document: the offset in whole seconds, and the speaker's line and its
// colour made from that very value, so that they change only with it.
QJsonObject scheduleObject(const ShowPlan &plan, const ScheduleStatus &status)
{
    const double offset = double(std::llround(status.offsetSeconds));
    const qint64 endMs = status.projectedEnd.toMSecsSinceEpoch();
    return QJsonObject{
        {QLatin1StringView("showStartMs"), msSinceEpoch(plan.start)},
        {QLatin1StringView("offsetSeconds"), offset},
        {QLatin1StringView("projectedEndMs"), double(floorDiv(endMs, 1000) * 1000)},
        {QLatin1StringView("text"), ShowSchedule::speakerText(offset)},
        {QLatin1StringView("color"), cssHex(AppTheme::scheduleColor(offset))},
    };
}
} // namespace

qint64 msUntilScheduleReadingChanges(qint64 nowMs)
{
    return nearestWholeSecondMs(nowMs) + 500 - nowMs;
}

qint64 msUntilShownSecondChanges(double remaining)
{
    if (!std::isfinite(remaining))
        return 1000;
    return qint64(std::llround(TickPhase::secondsUntilDisplayedSecondChanges(remaining) * 1000.0));
}

QJsonObject webShowDocument(const TimerEngine &engine)
{
    QJsonArray cues;
    for (const Cue &cue : engine.session().cues) {
        const std::optional<ThemeColor> own = AppTheme::cueColor(cue);
        cues.append(QJsonObject{
            {QLatin1StringView("name"), cue.name},
            {QLatin1StringView("speaker"), cue.speaker},
            {QLatin1StringView("duration"), cue.duration},
            {QLatin1StringView("warningThreshold"), cue.warningThreshold},
            {QLatin1StringView("dangerThreshold"), cue.dangerThreshold},
            {QLatin1StringView("colorHex"),
             cue.colorHex ? QJsonValue(*cue.colorHex) : QJsonValue(QJsonValue::Null)},
            {QLatin1StringView("color"), own ? QJsonValue(cssHex(*own)) : QJsonValue(QJsonValue::Null)},
        });
    }
    return QJsonObject{{QLatin1StringView("sessionName"), engine.sessionName()},
                       {QLatin1StringView("cues"), cues}};
}

namespace {
QJsonObject liveDocument(const TimerEngine &engine, const Clock &clock,
                         const std::optional<ScheduleStatus> &schedule)
{
    const TimerStateSnapshot snapshot = engine.snapshot();
    // The clock is read now, next to serverTimeMs (microseconds apart), not taken from the
    // engine's last tick (up to 100 ms before), so that a page can count on from it.
    const TimerEngine::ClockReading live = engine.readClock();
    const qint64 nowMs = clock.now().toMSecsSinceEpoch();
    const double shown = snapshot.freeze ? snapshot.remaining : live.remaining;
    QJsonObject doc = snapshot.toJson();
    doc.insert(QLatin1StringView("remaining"), shown);
    doc.insert(QLatin1StringView("elapsed"), live.elapsed);
    doc.insert(QLatin1StringView("overtime"), live.remaining < 0);
    doc.insert(QLatin1StringView("progress"),
               TimerStateSnapshot::progressOf(live.elapsed, engine.plannedDuration()));
    doc.insert(QLatin1StringView("liveRemaining"), live.remaining);
    doc.insert(QLatin1StringView("plannedDuration"), engine.plannedDuration());

    const std::optional<int> active = engine.activeCueIndex();
    doc.insert(QLatin1StringView("activeCueIndex"),
               active ? QJsonValue(*active) : QJsonValue(QJsonValue::Null));
    const std::optional<int> selected = engine.selectedCueIndex();
    doc.insert(QLatin1StringView("selectedCueIndex"),
               selected ? QJsonValue(*selected) : QJsonValue(QJsonValue::Null));
    // "Fin journée" is the reader's now, plus the running cue's remaining time (none in
    // overtime), plus this.
    doc.insert(QLatin1StringView("laterCuesDuration"), engine.laterCuesDuration());
    doc.insert(QLatin1StringView("blinkActive"), engine.blinkActive());
    const std::optional<QDateTime> doors = engine.doorsTarget();
    doc.insert(QLatin1StringView("doorsTargetMs"),
               doors ? QJsonValue(double(doors->toMSecsSinceEpoch())) : QJsonValue(QJsonValue::Null));

    // The cue clock runs down only while a cue runs unpaused; the stage's digits also stand
    // still while frozen.
    const bool clockRuns = snapshot.running && !snapshot.paused;
    auto nextChange = [nowMs](bool runs, double remaining) {
        return runs ? QJsonValue(double(nowMs + msUntilShownSecondChanges(remaining)))
                    : QJsonValue(QJsonValue::Null);
    };
    doc.insert(QLatin1StringView("nextSecondAtMs"), nextChange(clockRuns && !snapshot.freeze, shown));
    doc.insert(QLatin1StringView("liveNextSecondAtMs"), nextChange(clockRuns, live.remaining));
    doc.insert(QLatin1StringView("serverTimeMs"), double(nowMs));

    // The displays' calendar, so that a browser elsewhere shows the venue's time of day.
    const QTimeZone zone = Fmt::timeZone();
    const QByteArray zoneId = zone.id();
    doc.insert(QLatin1StringView("timeZone"),
               zoneId.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(QString::fromUtf8(zoneId)));
    doc.insert(QLatin1StringView("utcOffsetSeconds"),
               zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(nowMs, Qt::UTC)));
    doc.insert(QLatin1StringView("locale"), Fmt::locale().bcp47Name());

    const std::optional<ShowPlan> &plan = engine.schedulePlan();
    doc.insert(QLatin1StringView("schedule"), plan && schedule ? QJsonValue(scheduleObject(*plan, *schedule))
                                                               : QJsonValue(QJsonValue::Null));
    return doc;
}
} // namespace

QJsonObject webLiveDocument(const TimerEngine &engine, const Clock &clock)
{
    return liveDocument(engine, clock, scheduleReading(engine, clock));
}

QJsonObject webStateDocument(const TimerEngine &engine, const Clock &clock)
{
    const std::optional<ScheduleStatus> schedule = scheduleReading(engine, clock);
    QJsonObject doc = liveDocument(engine, clock, schedule);
    const QJsonObject show = webShowDocument(engine);
    QJsonArray cues = show.value(QLatin1StringView("cues")).toArray();
    const int active = engine.activeCueIndex().value_or(-1);
    const std::optional<ShowPlan> &plan = engine.schedulePlan();
    QJsonArray timetable;
    for (qsizetype i = 0; i < cues.size(); ++i) {
        QJsonObject cue = cues.at(i).toObject();
        cue.insert(QLatin1StringView("active"), i == active);
        if (plan && schedule) {
            // Each cue's planned start, and when it should now start if it is still to come.
            const QJsonObject times{
                {QLatin1StringView("plannedStartMs"),
                 i < plan->cues.size() ? msSinceEpoch(plan->cues.at(i).start) : QJsonValue(QJsonValue::Null)},
                {QLatin1StringView("expectedStartMs"),
                 i < schedule->expectedStarts.size() ? msSinceEpoch(schedule->expectedStarts.at(i))
                                                     : QJsonValue(QJsonValue::Null)},
            };
            for (auto it = times.constBegin(); it != times.constEnd(); ++it)
                cue.insert(it.key(), it.value());
            timetable.append(times);
        }
        cues.replace(i, cue);
    }
    if (plan && schedule) {
        QJsonObject scheduleDoc = doc.value(QLatin1StringView("schedule")).toObject();
        scheduleDoc.insert(QLatin1StringView("cues"), timetable);
        doc.insert(QLatin1StringView("schedule"), scheduleDoc);
    }
    doc.insert(QLatin1StringView("sessionName"), show.value(QLatin1StringView("sessionName")));
    doc.insert(QLatin1StringView("cues"), cues);
    return doc;
}
