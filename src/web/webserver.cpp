#include "webserver.h"

#include "clock.h"
#include "followsession.h"
#include "peersend.h"
#include "preferences.h"
#include "projectdocument.h"
#include "requestgate.h"
#include "timerengine.h"
#include "webcommand.h"
#include "webdocuments.h"
#include "weberror.h"
#include "webpages.h"

#include <QHostAddress>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QRegularExpression>
#include <QWebSocket>


namespace {
QHttpServerResponse jsonError(QHttpServerResponse::StatusCode status, const QString &message)
{
    return QHttpServerResponse(webErrorObject(message), status);
}

// An answer to one viewer, written to the system at once: a socket otherwise waits for the event
// loop's next turn, one more wake-up that polls every viewer's socket.
void sendJson(QWebSocket *viewer, const QJsonObject &object)
{
    viewer->sendTextMessage(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
    viewer->flush();
}

QString followerRefusal()
{
    return QStringLiteral("Machine de secours : elle suit la régie principale et n'obéit qu'à elle "
                          "(« Prendre la main » pour la commander)");
}

QHttpServerResponse wrongMethod(const QString &path, const char *allowed)
{
    QHttpServerResponse response = jsonError(
        QHttpServerResponse::StatusCode::MethodNotAllowed,
        QStringLiteral("Méthode non autorisée pour %1 (%2 attendu)")
            .arg(path, QLatin1StringView(allowed)));
    response.setHeader("Allow", allowed);
    return response;
}

QHttpServerResponse pageResponse(const QString &path, const QHttpServerRequest &request)
{
    if (request.method() != QHttpServerRequest::Method::Get)
        return wrongMethod(path, "GET");
    const std::optional<WebAsset> asset = WebPages::asset(path);
    if (!asset) // a font file missing from this system
        return jsonError(QHttpServerResponse::StatusCode::NotFound,
                         QStringLiteral("Chemin inconnu : %1").arg(path));
    QHttpServerResponse response(asset->contentType, asset->body);
    response.setHeader("Cache-Control", asset->cacheControl);
    response.setHeader("X-Content-Type-Options", "nosniff");
    return response;
}
} // namespace

WebServer::WebServer(TimerEngine &engine, Clock &clock, QObject *parent)
    : QObject(parent), m_engine(engine), m_clock(clock), m_feed(engine, clock), m_followers(engine)
{
    m_scheduleTimer = clock.createTimer([this] { scheduleMoved(); });
    m_createdMs = clock.now().toMSecsSinceEpoch();
    connect(&engine, &TimerEngine::aboutToNotify, this, &WebServer::onEngineChanged);
}

WebServer::~WebServer()
{
    stopServing();
}

void WebServer::setRequestTimeoutMs(int ms)
{
    m_timeoutMs = ms;
    if (m_gate)
        m_gate->setRequestTimeoutMs(ms);
}

quint16 WebServer::serverPort() const
{
    return m_gate && m_gate->isListening() ? m_gate->serverPort() : 0;
}

QHostAddress WebServer::serverAddress() const
{
    return m_gate && m_gate->isListening() ? m_gate->serverAddress() : QHostAddress();
}

void WebServer::reloadAccessCode()
{
    m_accessCode = Preferences::webAccessCode();
}

void WebServer::setStatus(const std::optional<QString> &status)
{
    if (status == m_status)
        return;
    m_status = status;
    emit webStatusChanged();
}

void WebServer::stopServing()
{
    for (QWebSocket *viewer : m_viewers + m_followers.followers()) {
        viewer->disconnect(this);
        viewer->abort();
        viewer->deleteLater();
    }
    m_viewers.clear();
    m_followers.clear();
    m_feed.forget();
    followSchedule();
    delete m_http; // owns the gate once bound
    m_http = nullptr;
}

void WebServer::applyWebSettings()
{
    const Preferences::WebSettings stored = Preferences::storedWebSettings();
    m_accessCode = stored.accessCode;
    stopServing();
    if (!stored.enabled || !Preferences::isPort(stored.port)) {
        setStatus(std::nullopt);
        return;
    }
    QHostAddress address(QHostAddress::Any);
    if (!stored.interfaceAddress.isEmpty() && !address.setAddress(stored.interfaceAddress)) {
        setStatus(QStringLiteral("Adresse %1 invalide").arg(stored.interfaceAddress));
        return;
    }
    auto *gate = new RequestGate;
    gate->setRequestTimeoutMs(m_timeoutMs);
    if (!gate->listen(address, quint16(stored.port))) {
        // An address of a network the machine has left is no port problem.
        if (gate->serverError() == QAbstractSocket::SocketAddressNotAvailableError)
            setStatus(QStringLiteral("Adresse %1 absente de cette machine : choisir une autre interface")
                          .arg(stored.interfaceAddress));
        else
            setStatus(QStringLiteral("Port %1 indisponible (%2)")
                          .arg(stored.port)
                          .arg(gate->errorString()));
        delete gate;
        return;
    }
    m_http = new QHttpServer(this);
    setUpRoutes();
    m_http->bind(gate); // the server takes the gate as its child
    m_gate = gate;
    connect(m_http, &QHttpServer::newWebSocketConnection, this, &WebServer::acceptViewers);
    setStatus(std::nullopt);
}

void WebServer::setUpRoutes()
{
    QStringList names = WebCommand::commandNames();
    names.append({QStringLiteral("state"), QStringLiteral("show"), QStringLiteral("takeover")});
    for (const QString &name : std::as_const(names)) {
        m_http->route(QStringLiteral("/api/") + name,
                      [this, name](const QHttpServerRequest &request) {
                          return handleApi(name, request);
                      });
    }
    // Qt HTTP Server 6.4 upgrades a WebSocket request only when a route takes it, and only if
    // that route writes no answer: the handshake is then left to the WebSocket server.
    m_http->route(QStringLiteral("/api/ws"),
                  [](const QHttpServerRequest &request, QHttpServerResponder &&responder) {
                      if (request.value("upgrade").compare("websocket", Qt::CaseInsensitive) == 0)
                          return;
                      responder.write(webErrorBody(QStringLiteral("/api/ws attend une connexion WebSocket")),
                                      "application/json", QHttpServerResponder::StatusCode::BadRequest);
                  });
    // The router reads a path as a regular expression: each page's is matched literally.
    for (const QString &path : WebPages::paths()) {
        m_http->route(QRegularExpression::escape(path),
                      [path](const QHttpServerRequest &request) { return pageResponse(path, request); });
    }
    m_http->setMissingHandler([](const QHttpServerRequest &request, QHttpServerResponder &&responder) {
        responder.write(webErrorBody(QStringLiteral("Chemin inconnu : %1").arg(request.url().path())),
                        "application/json", QHttpServerResponder::StatusCode::NotFound);
    });
}

std::optional<QHttpServerResponse> WebServer::refusedRequest(const QHttpServerRequest &request)
{
    using Status = QHttpServerResponse::StatusCode;
    const QByteArray authorization = request.value("Authorization");
    const QByteArray code = authorization.startsWith("Bearer ") ? authorization.mid(7) : QByteArray();
    const std::optional<Refusal> refused = refusal(request.remoteAddress().toString(), code);
    if (!refused)
        return std::nullopt;
    if (refused->retryAfterSeconds == 0)
        return jsonError(Status::Unauthorized, refused->message);
    QHttpServerResponse response = jsonError(Status::TooManyRequests, refused->message);
    response.setHeader("Retry-After", QByteArray::number(refused->retryAfterSeconds));
    return response;
}

QJsonObject WebServer::stateDocument() const
{
    QJsonObject document = webStateDocument(m_engine, m_clock);
    const FollowSession::Role role = m_follow ? m_follow->role() : FollowSession::Role::Main;
    document.insert(QLatin1StringView("follow"),
                    QJsonObject{{"role", FollowSession::roleName(role)},
                                {"host", role == FollowSession::Role::Main ? QJsonValue() : QJsonValue(m_follow->host())},
                                {"since", double(m_follow ? m_follow->sinceMs() : m_createdMs)}});
    return document;
}

QHttpServerResponse WebServer::showResponse() const
{
    const std::optional<QByteArray> bytes = ProjectDocument::encode(m_engine.session());
    if (!bytes)
        return jsonError(QHttpServerResponse::StatusCode::InternalServerError,
                         QStringLiteral("Projet impossible à encoder"));
    QHttpServerResponse response("application/json", *bytes);
    response.setHeader(FollowFeed::protocolHeader, QByteArray::number(FollowFeed::protocolVersion));
    response.setHeader(FollowFeed::revisionHeader, QByteArray::number(m_followers.revision()));
    return response;
}

std::optional<WebServer::Refusal> WebServer::refusal(const QString &client, const QByteArray &code)
{
    const qint64 nowMs = m_clock.monotonicUs() / 1000;
    auto lockedOut = [&] {
        const int seconds = m_guard.secondsLeft(client, nowMs);
        return Refusal{QStringLiteral("Trop de codes d'accès erronés : réessayez dans %1 s").arg(seconds),
                       seconds};
    };
    if (m_guard.locked(client, nowMs))
        return lockedOut();
    if (!m_accessCode.isEmpty() && code.trimmed() == m_accessCode.toUtf8()) {
        m_guard.recordSuccess(client);
        return std::nullopt;
    }
    if (m_guard.recordFailure(client, nowMs))
        return lockedOut();
    return Refusal{QStringLiteral("Code d'accès manquant ou incorrect")};
}

QHttpServerResponse WebServer::handleApi(const QString &name, const QHttpServerRequest &request)
{
    using Status = QHttpServerResponse::StatusCode;
    const auto method = request.method();
    const QString path = QStringLiteral("/api/") + name;
    if (name == QLatin1StringView("state")) {
        if (method != QHttpServerRequest::Method::Get)
            return wrongMethod(path, "GET");
        return QHttpServerResponse(stateDocument());
    }
    if (name == QLatin1StringView("show")) {
        if (method != QHttpServerRequest::Method::Get)
            return wrongMethod(path, "GET");
        if (std::optional<QHttpServerResponse> refused = refusedRequest(request))
            return std::move(*refused);
        return showResponse();
    }
    if (method != QHttpServerRequest::Method::Post)
        return wrongMethod(path, "POST");
    if (std::optional<QHttpServerResponse> refused = refusedRequest(request))
        return std::move(*refused);
    if (name == QLatin1StringView("takeover")) {
        if (m_follow)
            m_follow->takeOver();
        return QHttpServerResponse(stateDocument());
    }
    if (m_engine.isFollowing())
        return jsonError(Status::Conflict, followerRefusal());

    QJsonObject body;
    const QByteArray raw = request.body();
    if (!raw.trimmed().isEmpty()) {
        QJsonParseError parseError;
        const QJsonDocument document = QJsonDocument::fromJson(raw, &parseError);
        if (parseError.error != QJsonParseError::NoError || !document.isObject())
            return jsonError(Status::BadRequest,
                             QStringLiteral("Corps invalide : un objet JSON est attendu"));
        body = document.object();
    }
    QString error;
    const std::optional<WebCommand> command = WebCommand::decode(name, body, &error);
    if (!command)
        return jsonError(Status::BadRequest, error);
    if (const std::optional<QString> refused = applyWebCommand(m_engine, *command))
        return jsonError(Status::BadRequest, *refused);
    pushChanges(); // the viewers learn it before the answer leaves
    return QHttpServerResponse(stateDocument());
}

void WebServer::acceptViewers()
{
    while (m_http && m_http->hasPendingWebSocketConnections()) {
        QWebSocket *viewer = m_http->nextPendingWebSocketConnection().release();
        if (viewer->requestUrl().path() != QLatin1StringView("/api/ws")) {
            viewer->close(QWebSocketProtocol::CloseCodePolicyViolated,
                          QStringLiteral("Chemin inconnu"));
            viewer->deleteLater();
            continue;
        }
        viewer->setParent(this);
        // A bigger message closes the connection (close code 1009) before it is buffered whole.
        viewer->setMaxAllowedIncomingMessageSize(quint64(RequestGate::maxRequestBytes));
        viewer->setMaxAllowedIncomingFrameSize(quint64(RequestGate::maxRequestBytes));
        connect(viewer, &QWebSocket::textMessageReceived, this,
                [this, viewer](const QString &text) { handleViewerMessage(viewer, text); });
        connect(viewer, &QWebSocket::binaryMessageReceived, this, [viewer] {
            sendJson(viewer, webErrorObject(QStringLiteral(
                                 "Message binaire refusé : un objet JSON texte est attendu")));
        });
        connect(viewer, &QWebSocket::disconnected, this, [this, viewer] {
            m_followers.remove(viewer);
            dropViewer(viewer);
            viewer->deleteLater();
        });
        welcome(viewer);
        m_viewers.append(viewer);
        followSchedule();
    }
}

void WebServer::dropViewer(QWebSocket *viewer)
{
    // Nothing is sent while no one watches: the next viewer starts afresh.
    if (m_viewers.removeOne(viewer) && m_viewers.isEmpty()) {
        m_feed.forget();
        followSchedule();
    }
}

void WebServer::welcome(QWebSocket *viewer)
{
    // The others first learn what changed, so that the newcomer holds the state they hold.
    if (!m_viewers.isEmpty())
        pushChanges();
    for (const QByteArray &message : m_feed.welcome())
        sendOrDrop(viewer, QString::fromUtf8(message));
    viewer->flush();
}

void WebServer::handleViewerMessage(QWebSocket *viewer, const QString &text)
{
    // A message over the size limit never gets here: the socket closes on it (code 1009).
    auto reply = [viewer](const QJsonObject &object) { sendJson(viewer, object); };
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject()) {
        reply(webErrorObject(QStringLiteral("Message invalide : un objet JSON est attendu")));
        return;
    }
    const QJsonObject message = document.object();
    const QJsonValue name = message.value(QLatin1StringView("command"));
    if (!name.isString()) {
        reply(webErrorObject(QStringLiteral("« command » manque ou n'est pas un texte")));
        return;
    }
    if (name.toString() == QLatin1StringView("ping")) {
        // Open to every viewer, answered at once: a page measures the offset of its clock from
        // the program's by the round trip.
        const QJsonValue sent = message.value(QLatin1StringView("t"));
        if (!sent.isDouble()) {
            reply(webErrorObject(QStringLiteral("« t » doit être un nombre")));
            return;
        }
        reply(QJsonObject{{QStringLiteral("pong"), sent},
                          {QStringLiteral("serverTimeMs"),
                           double(m_clock.now().toMSecsSinceEpoch())}});
        return;
    }
    if (name.toString() == QLatin1StringView("state")) {
        // A viewer that missed a message (a gap in the sequence) starts again from the whole.
        welcome(viewer);
        return;
    }
    // A command that carries an "id" is answered with it: {"ack": id} once applied (after the
    // state it changed), its error with the id otherwise. Without one, only an error answers.
    const QJsonValue id = message.value(QLatin1StringView("id"));
    auto refuse = [&](const QString &reason) {
        QJsonObject error = webErrorObject(reason);
        if (!id.isUndefined())
            error.insert(QLatin1StringView("id"), id);
        reply(error);
    };
    if (name.toString() == QLatin1StringView("follow")) {
        // A backup machine: it needs the access code, then gets the live state instead of
        // the viewers' feed.
        if (const std::optional<Refusal> refused = refusal(
                viewer->peerAddress().toString(), message.value(QLatin1StringView("code")).toString().toUtf8())) {
            refuse(refused->message);
            return;
        }
        dropViewer(viewer);
        m_followers.add(viewer);
        return;
    }
    if (!WebCommand::isCommandName(name.toString())) {
        refuse(QStringLiteral("Commande inconnue : « %1 »").arg(name.toString()));
        return;
    }
    if (const std::optional<Refusal> refused = refusal(
            viewer->peerAddress().toString(), message.value(QLatin1StringView("code")).toString().toUtf8())) {
        refuse(refused->message);
        return;
    }
    QString error;
    const std::optional<WebCommand> command = WebCommand::decode(name.toString(), message, &error);
    if (!command) {
        refuse(error);
        return;
    }
    if (m_engine.isFollowing()) {
        refuse(followerRefusal());
        return;
    }
    if (const std::optional<QString> refused = applyWebCommand(m_engine, *command)) {
        refuse(*refused);
        return;
    }
    pushChanges();
    if (!id.isUndefined())
        reply(QJsonObject{{QStringLiteral("ack"), id}});
}

void WebServer::onEngineChanged(bool sessionChanged)
{
    if (sessionChanged)
        m_feed.showChanged();
    else
        m_feed.stateChanged();
    m_followers.engineChanged(sessionChanged);
    followSchedule(); // the show may have gained or lost its start time
    if (m_viewers.isEmpty())
        return;
    if (!m_pushedThisTurn && pushChanges())
        m_pushedThisTurn = true;
    if (m_pushedThisTurn && !m_endOfTurnScheduled) {
        m_endOfTurnScheduled = true;
        QMetaObject::invokeMethod(this, &WebServer::endTurn, Qt::QueuedConnection);
    }
}

void WebServer::endTurn()
{
    m_endOfTurnScheduled = false;
    m_pushedThisTurn = false;
    pushChanges();
}

bool WebServer::pushChanges()
{
    if (m_viewers.isEmpty() || !m_feed.hasPendingChanges())
        return false;
    QStringList messages;
    for (const QByteArray &message : m_feed.takeChanges())
        messages.append(QString::fromUtf8(message));
    if (messages.isEmpty())
        return false;
    const QList<QWebSocket *> viewers = m_viewers; // a dropped viewer leaves the list
    for (QWebSocket *viewer : viewers) {
        for (const QString &message : std::as_const(messages))
            sendOrDrop(viewer, message);
        // Into the system's buffers now, not when the event loop next turns: ahead of the
        // frame the windows draw of this change, and of an HTTP command's answer.
        viewer->flush();
    }
    emit statePushed();
    return true;
}

void WebServer::followSchedule()
{
    if (m_viewers.isEmpty() || !m_engine.schedulePlan())
        m_scheduleTimer->stop();
    else
        m_scheduleTimer->start(msUntilScheduleReadingChanges(m_clock.now().toMSecsSinceEpoch()));
}

void WebServer::scheduleMoved()
{
    m_feed.stateChanged();
    pushChanges(); // nothing leaves unless the schedule (or anything else) changed
    followSchedule();
}
