#include "cuetriggercodec.h"

#include <limits>

namespace ShowCodec {

namespace {
QJsonObject encodeTarget(const OscTriggerTarget &osc)
{
    QJsonArray args;
    for (const TriggerArgument &argument : osc.args)
        args.append(QJsonObject{{QLatin1StringView("type"), QString(QLatin1Char(argument.type))},
                                {QLatin1StringView("value"), argument.value}});
    return {{QLatin1StringView("host"), osc.host},
            {QLatin1StringView("port"), osc.port},
            {QLatin1StringView("address"), osc.address},
            {QLatin1StringView("args"), args}};
}

QJsonObject encodeTarget(const HttpTriggerTarget &http)
{
    QJsonObject o{{QLatin1StringView("method"), http.method}, {QLatin1StringView("url"), http.url}};
    if (!http.body.isEmpty())
        o.insert(QLatin1StringView("body"), http.body);
    return o;
}
} // namespace

QJsonArray encodeTriggers(const QList<CueTrigger> &triggers)
{
    QJsonArray array;
    for (const CueTrigger &trigger : triggers) {
        QJsonObject o{{QLatin1StringView("when"), TriggerMoments::rawValue(trigger.when)},
                      {QLatin1StringView("name"), trigger.name}};
        std::visit(
            [&o](const auto &target) {
                const bool osc = std::is_same_v<std::decay_t<decltype(target)>, OscTriggerTarget>;
                o.insert(osc ? QLatin1StringView("osc") : QLatin1StringView("http"), encodeTarget(target));
            },
            trigger.target);
        array.append(o);
    }
    return array;
}

namespace Reading {

namespace {
OscTriggerTarget readOsc(const QJsonObject &object, const QString &where)
{
    const ObjectReader r(object, where);
    OscTriggerTarget osc;
    osc.host = r.text(QLatin1StringView("host")).value_or(QString());
    const std::optional<double> port = r.number(QLatin1StringView("port"));
    if (port && *port != std::floor(*port))
        throw DecodeFailure{QStringLiteral("le port%1 devrait être un entier").arg(where)};
    // Out of range, it is kept out of range, so that the editor shows it and says why.
    osc.port = int(std::clamp(port.value_or(0), -1.0, 65536.0));
    osc.address = r.text(QLatin1StringView("address")).value_or(QString());
    const QJsonArray args = r.array(QLatin1StringView("args")).value_or(QJsonArray());
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString at = QStringLiteral(" de l'argument %1%2").arg(i + 1).arg(where);
        if (!args[i].isObject())
            throw DecodeFailure{QStringLiteral("l'argument %1%2 devrait être un objet").arg(i + 1).arg(where)};
        const QJsonObject argument = args[i].toObject();
        const ObjectReader a(argument, at);
        const QString type = a.text(QLatin1StringView("type")).value_or(QString());
        if (type != QLatin1StringView("i") && type != QLatin1StringView("f") && type != QLatin1StringView("s"))
            throw DecodeFailure{QStringLiteral("le type « %1 »%2 est inconnu (attendu « i », « f » ou « s »)")
                                    .arg(type, at)};
        const QJsonValue value = argument.value(QLatin1StringView("value"));
        if (!value.isDouble() && !value.isString())
            throw DecodeFailure{QStringLiteral("la valeur%1 devrait être un nombre ou un texte").arg(at)};
        if (value.isString())
            a.text(QLatin1StringView("value")); // a text half of a UTF-16 pair fails here
        osc.args.append(TriggerArgument{type.front().toLatin1(), value});
    }
    return osc;
}

HttpTriggerTarget readHttp(const QJsonObject &object, const QString &where)
{
    const ObjectReader r(object, where);
    HttpTriggerTarget http;
    http.method = r.text(QLatin1StringView("method")).value_or(QStringLiteral("GET"));
    if (http.method != QLatin1StringView("GET") && http.method != QLatin1StringView("POST"))
        throw DecodeFailure{QStringLiteral("la méthode « %1 »%2 est inconnue (attendu « GET » ou « POST »)")
                                .arg(http.method, where)};
    http.url = r.text(QLatin1StringView("url")).value_or(QString());
    http.body = r.text(QLatin1StringView("body")).value_or(QString());
    return http;
}
} // namespace

QList<CueTrigger> readTriggers(const QJsonArray &array, const QString &where)
{
    QList<CueTrigger> triggers;
    for (qsizetype i = 0; i < array.size(); ++i) {
        const QString at = QStringLiteral(" du déclencheur %1%2").arg(i + 1).arg(where);
        if (!array[i].isObject())
            throw DecodeFailure{QStringLiteral("le déclencheur %1%2 devrait être un objet").arg(i + 1).arg(where)};
        const QJsonObject object = array[i].toObject();
        const ObjectReader r(object, at);
        CueTrigger trigger;
        const QString when = r.text(QLatin1StringView("when")).value_or(QString());
        const std::optional<TriggerMoment> moment = TriggerMoments::fromRawValue(when);
        if (!moment)
            throw DecodeFailure{QStringLiteral("le moment « %1 »%2 est inconnu (attendu « start », « warning », "
                                               "« danger », « zero » ou « end »)")
                                    .arg(when, at)};
        trigger.when = *moment;
        trigger.name = r.text(QLatin1StringView("name")).value_or(QString());
        const std::optional<QJsonObject> osc = r.object(QLatin1StringView("osc"));
        const std::optional<QJsonObject> http = r.object(QLatin1StringView("http"));
        if (osc.has_value() == http.has_value())
            throw DecodeFailure{QStringLiteral("le déclencheur %1%2 devrait avoir soit « osc », soit « http »")
                                    .arg(i + 1)
                                    .arg(where)};
        if (osc)
            trigger.target = readOsc(*osc, at);
        else
            trigger.target = readHttp(*http, at);
        triggers.append(trigger);
    }
    return triggers;
}

} // namespace Reading

} // namespace ShowCodec
