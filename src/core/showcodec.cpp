#include "showcodec.h"

#include "cuetriggercodec.h"
#include "showcodecreader.h"

#include "internetdate.h"
#include "uuidtext.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace ShowCodec {

// ---- Writing -------------------------------------------------------------------------------

namespace {

template <typename T, typename Convert>
void insertIfPresent(QJsonObject &o, QLatin1StringView key, const std::optional<T> &value,
                     Convert convert)
{
    if (value)
        o.insert(key, convert(*value));
}

QJsonValue text(const QString &s) { return s; }
QJsonValue number(double d) { return d; }
QJsonValue date(const QDateTime &d) { return InternetDate::format(d); }
QJsonValue link(const LinkedSpreadsheet &l)
{
    QJsonObject o{{QLatin1StringView("path"), l.path}};
    insertIfPresent(o, QLatin1StringView("sheet"), l.sheet, text);
    if (!l.columns.isEmpty()) {
        QJsonObject columns;
        for (auto it = l.columns.cbegin(); it != l.columns.cend(); ++it)
            columns.insert(it.key(), it.value());
        o.insert(QLatin1StringView("columns"), columns);
    }
    return o;
}

} // namespace

QJsonObject encode(const Cue &cue)
{
    QJsonObject o{
        {QLatin1StringView("id"), UuidText::canonical(cue.id)},
        {QLatin1StringView("name"), cue.name},
        {QLatin1StringView("speaker"), cue.speaker},
        {QLatin1StringView("mode"), TimerModes::rawValue(cue.mode)},
        {QLatin1StringView("duration"), cue.duration},
        {QLatin1StringView("warningThreshold"), cue.warningThreshold},
        {QLatin1StringView("dangerThreshold"), cue.dangerThreshold},
        {QLatin1StringView("autoFollow"), cue.autoFollow},
        {QLatin1StringView("notes"), cue.notes},
    };
    insertIfPresent(o, QLatin1StringView("hardOutTime"), cue.hardOutTime, date);
    insertIfPresent(o, QLatin1StringView("fixedStart"), cue.fixedStart, date);
    insertIfPresent(o, QLatin1StringView("colorHex"), cue.colorHex, text);
    insertIfPresent(o, QLatin1StringView("actualElapsed"), cue.actualElapsed, number);
    insertIfPresent(o, QLatin1StringView("overtime"), cue.overtime, number);
    if (!cue.triggers.isEmpty())
        o.insert(QLatin1StringView("triggers"), encodeTriggers(cue.triggers));
    return o;
}

QJsonObject encode(const TimerSession &session)
{
    QJsonArray cues;
    for (const Cue &cue : session.cues)
        cues.append(encode(cue));
    QJsonObject o{
        {QLatin1StringView("id"), UuidText::canonical(session.id)},
        {QLatin1StringView("name"), session.name},
        {QLatin1StringView("cues"), cues},
        {QLatin1StringView("createdAt"), date(session.createdAt)},
        {QLatin1StringView("updatedAt"), date(session.updatedAt)},
    };
    insertIfPresent(o, QLatin1StringView("client"), session.client, text);
    insertIfPresent(o, QLatin1StringView("venue"), session.venue, text);
    insertIfPresent(o, QLatin1StringView("operatorName"), session.operatorName, text);
    insertIfPresent(o, QLatin1StringView("eventDate"), session.eventDate, date);
    insertIfPresent(o, QLatin1StringView("notes"), session.notes, text);
    insertIfPresent(o, QLatin1StringView("linkedSpreadsheet"), session.linkedSpreadsheet, link);
    insertIfPresent(o, QLatin1StringView("scheduledStart"), session.scheduledStart, date);
    if (!session.triggers.isEmpty())
        o.insert(QLatin1StringView("triggers"), encodeTriggers(session.triggers));
    return o;
}

QJsonObject encode(const CueTemplate &t)
{
    return QJsonObject{
        {QLatin1StringView("id"), UuidText::canonical(t.id)},
        {QLatin1StringView("name"), t.name},
        {QLatin1StringView("duration"), t.duration},
        {QLatin1StringView("warningThreshold"), t.warningThreshold},
        {QLatin1StringView("dangerThreshold"), t.dangerThreshold},
    };
}

QJsonObject encode(const PresetMessage &m)
{
    return QJsonObject{
        {QLatin1StringView("id"), UuidText::canonical(m.id)},
        {QLatin1StringView("text"), m.text},
        {QLatin1StringView("urgent"), m.urgent},
    };
}

// ---- Reading -------------------------------------------------------------------------------

namespace {

using Reading::DecodeFailure;
using Reading::ObjectReader;

Cue readCue(const QJsonObject &object, const QString &where)
{
    const ObjectReader r(object, where);
    Cue cue;
    cue.id = r.uuid(QLatin1StringView("id")).value_or(QUuid::createUuid());
    cue.name = r.text(QLatin1StringView("name")).value_or(QStringLiteral("Cue"));
    cue.speaker = r.text(QLatin1StringView("speaker")).value_or(QString());
    cue.mode = r.mode(QLatin1StringView("mode")).value_or(TimerMode::Duration);
    cue.duration = r.seconds(QLatin1StringView("duration")).value_or(600);
    cue.hardOutTime = r.date(QLatin1StringView("hardOutTime"));
    cue.fixedStart = r.date(QLatin1StringView("fixedStart"));
    cue.warningThreshold = r.seconds(QLatin1StringView("warningThreshold")).value_or(120);
    cue.dangerThreshold = r.seconds(QLatin1StringView("dangerThreshold")).value_or(30);
    cue.autoFollow = r.boolean(QLatin1StringView("autoFollow")).value_or(false);
    cue.notes = r.text(QLatin1StringView("notes")).value_or(QString());
    cue.colorHex = r.text(QLatin1StringView("colorHex"));
    cue.actualElapsed = r.seconds(QLatin1StringView("actualElapsed"));
    cue.overtime = r.seconds(QLatin1StringView("overtime"));
    cue.triggers = Reading::readTriggers(r.array(QLatin1StringView("triggers")).value_or(QJsonArray()), where);
    return cue;
}

LinkedSpreadsheet readLink(const QJsonObject &object)
{
    const QString where = QStringLiteral(" du tableur lié");
    const ObjectReader r(object, where);
    LinkedSpreadsheet link;
    link.path = r.required(r.text(QLatin1StringView("path")), QLatin1StringView("path"));
    link.sheet = r.text(QLatin1StringView("sheet"));
    const QJsonObject columns = r.object(QLatin1StringView("columns")).value_or(QJsonObject());
    for (auto it = columns.constBegin(); it != columns.constEnd(); ++it) {
        if (!it->isString())
            throw DecodeFailure{QStringLiteral("la colonne « %1 »%2 devrait être un texte")
                                    .arg(it.key(), where)};
        // As for every text: half of a UTF-16 pair alone could only be saved altered.
        if (!it.key().isValidUtf16() || !it->toString().isValidUtf16())
            throw DecodeFailure{QStringLiteral("une colonne%1 contient un caractère Unicode invalide")
                                    .arg(where)};
        link.columns.insert(it.key(), it->toString());
    }
    return link;
}

TimerSession readSession(const QJsonObject &object, const QDateTime &now)
{
    const ObjectReader r(object, QString());
    TimerSession session(now);
    session.id = r.uuid(QLatin1StringView("id")).value_or(QUuid::createUuid());
    session.name = r.text(QLatin1StringView("name")).value_or(QStringLiteral("Projet"));
    const QJsonArray cues = r.array(QLatin1StringView("cues")).value_or(QJsonArray());
    session.cues.reserve(cues.size());
    for (qsizetype i = 0; i < cues.size(); ++i) {
        const QString where = QStringLiteral(" du cue %1").arg(i + 1);
        if (!cues[i].isObject())
            throw DecodeFailure{QStringLiteral("le cue %1 devrait être un objet").arg(i + 1)};
        session.cues.append(readCue(cues[i].toObject(), where));
    }
    session.createdAt = r.date(QLatin1StringView("createdAt")).value_or(now);
    session.updatedAt = r.date(QLatin1StringView("updatedAt")).value_or(now);
    session.client = r.text(QLatin1StringView("client"));
    session.venue = r.text(QLatin1StringView("venue"));
    session.operatorName = r.text(QLatin1StringView("operatorName"));
    session.eventDate = r.date(QLatin1StringView("eventDate"));
    session.notes = r.text(QLatin1StringView("notes"));
    session.scheduledStart = r.date(QLatin1StringView("scheduledStart"));
    if (const auto link = r.object(QLatin1StringView("linkedSpreadsheet")))
        session.linkedSpreadsheet = readLink(*link);
    session.triggers = Reading::readTriggers(r.array(QLatin1StringView("triggers")).value_or(QJsonArray()),
                                             QStringLiteral(" du show"));
    return session;
}

CueTemplate readTemplate(const QJsonObject &object)
{
    const ObjectReader r(object, QStringLiteral(" du modèle"));
    CueTemplate t;
    t.id = r.required(r.uuid(QLatin1StringView("id")), QLatin1StringView("id"));
    t.name = r.required(r.text(QLatin1StringView("name")), QLatin1StringView("name"));
    t.duration = r.required(r.seconds(QLatin1StringView("duration")), QLatin1StringView("duration"));
    t.warningThreshold = r.required(r.seconds(QLatin1StringView("warningThreshold")),
                                    QLatin1StringView("warningThreshold"));
    t.dangerThreshold = r.required(r.seconds(QLatin1StringView("dangerThreshold")),
                                   QLatin1StringView("dangerThreshold"));
    return t;
}

PresetMessage readPresetMessage(const QJsonObject &object)
{
    const ObjectReader r(object, QStringLiteral(" du message"));
    PresetMessage m;
    m.id = r.required(r.uuid(QLatin1StringView("id")), QLatin1StringView("id"));
    m.text = r.required(r.text(QLatin1StringView("text")), QLatin1StringView("text"));
    m.urgent = r.required(r.boolean(QLatin1StringView("urgent")), QLatin1StringView("urgent"));
    return m;
}

// Runs one reader and turns its failure into an absent result and an error text.
template <typename Read>
auto decodeWith(Read read, QString *error) -> std::optional<decltype(read())>
{
    try {
        return read();
    } catch (const DecodeFailure &failure) {
        if (error)
            *error = failure.message;
        return std::nullopt;
    }
}

} // namespace

std::optional<TimerSession> decodeSession(const QJsonObject &object, const QDateTime &now,
                                          QString *error)
{
    return decodeWith([&] { return readSession(object, now); }, error);
}

std::optional<Cue> decodeCue(const QJsonObject &object, QString *error)
{
    return decodeWith([&] { return readCue(object, QString()); }, error);
}

std::optional<CueTemplate> decodeTemplate(const QJsonObject &object, QString *error)
{
    return decodeWith([&] { return readTemplate(object); }, error);
}

std::optional<PresetMessage> decodePresetMessage(const QJsonObject &object, QString *error)
{
    return decodeWith([&] { return readPresetMessage(object); }, error);
}

} // namespace ShowCodec
