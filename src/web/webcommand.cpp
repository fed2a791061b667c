#include "webcommand.h"

#include "apptheme.h"
#include "clock.h"
#include "formatters.h"
#include "tickphase.h"
#include "timerengine.h"

#include <QJsonArray>
#include <QJsonValue>

#include <cmath>

namespace {
struct Name {
    const char *text;
    WebCommand::Kind kind;
};
constexpr Name names[] = {
    {"play", WebCommand::Kind::Play},       {"pause", WebCommand::Kind::Pause},
    {"stop", WebCommand::Kind::Stop},       {"next", WebCommand::Kind::Next},
    {"prev", WebCommand::Kind::Prev},       {"reset", WebCommand::Kind::Reset},
    {"blackout", WebCommand::Kind::Blackout}, {"blink", WebCommand::Kind::Blink},
    {"message", WebCommand::Kind::Message}, {"adjust", WebCommand::Kind::Adjust},
    {"start", WebCommand::Kind::Start},     {"freeze", WebCommand::Kind::Freeze},
    {"clockmode", WebCommand::Kind::ClockMode}, {"doors", WebCommand::Kind::Doors},
};

// Largest adjustment accepted in one command, seconds: a day either way.
constexpr double maxAdjustSeconds = 86400;

QString cssHex(const ThemeColor &color)
{
    return QStringLiteral("#%1%2%3")
        .arg(color.red, 2, 16, QLatin1Char('0'))
        .arg(color.green, 2, 16, QLatin1Char('0'))
        .arg(color.blue, 2, 16, QLatin1Char('0'))
        .toUpper();
}
} // namespace

bool WebCommand::isCommandName(const QString &name)
{
    for (const Name &n : names)
        if (name == QLatin1StringView(n.text))
            return true;
    return false;
}

QStringList WebCommand::commandNames()
{
    QStringList list;
    for (const Name &n : names)
        list.append(QString::fromLatin1(n.text));
    return list;
}

std::optional<WebCommand> WebCommand::decode(const QString &name, const QJsonObject &body,
                                             QString *error)
{
    WebCommand command;
    bool known = false;
    for (const Name &n : names) {
        if (name == QLatin1StringView(n.text)) {
            command.kind = n.kind;
            known = true;
        }
    }
    auto fail = [error](const QString &reason) -> std::optional<WebCommand> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    if (!known)
        return fail(QStringLiteral("Commande inconnue : « %1 »").arg(name));

    switch (command.kind) {
    case Kind::Message: {
        const QJsonValue text = body.value(QLatin1StringView("text"));
        if (text.isString())
            command.text = text.toString();
        else if (!text.isNull())
            return fail(QStringLiteral("« text » doit être un texte ou null"));
        const QJsonValue urgent = body.value(QLatin1StringView("urgent"));
        if (!urgent.isUndefined() && !urgent.isBool())
            return fail(QStringLiteral("« urgent » doit être un booléen"));
        command.urgent = urgent.toBool(false);
        break;
    }
    case Kind::Adjust: {
        const QJsonValue seconds = body.value(QLatin1StringView("seconds"));
        if (!seconds.isDouble() || !std::isfinite(seconds.toDouble())
            || std::abs(seconds.toDouble()) > maxAdjustSeconds)
            return fail(QStringLiteral("« seconds » doit être un nombre de secondes (±86400 au plus)"));
        command.seconds = seconds.toDouble();
        break;
    }
    case Kind::Start: {
        const QJsonValue index = body.value(QLatin1StringView("index"));
        const double value = index.toDouble(-1);
        if (!index.isDouble() || value != std::floor(value) || value < 0 || value > 1e6)
            return fail(QStringLiteral("« index » doit être un entier positif ou nul"));
        command.index = int(value);
        break;
    }
    case Kind::Doors: {
        const QJsonValue at = body.value(QLatin1StringView("at"));
        const QTime time = QTime::fromString(at.toString(), QStringLiteral("HH:mm"));
        if (at.isString() && time.isValid())
            command.doorsAt = time;
        else if (!at.isNull())
            return fail(QStringLiteral("« at » doit être une heure « HH:mm » ou null"));
        break;
    }
    default:
        break;
    }
    return command;
}

std::optional<QString> applyWebCommand(TimerEngine &engine, const WebCommand &command)
{
    using Kind = WebCommand::Kind;
    switch (command.kind) {
    case Kind::Play:
        engine.start();
        break;
    case Kind::Pause:
        engine.pause();
        break;
    case Kind::Stop:
        engine.stop();
        break;
    case Kind::Next:
        engine.next();
        break;
    case Kind::Prev:
        engine.previous();
        break;
    case Kind::Reset:
        engine.reset();
        break;
    case Kind::Blackout:
        engine.setBlackout(!engine.blackout());
        engine.notifyStateChange(); // the flag calls no hook itself
        break;
    case Kind::ClockMode:
        engine.setClockMode(!engine.clockMode());
        engine.notifyStateChange(); // the flag calls no hook itself
        break;
    case Kind::Freeze:
        engine.toggleFreeze();
        break;
    case Kind::Doors:
        if (command.doorsAt)
            engine.startDoorsAt(*command.doorsAt);
        else
            engine.cancelDoors();
        break;
    case Kind::Blink:
        engine.triggerBlink(TimerEngine::blinkSeconds);
        break;
    case Kind::Message:
        engine.sendMessage(command.text, command.urgent);
        break;
    case Kind::Adjust:
        engine.adjust(command.seconds);
        break;
    case Kind::Start: {
        const qsizetype count = engine.session().cues.size();
        if (command.index >= count)
            return count == 0 ? QStringLiteral("Aucun cue dans le show")
                              : QStringLiteral("Aucun cue à l'index %1 (de 0 à %2)")
                                    .arg(command.index)
                                    .arg(count - 1);
        engine.start(command.index);
        break;
    }
    }
    return std::nullopt;
}

qint64 msUntilShownSecondChanges(double remaining)
{
    if (!std::isfinite(remaining))
        return 1000;
    return qint64(std::llround(TickPhase::secondsUntilDisplayedSecondChanges(remaining) * 1000.0));
}

QJsonObject webStateDocument(const TimerEngine &engine, const Clock &clock)
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

    QJsonArray cues;
    const std::optional<int> active = engine.activeCueIndex();
    const QList<Cue> &list = engine.session().cues;
    for (qsizetype i = 0; i < list.size(); ++i) {
        const Cue &cue = list[i];
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
            {QLatin1StringView("active"), active && *active == i},
        });
    }
    doc.insert(QLatin1StringView("sessionName"), engine.sessionName());
    doc.insert(QLatin1StringView("cues"), cues);
    doc.insert(QLatin1StringView("activeCueIndex"),
               active ? QJsonValue(*active) : QJsonValue(QJsonValue::Null));
    doc.insert(QLatin1StringView("blinkActive"), engine.blinkActive());
    const std::optional<QDateTime> doors = engine.doorsTarget();
    doc.insert(QLatin1StringView("doorsTargetMs"),
               doors ? QJsonValue(double(doors->toMSecsSinceEpoch())) : QJsonValue(QJsonValue::Null));

    // The cue clock runs down only while a cue runs unpaused; the stage's digits also stand
    // still while frozen. A standing clock's second stays until the next push.
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
