#include "livestate.h"

#include "jsonwriter.h"
#include "uuidtext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

constexpr int formatVersion = 1;
constexpr double maxSeconds = 366.0 * 24 * 3600;
constexpr qint64 maxInstantMs = 100'000'000'000'000; // 5138-11-16

QJsonValue optionalNumber(const std::optional<qint64> &value)
{
    return value ? QJsonValue(double(*value)) : QJsonValue();
}

// An instant in milliseconds; one out of range reads as -1, which the decoder refuses.
std::optional<qint64> readOptionalNumber(const QJsonValue &value)
{
    if (!value.isDouble())
        return std::nullopt;
    const double ms = value.toDouble();
    return std::isfinite(ms) && std::fabs(ms) <= double(maxInstantMs) ? qint64(std::llround(ms)) : -1;
}

} // namespace

double LiveState::elapsedAt(qint64 wallMs) const
{
    return running && !paused ? elapsed + double(wallMs - capturedAtMs) / 1000.0 : elapsed;
}

bool LiveState::sameAs(const LiveState &other, double toleranceSeconds) const
{
    // The capture instant always differs, and a running cue's clock moves with it: that clock
    // is compared by the instant it started, a pause by the instant it began, within the
    // tolerance (the wall and monotonic clocks round differently).
    const auto near = [toleranceSeconds](double a, double b) { return std::fabs(a - b) < toleranceSeconds; };
    LiveState a = *this;
    a.capturedAtMs = other.capturedAtMs;
    if (running && !paused && other.running && !other.paused) {
        if (!near(double(capturedAtMs) / 1000.0 - elapsed,
                  double(other.capturedAtMs) / 1000.0 - other.elapsed))
            return false;
        a.elapsed = other.elapsed;
        a.remaining = other.remaining;
    }
    if (pausedSinceMs && other.pausedSinceMs
        && near(double(*pausedSinceMs) / 1000.0, double(*other.pausedSinceMs) / 1000.0))
        a.pausedSinceMs = other.pausedSinceMs;
    return a == other;
}

namespace LiveStateFile {

QJsonObject toJson(const LiveState &s)
{
    QJsonArray log;
    for (const CueLogEntry &entry : s.completedCueLog)
        log.append(QJsonObject{{"cue", entry.cue},
                               {"planned", entry.planned},
                               {"actual", entry.actual},
                               {"overtime", entry.overtime}});
    QJsonArray outputs;
    for (const LiveState::Output &output : s.outputs)
        outputs.append(QJsonObject{{"window", output.window},
                                   {"screen", output.screen},
                                   {"fullScreen", output.fullScreen}});
    QJsonObject o{
        {"version", formatVersion},
        {"session", UuidText::canonical(s.sessionID)},
        {"activeCue", s.activeCueID ? QJsonValue(UuidText::canonical(*s.activeCueID)) : QJsonValue()},
        {"activeCueIndex", s.activeCueIndex ? QJsonValue(*s.activeCueIndex) : QJsonValue()},
        {"selectedCue", s.selectedCueIndex ? QJsonValue(*s.selectedCueIndex) : QJsonValue()},
        {"running", s.running},
        {"paused", s.paused},
        {"elapsed", s.elapsed},
        {"remaining", s.remaining},
        {"plannedDuration", s.plannedDuration},
        {"hardOutTarget", optionalNumber(s.hardOutTargetMs)},
        {"pausedSince", optionalNumber(s.pausedSinceMs)},
        {"capturedAt", double(s.capturedAtMs)},
        {"log", log},
        {"loggedOvertime", s.loggedOvertime},
        {"message", s.message ? QJsonValue(*s.message) : QJsonValue()},
        {"messageUrgent", s.messageUrgent},
        {"blackout", s.blackout},
        {"freeze", s.freeze},
        {"frozenRemaining", s.frozenRemaining},
        {"clockMode", s.clockMode},
        {"doorsTarget", optionalNumber(s.doorsTargetMs)},
        {"showLocked", s.showLocked},
        {"outputs", outputs},
    };
    if (!s.projectFile.isEmpty())
        o.insert("projectFile", s.projectFile);
    return o;
}

QByteArray encode(const LiveState &s)
{
    return compactJsonKeepingMarks(toJson(s));
}

std::optional<LiveState> decode(const QByteArray &bytes, QString *error)
{
    const auto fail = [error](const QString &reason) -> std::optional<LiveState> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (!document.isObject())
        return fail(QStringLiteral("contenu illisible"));
    return fromJson(document.object(), error);
}

std::optional<LiveState> fromJson(const QJsonObject &o, QString *error)
{
    const auto fail = [error](const QString &reason) -> std::optional<LiveState> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    if (o.value("version").toInt() != formatVersion)
        return fail(QStringLiteral("version inconnue"));
    const std::optional<QUuid> session = UuidText::parse(o.value("session").toString());
    if (!session)
        return fail(QStringLiteral("projet non indiqué"));

    LiveState s;
    s.sessionID = *session;
    if (o.value("activeCue").isString()) {
        s.activeCueID = UuidText::parse(o.value("activeCue").toString());
        if (!s.activeCueID)
            return fail(QStringLiteral("cue actif illisible"));
    }
    if (o.value("activeCueIndex").isDouble())
        s.activeCueIndex = o.value("activeCueIndex").toInt();
    if (o.value("selectedCue").isDouble())
        s.selectedCueIndex = o.value("selectedCue").toInt();
    s.running = o.value("running").toBool();
    s.paused = s.running && o.value("paused").toBool();
    s.elapsed = o.value("elapsed").toDouble();
    s.remaining = o.value("remaining").toDouble();
    s.plannedDuration = o.value("plannedDuration").toDouble();
    s.hardOutTargetMs = readOptionalNumber(o.value("hardOutTarget"));
    s.pausedSinceMs = readOptionalNumber(o.value("pausedSince"));
    s.capturedAtMs = readOptionalNumber(o.value("capturedAt")).value_or(-1);
    for (const QJsonValue &value : o.value("log").toArray()) {
        const QJsonObject entry = value.toObject();
        s.completedCueLog.append(CueLogEntry{entry.value("cue").toString(),
                                             entry.value("planned").toDouble(),
                                             entry.value("actual").toDouble(),
                                             entry.value("overtime").toDouble()});
    }
    s.loggedOvertime = o.value("loggedOvertime").toDouble();
    if (o.value("message").isString())
        s.message = o.value("message").toString();
    s.messageUrgent = o.value("messageUrgent").toBool();
    s.blackout = o.value("blackout").toBool();
    s.freeze = o.value("freeze").toBool();
    s.frozenRemaining = o.value("frozenRemaining").toDouble();
    s.clockMode = o.value("clockMode").toBool();
    s.doorsTargetMs = readOptionalNumber(o.value("doorsTarget"));
    s.showLocked = o.value("showLocked").toBool();
    for (const QJsonValue &value : o.value("outputs").toArray()) {
        const QJsonObject output = value.toObject();
        s.outputs.append({output.value("window").toString(), output.value("screen").toString(),
                          output.value("fullScreen").toBool()});
    }
    s.projectFile = o.value("projectFile").toString();
    // Durations within a year of seconds and instants within the years 1970 to 5138: a clock
    // outside them is no show's, and the resumption's arithmetic stays far from overflowing.
    const auto duration = [](double seconds) { return std::isfinite(seconds) && std::fabs(seconds) <= maxSeconds; };
    const auto instant = [](const std::optional<qint64> &ms) { return !ms || (*ms >= 0 && *ms <= maxInstantMs); };
    bool plausible = duration(s.elapsed) && duration(s.remaining) && duration(s.plannedDuration)
                     && duration(s.loggedOvertime) && duration(s.frozenRemaining)
                     && instant(s.capturedAtMs) && instant(s.hardOutTargetMs)
                     && instant(s.pausedSinceMs) && instant(s.doorsTargetMs);
    for (const CueLogEntry &entry : std::as_const(s.completedCueLog))
        plausible = plausible && duration(entry.planned) && duration(entry.actual) && duration(entry.overtime);
    if (!plausible || (s.paused && !s.pausedSinceMs))
        return fail(QStringLiteral("horloge illisible"));
    return s;
}

} // namespace LiveStateFile
