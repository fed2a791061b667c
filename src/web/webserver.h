#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QHttpServer>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include "codeguard.h"
#include "followerhub.h"
#include "viewerfeed.h"

#include <memory>
#include <optional>

class Clock;
class ClockTimer;
class FollowSession;
class QHttpServerRequest;
class QWebSocket;
class RequestGate;
class TimerEngine;

// Binds remote control over HTTP and WebSocket to the engine: viewing the state is open,
// every command needs the access code. Runs on the main thread; no handler waits on the network
// (a font's file is read from the disk on its first request only).
class WebServer : public QObject
{
    Q_OBJECT

public:
    // Both must outlive the server.
    WebServer(TimerEngine &engine, Clock &clock, QObject *parent = nullptr);
    ~WebServer() override;

    // Reads the stored web preferences afresh and starts, moves or stops the server.
    void applyWebSettings();

    std::optional<QString> webStatus() const { return m_status; }
    quint16 serverPort() const; // 0 while not serving
    QHostAddress serverAddress() const; // the address bound (Any for every interface); null while not serving
    // Takes the stored access code at once, without a restart: the viewers stay connected and
    // only the commands need the new code.
    void reloadAccessCode();
    int viewerCount() const { return int(m_viewers.size()); }
    // How long a client may take to send a whole request before it gets a 408.
    void setRequestTimeoutMs(int ms);
    // This machine's following of a main: its role in the state document, POST /api/takeover,
    // and the commands refused while it follows. Must outlive the server.
    void setFollowSession(FollowSession *follow) { m_follow = follow; }
    int followerCount() const { return int(m_followers.followers().size()); }

signals:
    void webStatusChanged();
    // After the WebSocket viewers were sent what changed (tests and benchmarks wait on it).
    void statePushed();

private:
    void setStatus(const std::optional<QString> &status);
    void stopServing();
    void setUpRoutes();
    QHttpServerResponse handleApi(const QString &name, const QHttpServerRequest &request);
    // The state document with this machine's role in following.
    QJsonObject stateDocument() const;
    QHttpServerResponse showResponse() const;
    // Why a command is refused: its French text, and while the address is locked out, the
    // seconds left (the HTTP answer is then 429 with Retry-After, else 401).
    struct Refusal {
        QString message;
        int retryAfterSeconds = 0;
    };
    // Checks `code` for `client`, counting wrong codes.
    std::optional<Refusal> refusal(const QString &client, const QByteArray &code);
    std::optional<QHttpServerResponse> refusedRequest(const QHttpServerRequest &request);
    void dropViewer(QWebSocket *viewer);
    void acceptViewers();
    void handleViewerMessage(QWebSocket *viewer, const QString &text);
    void welcome(QWebSocket *viewer);
    // An operation of the engine has ended: its change leaves at once, before the views react
    // to it and before any window draws it, unless a message already left in this turn of the
    // event loop; the changes after that one leave together when the turn ends.
    void onEngineChanged(bool sessionChanged);
    void endTurn();
    // Sends every viewer what changed, if anything did; whether a message left.
    bool pushChanges();
    // While viewers watch a show with a start time, wakes at each change of the instant its
    // schedule is read at: its offset grows between cues, when the engine does not tick.
    void followSchedule();
    void scheduleMoved();

    TimerEngine &m_engine;
    Clock &m_clock;
    QHttpServer *m_http = nullptr;
    QPointer<RequestGate> m_gate;
    int m_timeoutMs = 5000;
    QString m_accessCode;
    CodeGuard m_guard;
    std::optional<QString> m_status;
    QList<QWebSocket *> m_viewers;
    ViewerFeed m_feed;
    FollowerHub m_followers;
    FollowSession *m_follow = nullptr;
    qint64 m_createdMs = 0; // a main since then, when no follow session is given
    std::unique_ptr<ClockTimer> m_scheduleTimer;
    bool m_pushedThisTurn = false;
    bool m_endOfTurnScheduled = false;
};
