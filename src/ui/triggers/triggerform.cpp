#include "triggerform.h"

#include <QVariantMap>

#include <algorithm>
#include <cmath>

namespace {
constexpr TriggerMoment moments[] = {TriggerMoment::Start, TriggerMoment::Warning, TriggerMoment::Danger,
                                     TriggerMoment::Zero, TriggerMoment::End};

QString reasonText(const std::optional<QString> &reason)
{
    return reason.value_or(QString());
}

// A stored value as the field shows it: a whole number without decimals.
QString textOf(const QJsonValue &value)
{
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', 15);
    return value.toString();
}
} // namespace

void TriggerForm::load(const CueTrigger &trigger)
{
    m_moment = int(std::find(std::begin(moments), std::end(moments), trigger.when) - std::begin(moments));
    m_name = trigger.name;
    m_http = std::holds_alternative<HttpTriggerTarget>(trigger.target);
    m_osc = OscTriggerTarget();
    m_web = HttpTriggerTarget();
    m_arguments.clear();
    if (const auto *osc = std::get_if<OscTriggerTarget>(&trigger.target)) {
        m_osc = *osc;
        for (const TriggerArgument &argument : osc->args)
            m_arguments.append({argument.type, textOf(argument.value)});
    } else {
        m_web = std::get<HttpTriggerTarget>(trigger.target);
    }
    m_osc.args.clear();
    m_port = QString::number(m_osc.port);
    emit argumentsChanged();
    emit edited();
}

CueTrigger TriggerForm::result() const
{
    CueTrigger trigger;
    trigger.when = moments[std::clamp(m_moment, 0, 4)];
    trigger.name = m_name;
    if (m_http) {
        trigger.target = m_web;
        return trigger;
    }
    OscTriggerTarget osc = m_osc;
    osc.host = osc.host.trimmed();
    osc.port = portNumber();
    for (const auto &[type, text] : m_arguments)
        osc.args.append(stored(type, text));
    trigger.target = osc;
    return trigger;
}

void TriggerForm::setMoment(int moment)
{
    moment = std::clamp(moment, 0, 4);
    if (moment == m_moment)
        return;
    m_moment = moment;
    emit edited();
}

void TriggerForm::setHttp(bool http)
{
    if (http == m_http)
        return;
    m_http = http;
    emit edited();
}

void TriggerForm::setPost(bool post)
{
    set(m_web.method, post ? QStringLiteral("POST") : QStringLiteral("GET"));
}

QVariantList TriggerForm::arguments() const
{
    QVariantList list;
    for (const auto &[type, text] : m_arguments)
        list.append(QVariantMap{{QStringLiteral("type"), QString(QChar::fromLatin1(type))},
                                {QStringLiteral("value"), text}});
    return list;
}

void TriggerForm::addArgument()
{
    m_arguments.append({'i', QStringLiteral("1")});
    emit argumentsChanged();
    emit edited();
}

void TriggerForm::removeArgument(int index)
{
    if (index < 0 || index >= m_arguments.size())
        return;
    m_arguments.removeAt(index);
    emit argumentsChanged();
    emit edited();
}

void TriggerForm::setArgumentType(int index, const QString &type)
{
    if (index < 0 || index >= m_arguments.size() || type.size() != 1 || !QStringLiteral("ifs").contains(type))
        return;
    const char t = type.at(0).toLatin1();
    if (m_arguments[index].first == t)
        return;
    m_arguments[index].first = t;
    emit argumentsChanged();
    emit edited();
}

void TriggerForm::setArgumentValue(int index, const QString &value)
{
    if (index < 0 || index >= m_arguments.size() || m_arguments[index].second == value)
        return;
    m_arguments[index].second = value;
    emit edited();
}

QString TriggerForm::hostProblem() const
{
    return m_http ? QString() : reasonText(CueTriggers::hostProblem(m_osc.host));
}

QString TriggerForm::portProblem() const
{
    return m_http ? QString() : reasonText(CueTriggers::portProblem(portNumber()));
}

QString TriggerForm::addressProblem() const
{
    return m_http ? QString() : reasonText(CueTriggers::addressProblem(m_osc.address));
}

QStringList TriggerForm::argumentProblems() const
{
    QStringList problems;
    for (qsizetype i = 0; i < m_arguments.size(); ++i) {
        const auto &[type, text] = m_arguments[i];
        problems.append(m_http ? QString()
                               : reasonText(CueTriggers::argumentProblem(stored(type, text), int(i) + 1)));
    }
    return problems;
}

QString TriggerForm::urlProblem() const
{
    return m_http ? reasonText(CueTriggers::urlProblem(m_web.url)) : QString();
}

bool TriggerForm::acceptable() const
{
    if (m_http)
        return urlProblem().isEmpty();
    const QStringList arguments = argumentProblems();
    return hostProblem().isEmpty() && portProblem().isEmpty() && addressProblem().isEmpty()
           && std::all_of(arguments.cbegin(), arguments.cend(), [](const QString &p) { return p.isEmpty(); });
}

void TriggerForm::set(QString &field, const QString &value)
{
    if (field == value)
        return;
    field = value;
    emit edited();
}

int TriggerForm::portNumber() const
{
    bool ok = false;
    const qlonglong port = m_port.trimmed().toLongLong(&ok);
    if (!ok)
        return 0;
    return int(std::clamp<qlonglong>(port, -1, 65536)); // out of range either way, never wrapped
}

TriggerArgument TriggerForm::stored(char type, const QString &text)
{
    if (type != 's') {
        bool ok = false;
        const double number = text.trimmed().toDouble(&ok);
        if (ok && std::isfinite(number))
            return {type, number};
    }
    return {type, text};
}
