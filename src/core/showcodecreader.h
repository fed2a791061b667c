#pragma once

#include "internetdate.h"
#include "showcodec.h"
#include "timermode.h"
#include "uuidtext.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

#include <algorithm>
#include <cmath>

// The project document's readers share these: a failure that stops the reading with its French
// reason, and a reader of one object's keys.
namespace ShowCodec::Reading {

struct DecodeFailure {
    QString message;
};

// Reads the keys of one JSON object. `where` names the object in error messages
// ("" for the show itself, " du cue 2" for a cue).
class ObjectReader
{
public:
    ObjectReader(const QJsonObject &object, QString where)
        : m_object(object), m_where(std::move(where))
    {
    }

    // Absent when the key is missing or null; a failure when the value has another type.
    std::optional<QString> text(QLatin1StringView key) const
    {
        std::optional<QString> value = read(key, QStringLiteral("un texte"), [](const QJsonValue &v) {
            return v.isString() ? std::optional(v.toString()) : std::nullopt;
        });
        // JSON can spell half of a UTF-16 pair alone ("\ud800"), which no UTF-8 file can hold:
        // read, it could only be saved altered.
        if (value && !value->isValidUtf16())
            throw DecodeFailure{QStringLiteral("la valeur « %1 »%2 contient un caractère "
                                               "Unicode invalide")
                                    .arg(QString(key), m_where)};
        return value;
    }
    std::optional<double> number(QLatin1StringView key) const
    {
        return read(key, QStringLiteral("un nombre"), [](const QJsonValue &v) {
            return v.isDouble() ? std::optional(v.toDouble()) : std::nullopt;
        });
    }
    // A length of time, brought within a day (0 to 86,400 s): a file written by hand or by
    // another program may hold -50 or 1e300, which no clock, list or report can show.
    std::optional<double> seconds(QLatin1StringView key) const
    {
        const std::optional<double> value = number(key);
        if (!value)
            return std::nullopt;
        return std::isnan(*value) ? 0.0 : std::clamp(*value, 0.0, ShowCodec::maxSeconds);
    }
    std::optional<bool> boolean(QLatin1StringView key) const
    {
        return read(key, QStringLiteral("un booléen (true ou false)"), [](const QJsonValue &v) {
            return v.isBool() ? std::optional(v.toBool()) : std::nullopt;
        });
    }
    std::optional<QDateTime> date(QLatin1StringView key) const
    {
        return read(key, QStringLiteral("une date de la forme 2026-11-15T18:20:00Z"),
                    [](const QJsonValue &v) {
                        return v.isString() ? InternetDate::parse(v.toString()) : std::nullopt;
                    });
    }
    std::optional<QUuid> uuid(QLatin1StringView key) const
    {
        return read(key, QStringLiteral("un identifiant UUID"), [](const QJsonValue &v) {
            return v.isString() ? UuidText::parse(v.toString()) : std::nullopt;
        });
    }
    std::optional<QJsonArray> array(QLatin1StringView key) const
    {
        return read(key, QStringLiteral("une liste"), [](const QJsonValue &v) {
            return v.isArray() ? std::optional(v.toArray()) : std::nullopt;
        });
    }
    std::optional<QJsonObject> object(QLatin1StringView key) const
    {
        return read(key, QStringLiteral("un objet"), [](const QJsonValue &v) {
            return v.isObject() ? std::optional(v.toObject()) : std::nullopt;
        });
    }
    std::optional<TimerMode> mode(QLatin1StringView key) const
    {
        const std::optional<QString> raw = text(key);
        if (!raw)
            return std::nullopt;
        if (const auto mode = TimerModes::fromRawValue(*raw))
            return mode;
        throw DecodeFailure{QStringLiteral("le mode « %1 »%2 est inconnu (attendu « duration » "
                                           "ou « hardOut »)")
                                .arg(*raw, m_where)};
    }

    // For strict readers: a missing key is a failure too.
    template <typename T>
    T required(std::optional<T> value, QLatin1StringView key) const
    {
        if (!value)
            throw DecodeFailure{
                QStringLiteral("la clé « %1 »%2 manque").arg(QString(key), m_where)};
        return *value;
    }

private:
    template <typename Convert>
    auto read(QLatin1StringView key, const QString &expected, Convert convert) const
        -> decltype(convert(QJsonValue()))
    {
        const QJsonValue v = m_object.value(key);
        if (v.isUndefined() || v.isNull())
            return std::nullopt;
        auto converted = convert(v);
        if (!converted)
            throw DecodeFailure{QStringLiteral("la valeur « %1 »%2 devrait être %3")
                                    .arg(QString(key), m_where, expected)};
        return converted;
    }

    const QJsonObject &m_object;
    QString m_where;
};

} // namespace ShowCodec::Reading
