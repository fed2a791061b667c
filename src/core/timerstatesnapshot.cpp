#include "timerstatesnapshot.h"

#include <QJsonValue>

#include <algorithm>

double TimerStateSnapshot::progressOf(double elapsed, double plannedDuration)
{
    if (plannedDuration <= 0)
        return 0;
    return std::clamp(elapsed / plannedDuration, 0.0, 1.0);
}

QJsonObject TimerStateSnapshot::toJson() const
{
    QJsonObject o{
        {QLatin1StringView("running"), running},
        {QLatin1StringView("paused"), paused},
        {QLatin1StringView("remaining"), remaining},
        {QLatin1StringView("elapsed"), elapsed},
        {QLatin1StringView("overtime"), overtime},
        {QLatin1StringView("cueName"), cueName},
        {QLatin1StringView("speaker"), speaker},
        {QLatin1StringView("messageUrgent"), messageUrgent},
        {QLatin1StringView("blackout"), blackout},
        {QLatin1StringView("freeze"), freeze},
        {QLatin1StringView("clockMode"), clockMode},
        {QLatin1StringView("progress"), progress},
    };
    if (nextCueName)
        o.insert(QLatin1StringView("nextCueName"), *nextCueName);
    if (message)
        o.insert(QLatin1StringView("message"), *message);
    return o;
}

std::optional<TimerStateSnapshot> TimerStateSnapshot::fromJson(const QJsonObject &object,
                                                               QString *error)
{
    bool ok = true;
    auto fail = [&](const char *key, const char *expected) {
        if (ok && error)
            *error = QStringLiteral("la clé « %1 » manque ou n'est pas %2")
                         .arg(QLatin1StringView(key), QString::fromUtf8(expected));
        ok = false;
    };
    auto boolean = [&](const char *key) {
        const QJsonValue v = object.value(QLatin1StringView(key));
        if (!v.isBool())
            fail(key, "un booléen");
        return v.toBool();
    };
    auto number = [&](const char *key) {
        const QJsonValue v = object.value(QLatin1StringView(key));
        if (!v.isDouble())
            fail(key, "un nombre");
        return v.toDouble();
    };
    auto text = [&](const char *key) {
        const QJsonValue v = object.value(QLatin1StringView(key));
        if (!v.isString())
            fail(key, "un texte");
        return v.toString();
    };
    auto optionalText = [&](const char *key) -> std::optional<QString> {
        const QJsonValue v = object.value(QLatin1StringView(key));
        if (v.isUndefined() || v.isNull())
            return std::nullopt;
        return text(key);
    };

    TimerStateSnapshot s;
    s.running = boolean("running");
    s.paused = boolean("paused");
    s.remaining = number("remaining");
    s.elapsed = number("elapsed");
    s.overtime = boolean("overtime");
    s.cueName = text("cueName");
    s.speaker = text("speaker");
    s.nextCueName = optionalText("nextCueName");
    s.message = optionalText("message");
    s.messageUrgent = boolean("messageUrgent");
    s.blackout = boolean("blackout");
    s.freeze = boolean("freeze");
    s.clockMode = boolean("clockMode");
    s.progress = number("progress");
    if (!ok)
        return std::nullopt;
    return s;
}
