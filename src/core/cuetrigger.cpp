#include "cuetrigger.h"

#include <QUrl>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
struct MomentName {
    TriggerMoment moment;
    const char *raw;
};
constexpr MomentName momentNames[] = {
    {TriggerMoment::Start, "start"}, {TriggerMoment::Warning, "warning"},
    {TriggerMoment::Danger, "danger"}, {TriggerMoment::Zero, "zero"},
    {TriggerMoment::End, "end"},
};

// Fills the placeholders, each value passed through `encode` first.
template <typename Encode>
QString fillWith(const QString &text, const TriggerContext &context, Encode encode)
{
    if (!text.contains(u'{'))
        return text;
    QString out = text;
    out.replace(QLatin1StringView("{cue}"), encode(context.cue));
    out.replace(QLatin1StringView("{speaker}"), encode(context.speaker));
    out.replace(QLatin1StringView("{index}"), encode(QString::number(context.index)));
    out.replace(QLatin1StringView("{remaining}"), encode(QString::number(context.remaining)));
    return out;
}

qint32 clampedInt(double value)
{
    constexpr double low = std::numeric_limits<qint32>::min();
    constexpr double high = std::numeric_limits<qint32>::max();
    return qint32(std::clamp(std::round(value), low, high));
}

// One argument of its type, or the reason it cannot be (numbered from 1 for the operator).
std::variant<std::variant<qint32, float, QString>, QString>
convert(const TriggerArgument &argument, int position, const TriggerContext &context)
{
    using Value = std::variant<qint32, float, QString>;
    if (argument.type == 's') {
        if (argument.value.isDouble())
            return Value(QString::number(argument.value.toDouble(), 'g', 15));
        return Value(CueTriggers::fill(argument.value.toString(), context));
    }
    double number = argument.value.toDouble();
    if (!argument.value.isDouble()) {
        const QString text = CueTriggers::fill(argument.value.toString(), context);
        bool ok = false;
        number = text.trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(number))
            return QStringLiteral("l'argument %1 « %2 » n'est pas un nombre").arg(position).arg(text);
    }
    if (argument.type == 'i')
        return Value(clampedInt(number));
    return Value(float(number));
}
} // namespace

QString TriggerMoments::rawValue(TriggerMoment moment)
{
    for (const MomentName &n : momentNames)
        if (n.moment == moment)
            return QString::fromLatin1(n.raw);
    return {};
}

std::optional<TriggerMoment> TriggerMoments::fromRawValue(const QString &raw)
{
    for (const MomentName &n : momentNames)
        if (raw == QLatin1StringView(n.raw))
            return n.moment;
    return std::nullopt;
}

std::optional<QString> CueTriggers::hostProblem(const QString &host)
{
    if (host.trimmed().isEmpty())
        return QStringLiteral("l'hôte est vide");
    return std::nullopt;
}

std::optional<QString> CueTriggers::portProblem(int port)
{
    if (port < 1 || port > 65535)
        return QStringLiteral("le port doit aller de 1 à 65535");
    return std::nullopt;
}

std::optional<QString> CueTriggers::addressProblem(const QString &address)
{
    if (!address.startsWith(u'/'))
        return QStringLiteral("l'adresse OSC doit commencer par « / »");
    return std::nullopt;
}

std::optional<QString> CueTriggers::urlProblem(const QString &text)
{
    const QUrl url(text); // tolerant: its placeholders are filled in only when it fires
    const bool web = text.startsWith(QLatin1StringView("http://")) || text.startsWith(QLatin1StringView("https://"));
    if (!web || !url.isValid() || url.host().isEmpty())
        return QStringLiteral("l'URL doit commencer par http:// ou https:// et nommer un hôte");
    return std::nullopt;
}

std::optional<QString> CueTriggers::argumentProblem(const TriggerArgument &argument, int position)
{
    if (argument.type != 'i' && argument.type != 'f' && argument.type != 's')
        return QStringLiteral("un argument OSC est de type i, f ou s");
    if (argument.type == 's' || argument.value.isDouble())
        return std::nullopt;
    // The numbers a cue puts in; a name put in an int or a float is no number, whatever it is.
    TriggerContext numbers;
    numbers.cue = numbers.speaker = QStringLiteral("?");
    const auto converted = convert(argument, position, numbers);
    if (std::holds_alternative<QString>(converted))
        return QStringLiteral("l'argument %1 « %2 » n'est pas un nombre").arg(position).arg(argument.value.toString());
    return std::nullopt;
}

std::optional<QString> CueTriggers::problem(const CueTrigger &trigger)
{
    if (const auto *osc = std::get_if<OscTriggerTarget>(&trigger.target)) {
        std::optional<QString> reason = hostProblem(osc->host);
        if (!reason)
            reason = portProblem(osc->port);
        if (!reason)
            reason = addressProblem(osc->address);
        for (const TriggerArgument &argument : osc->args)
            if (!reason && argument.type != 'i' && argument.type != 'f' && argument.type != 's')
                reason = QStringLiteral("un argument OSC est de type i, f ou s");
        return reason;
    }
    const auto &http = std::get<HttpTriggerTarget>(trigger.target);
    if (http.method != QLatin1StringView("GET") && http.method != QLatin1StringView("POST"))
        return QStringLiteral("la méthode est GET ou POST");
    return urlProblem(http.url);
}

QString CueTriggers::fill(const QString &text, const TriggerContext &context)
{
    return fillWith(text, context, [](const QString &s) { return s; });
}

std::variant<ResolvedTrigger, QString> CueTriggers::resolve(const CueTrigger &trigger,
                                                            const TriggerContext &context)
{
    if (const std::optional<QString> reason = problem(trigger))
        return *reason;
    if (const auto *osc = std::get_if<OscTriggerTarget>(&trigger.target)) {
        ResolvedOsc out{osc->host.trimmed(), quint16(osc->port), fill(osc->address, context), {}};
        for (int i = 0; i < osc->args.size(); ++i) {
            auto converted = convert(osc->args[i], i + 1, context);
            if (const auto *reason = std::get_if<QString>(&converted))
                return *reason;
            out.args.append(std::get<0>(converted));
        }
        return ResolvedTrigger(out);
    }
    const auto &http = std::get<HttpTriggerTarget>(trigger.target);
    const QString url = fillWith(http.url, context, [](const QString &s) {
        return QString::fromLatin1(QUrl::toPercentEncoding(s));
    });
    return ResolvedTrigger(ResolvedHttp{http.method, url, fill(http.body, context).toUtf8()});
}

QList<TriggerMoment> TriggerWatch::observe(double remaining, double warning, double danger)
{
    QList<TriggerMoment> crossed;
    auto watch = [&](bool &fired, double threshold, bool inZone, TriggerMoment moment) {
        if (remaining > threshold) {
            fired = false;
        } else if (!fired && inZone) {
            fired = true;
            crossed.append(moment);
        }
    };
    watch(m_warning, warning, danger < remaining && remaining <= warning, TriggerMoment::Warning);
    watch(m_danger, danger, 0 < remaining && remaining <= danger, TriggerMoment::Danger);
    watch(m_zero, 0, remaining <= 0, TriggerMoment::Zero);
    return crossed;
}
