#include "followsession.h"

#include "clock.h"
#include "projectdocument.h"
#include "timerengine.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>
#include <QWebSocket>

namespace {
QString versionRefusal(int mainProtocol)
{
    return QStringLiteral("La régie principale a une version %1 de Kairon (protocole de secours %2, ici %3) : "
                          "installer la même version sur les deux machines")
        .arg(mainProtocol > FollowFeed::protocolVersion ? QStringLiteral("plus récente")
                                                         : QStringLiteral("plus ancienne"))
        .arg(mainProtocol)
        .arg(FollowFeed::protocolVersion);
}
} // namespace

FollowSession::FollowSession(TimerEngine &engine, Clock &clock, QObject *parent)
    : QObject(parent), m_engine(engine), m_clock(clock), m_http(std::make_unique<QNetworkAccessManager>())
{
    m_http->setProxy(QNetworkProxy::NoProxy);
    m_silenceTimer = clock.createTimer([this] { silence(); });
    m_pingTimer = clock.createTimer([this] { ping(); });
    m_retryTimer = clock.createTimer([this] { fetchShow(); });
    m_sinceMs = clock.now().toMSecsSinceEpoch();
}

FollowSession::~FollowSession()
{
    closeNetwork();
}

QString FollowSession::roleName(Role role)
{
    switch (role) {
    case Role::Main:
        return QStringLiteral("main");
    case Role::Follower:
        return QStringLiteral("follower");
    case Role::Lost:
        return QStringLiteral("lost");
    }
    return {};
}

QString FollowSession::address() const
{
    return m_host.contains(u':') ? QStringLiteral("[%1]:%2").arg(m_host).arg(m_port)
                                 : QStringLiteral("%1:%2").arg(m_host).arg(m_port);
}

void FollowSession::follow(const QString &host, int port, const QString &accessCode)
{
    closeNetwork();
    m_retryTimer->stop();
    m_host = host.trimmed();
    m_port = port;
    m_code = accessCode.trimmed();
    m_trying = true;
    setStatus(QStringLiteral("Connexion à %1…").arg(address()), false);
    fetchShow();
}

void FollowSession::takeOver()
{
    m_trying = false;
    closeNetwork();
    m_retryTimer->stop();
    m_engine.setFollowing(false);
    m_show.reset();
    m_showBytes.clear();
    m_mirroredBytes.clear();
    setStatus(QString(), false);
    if (m_role != Role::Main) {
        setRole(Role::Main);
        emit tookOver();
    }
}

// ---- The show, over HTTP ------------------------------------------------------------------------

void FollowSession::fetchShow()
{
    if (!m_trying || m_reply)
        return;
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(m_host);
    url.setPort(m_port);
    url.setPath(QStringLiteral("/api/show"));
    QNetworkRequest request(url);
    request.setRawHeader("Authorization", "Bearer " + m_code.toUtf8());
    request.setTransferTimeout(int(silenceMs));
    QNetworkReply *reply = m_http->get(request);
    m_reply = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] { showFetched(reply); });
}

void FollowSession::showFetched(QNetworkReply *reply)
{
    reply->deleteLater();
    if (reply != m_reply)
        return; // abandoned
    m_reply = nullptr;
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray body = reply->readAll();
    if (status == 0) {
        unreachable(reply->errorString());
        return;
    }
    const QString mainError = QJsonDocument::fromJson(body).object().value(QLatin1StringView("error")).toString();
    const QByteArray protocol = reply->rawHeader(FollowFeed::protocolHeader);
    if (status == 401 || status == 429) {
        refuse(QStringLiteral("Refusé par la régie principale : %1").arg(mainError));
        return;
    }
    if (protocol.isEmpty()) {
        // A Kairon of before the backups answers as it does to any unknown path.
        refuse(status == 404 && mainError.startsWith(QLatin1StringView("Chemin inconnu"))
                   ? QStringLiteral("La régie principale a une version de Kairon sans machine de secours : "
                                    "installer la même version sur les deux machines")
                   : QStringLiteral("%1 ne répond pas comme une régie Kairon").arg(address()));
        return;
    }
    if (protocol.toInt() != FollowFeed::protocolVersion) {
        refuse(versionRefusal(protocol.toInt()));
        return;
    }
    QString error;
    std::optional<TimerSession> show;
    if (status == 200)
        show = ProjectDocument::decode(body, m_clock.now(), &error);
    if (!show) {
        refuse(QStringLiteral("Projet de la régie principale illisible : %1")
                   .arg(status == 200 ? error : QStringLiteral("HTTP %1").arg(status)));
        return;
    }
    m_show = std::move(show);
    m_showBytes = body;
    m_showRevision = reply->rawHeader(FollowFeed::revisionHeader).toLongLong();
    if (!m_socket)
        openSocket();
    else if (m_live && m_live->revision > m_showRevision)
        fetchShow(); // edited again meanwhile
    else
        applyLive();
}

// ---- The live state, over the WebSocket -------------------------------------------------------------

void FollowSession::openSocket()
{
    m_socket = new QWebSocket(QString(), QWebSocketProtocol::VersionLatest, this);
    m_socket->setProxy(QNetworkProxy::NoProxy);
    connect(m_socket, &QWebSocket::connected, this, [this] {
        m_socket->sendTextMessage(QString::fromUtf8(
            QJsonDocument(QJsonObject{{"command", "follow"}, {"code", m_code}}).toJson(QJsonDocument::Compact)));
        ping();
    });
    connect(m_socket, &QWebSocket::textMessageReceived, this, &FollowSession::socketMessage);
    connect(m_socket, &QWebSocket::disconnected, this, &FollowSession::socketGone);
    // Qt 6.4 names the signal error(); later versions errorOccurred().
    connect(m_socket, qOverload<QAbstractSocket::SocketError>(&QWebSocket::error), this, &FollowSession::socketGone);
    QUrl url;
    url.setScheme(QStringLiteral("ws"));
    url.setHost(m_host);
    url.setPort(m_port);
    url.setPath(QStringLiteral("/api/ws"));
    m_socket->open(url);
    m_silenceTimer->start(silenceMs);
}

void FollowSession::socketGone()
{
    if (!m_socket)
        return;
    const QString reason = m_socket->error() == QAbstractSocket::UnknownSocketError
                               ? QStringLiteral("connexion fermée")
                               : m_socket->errorString();
    unreachable(reason);
}

void FollowSession::heard()
{
    m_silenceTimer->start(silenceMs);
}

void FollowSession::ping()
{
    if (!m_socket)
        return;
    m_socket->sendTextMessage(QStringLiteral("{\"command\":\"ping\",\"t\":%1}").arg(m_clock.now().toMSecsSinceEpoch()));
    m_socket->flush();
    m_pingTimer->start(pingEveryMs);
}

void FollowSession::silence()
{
    unreachable(QStringLiteral("aucune réponse depuis %1 s").arg(QLocale(QLocale::French).toString(silenceMs / 1000.0)));
}

void FollowSession::socketMessage(const QString &text)
{
    heard();
    const QJsonObject message = QJsonDocument::fromJson(text.toUtf8()).object();
    if (const QJsonValue pong = message.value(QLatin1StringView("pong")); pong.isDouble()) {
        m_offset.addRoundTrip(qint64(pong.toDouble()),
                              qint64(message.value(QLatin1StringView("serverTimeMs")).toDouble()),
                              m_clock.now().toMSecsSinceEpoch());
        // Twice a second, the clock shown is checked against the main's: two machines' quartz
        // drift apart by a few milliseconds a minute, and a new estimate may move it.
        applyLive();
        return;
    }
    if (const QJsonValue error = message.value(QLatin1StringView("error")); error.isString()) {
        refuse(QStringLiteral("Refusé par la régie principale : %1").arg(error.toString()));
        return;
    }
    if (message.value(QLatin1StringView("type")).toString() != QLatin1StringView("live"))
        return;
    QString error;
    std::optional<int> otherProtocol;
    std::optional<FollowFeed::Live> live = FollowFeed::read(message, &error, &otherProtocol);
    if (otherProtocol) {
        refuse(versionRefusal(*otherProtocol));
        return;
    }
    if (!live) {
        refuse(QStringLiteral("État illisible de la régie principale : %1").arg(error));
        return;
    }
    m_live = std::move(live);
    if (m_live->revision != m_showRevision)
        fetchShow();
    else
        applyLive();
}

void FollowSession::applyLive()
{
    if (!m_live || !m_show || m_live->revision != m_showRevision || !m_offset.offsetMs())
        return;
    const LiveState local = m_offset.toLocal(m_live->state);
    const double blink = m_live->blinkSeconds;
    if (!m_engine.isFollowing()) {
        emit aboutToFollow();
        m_engine.setFollowing(true);
    }
    const bool newShow = m_showBytes != m_mirroredBytes;
    const bool moved = newShow || !m_engine.liveState().sameAs(local, resyncToleranceSeconds)
                       || (blink > 0) != m_engine.blinkActive();
    if (moved) {
        m_engine.mirror(newShow ? &*m_show : nullptr, local, blink);
        m_mirroredBytes = m_showBytes;
    }
    const bool wasFollowing = m_role == Role::Follower;
    setRole(Role::Follower);
    setStatus(QStringLiteral("Suit %1").arg(address()), false);
    if (moved || !wasFollowing)
        emit mirrored();
}

// ---- Failures ---------------------------------------------------------------------------------------

void FollowSession::unreachable(const QString &reason)
{
    closeNetwork();
    if (m_role == Role::Follower) {
        setRole(Role::Lost);
        emit lost();
    }
    setStatus(QStringLiteral("Régie principale injoignable à %1 (%2) : nouvel essai chaque seconde")
                  .arg(address(), reason),
              true);
    scheduleRetry();
}

void FollowSession::refuse(const QString &reason)
{
    m_trying = false;
    closeNetwork();
    m_retryTimer->stop();
    if (m_role == Role::Follower) {
        setRole(Role::Lost);
        emit lost();
    }
    setStatus(reason, true);
}

void FollowSession::scheduleRetry()
{
    if (m_trying)
        m_retryTimer->start(retryMs);
}

void FollowSession::closeNetwork()
{
    if (QNetworkReply *reply = m_reply) {
        m_reply = nullptr;
        reply->abort();
    }
    if (QWebSocket *socket = std::exchange(m_socket, nullptr)) {
        socket->disconnect(this);
        socket->abort();
        socket->deleteLater();
    }
    m_silenceTimer->stop();
    m_pingTimer->stop();
    // What the next connection reads is new: the main may have restarted meanwhile.
    m_live.reset();
    m_showRevision = -1;
    m_offset.reset();
}

void FollowSession::setRole(Role role)
{
    if (m_role == role)
        return;
    m_role = role;
    m_sinceMs = m_clock.now().toMSecsSinceEpoch();
    emit roleChanged();
}

void FollowSession::setStatus(const QString &status, bool error)
{
    if (m_status == status && m_statusIsError == error)
        return;
    m_status = status;
    m_statusIsError = error;
    emit statusChanged();
}
