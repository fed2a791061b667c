#include "webdocuments.h"

#include "apptheme.h"
#include "clock.h"
#include "formatters.h"
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
} // namespace

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

QJsonObject webLiveDocument(const TimerEngine &engine, const Clock &clock)
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
    return doc;
}

QJsonObject webStateDocument(const TimerEngine &engine, const Clock &clock)
{
    QJsonObject doc = webLiveDocument(engine, clock);
    const QJsonObject show = webShowDocument(engine);
    QJsonArray cues = show.value(QLatin1StringView("cues")).toArray();
    const int active = engine.activeCueIndex().value_or(-1);
    for (qsizetype i = 0; i < cues.size(); ++i) {
        QJsonObject cue = cues.at(i).toObject();
        cue.insert(QLatin1StringView("active"), i == active);
        cues.replace(i, cue);
    }
    doc.insert(QLatin1StringView("sessionName"), show.value(QLatin1StringView("sessionName")));
    doc.insert(QLatin1StringView("cues"), cues);
    return doc;
}
