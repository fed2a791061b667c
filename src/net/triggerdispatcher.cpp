#include "triggerdispatcher.h"

#include "oscservice.h"
#include "timerengine.h"

#include <QNetworkReply>
#include <QUrl>

#include <cmath>

namespace {
// The placeholders' values for a cue at row `index` with `remaining` seconds left: whole
// seconds as the stage shows them (119.97 is 119, -42.5 is -42).
TriggerContext contextOf(const Cue &cue, int index, double remaining)
{
    return {cue.name, cue.speaker, index + 1, qint64(std::trunc(remaining))};
}

QString reasonOf(QNetworkReply &reply)
{
    const QString host = reply.url().host();
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status >= 400)
        return QStringLiteral("réponse HTTP %1 de %2").arg(status).arg(host);
    switch (reply.error()) {
    case QNetworkReply::NoError:
        return {};
    case QNetworkReply::HostNotFoundError:
        return QStringLiteral("hôte inconnu : %1").arg(host);
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError: // the transfer's time limit
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
        return QStringLiteral("pas de réponse de %1").arg(host);
    default:
        return QStringLiteral("échec de la requête vers %1 (%2)").arg(host, reply.errorString());
    }
}

QString queueFull()
{
    return QStringLiteral("file d'attente pleine (%1 messages)").arg(TriggerDispatcher::maxPending);
}

QList<OSCArgument> oscArguments(const ResolvedOsc &message)
{
    QList<OSCArgument> args;
    for (const auto &argument : message.args)
        std::visit([&args](const auto &value) { args.append(value); }, argument);
    return args;
}
} // namespace

TriggerDispatcher::TriggerDispatcher(OSCService &osc, QObject *parent) : QObject(parent), m_osc(osc)
{
    m_http.setTransferTimeout(httpTimeoutMs);
}

void TriggerDispatcher::attach(TimerEngine &engine)
{
    connect(&engine, &TimerEngine::cueMoment, this,
            [this, &engine](TriggerMoment moment, const Cue &cue, int index, double remaining) {
                onMoment(engine, moment, cue, index, remaining);
            });
}

void TriggerDispatcher::onMoment(const TimerEngine &engine, TriggerMoment moment, const Cue &cue,
                                 int index, double remaining)
{
    const QList<CueTrigger> &shown = engine.session().triggers;
    // A backup machine's show is the main's: the main sends them.
    if ((cue.triggers.isEmpty() && shown.isEmpty()) || engine.isFollowing())
        return;
    const TriggerContext context = contextOf(cue, index, remaining);
    const QString cueKey = cue.id.toString(QUuid::WithoutBraces);
    const bool wasIdle = m_due.isEmpty();
    auto enqueue = [&](const CueTrigger &trigger, const QString &key) {
        if (pending() >= maxPending)
            finish(trigger, key, queueFull());
        else
            m_due.append({trigger, context, key});
    };
    for (qsizetype i = 0; i < cue.triggers.size(); ++i)
        if (cue.triggers[i].when == moment)
            enqueue(cue.triggers[i], cueKey + u'/' + QString::number(i));
    for (qsizetype i = 0; i < shown.size(); ++i)
        if (shown[i].when == moment)
            enqueue(shown[i], QStringLiteral("show/") + QString::number(i));
    if (wasIdle && !m_due.isEmpty())
        QMetaObject::invokeMethod(this, &TriggerDispatcher::handOver, Qt::QueuedConnection);
}

void TriggerDispatcher::handOver()
{
    // A few at a time, one turn of the event loop each: the operation that caused the moment
    // (a start, say) shows first, and a tick falls between two handfuls, never behind a hundred.
    for (int n = 0; n < handOverPerTurn && !m_due.isEmpty(); ++n) {
        const Due due = m_due.takeFirst();
        send(due.trigger, due.context, due.key);
    }
    if (!m_due.isEmpty())
        QMetaObject::invokeMethod(this, &TriggerDispatcher::handOver, Qt::QueuedConnection);
}

void TriggerDispatcher::sendNow(const CueTrigger &trigger, const TriggerContext &context, Done done)
{
    if (pending() >= maxPending)
        finish(trigger, QString(), queueFull(), done);
    else
        send(trigger, context, QString(), std::move(done));
}

void TriggerDispatcher::send(const CueTrigger &trigger, const TriggerContext &context, const QString &key,
                             Done done)
{
    const std::variant<ResolvedTrigger, QString> resolved = CueTriggers::resolve(trigger, context);
    if (const auto *reason = std::get_if<QString>(&resolved)) {
        finish(trigger, key, *reason, done);
        return;
    }
    ++m_pending;
    const ResolvedTrigger &message = std::get<ResolvedTrigger>(resolved);
    if (const auto *osc = std::get_if<ResolvedOsc>(&message)) {
        m_osc.sendTo(osc->host, osc->port, osc->address, oscArguments(*osc), this,
                     [this, trigger, key, done](const QString &failure) {
                         --m_pending;
                         finish(trigger, key, failure, done);
                     });
        return;
    }
    const auto &http = std::get<ResolvedHttp>(message);
    QNetworkRequest request{QUrl(http.url)};
    QNetworkReply *reply = nullptr;
    if (http.method == QLatin1StringView("POST")) {
        request.setHeader(QNetworkRequest::ContentTypeHeader, "text/plain; charset=utf-8");
        reply = m_http.post(request, http.body);
    } else {
        reply = m_http.get(request);
    }
    connect(reply, &QNetworkReply::finished, this, [this, reply, trigger, key, done] {
        reply->deleteLater();
        --m_pending;
        finish(trigger, key, reasonOf(*reply), done);
    });
}

void TriggerDispatcher::finish(const CueTrigger &trigger, const QString &key, const QString &failure,
                               const Done &done)
{
    if (done)
        done(failure);
    if (failure.isEmpty()) {
        m_reported.remove(key);
        emit delivered(trigger.name);
        return;
    }
    const QString text = QStringLiteral("Déclencheur « %1 » : %2").arg(trigger.name, failure);
    qWarning().noquote() << "kairon-trigger:" << text;
    if (done)
        return; // shown where it was asked for
    if (key.isEmpty() || !m_reported.contains(key)) {
        if (!key.isEmpty())
            m_reported.insert(key);
        emit failed(text);
    }
}
