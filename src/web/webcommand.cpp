#include "webcommand.h"

#include "timerengine.h"

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
    {"check", WebCommand::Kind::Check},
};

// Largest adjustment accepted in one command, seconds: a day either way.
constexpr double maxAdjustSeconds = 86400;
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
    case Kind::Check:
        break; // the access code was right: that is all a check asks
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
