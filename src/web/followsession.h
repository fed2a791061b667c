#pragma once

#include "followfeed.h"
#include "mainclockoffset.h"
#include "timersession.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <optional>

class Clock;
class ClockTimer;
class QNetworkAccessManager;
class QNetworkReply;
class QWebSocket;
class TimerEngine;

// This machine as the backup of a main one: it reads the main's show (GET /api/show), follows
// its live state over the WebSocket and puts both into the engine, counting from the main's
// instants put on this machine's clock, so that both machines' digits change together.
//
// The role is "main" until the first state is mirrored, then "follower". No message for
// `silenceMs`, or the connection closed, makes it "lost": the engine runs the show on by
// itself while the main is tried again every second; a main that answers again is followed
// again, its state taken only where it differs from the one shown. takeOver() makes this
// machine a main with exactly the show and clock it shows.
//
// A refusal that trying again would not change (a wrong access code, a server that is not a
// Kairon main, another version) stops the attempts and says why in status().
class FollowSession : public QObject
{
    Q_OBJECT

public:
    enum class Role { Main, Follower, Lost };

    static constexpr qint64 silenceMs = 1'500;
    static constexpr qint64 pingEveryMs = 500;
    static constexpr qint64 retryMs = 1'000;
    // A follower takes the main's state again only when it is this far from the one it shows:
    // closer than a frame, a digit never moves for it.
    static constexpr double resyncToleranceSeconds = 0.010;

    // Both must outlive the session.
    FollowSession(TimerEngine &engine, Clock &clock, QObject *parent = nullptr);
    ~FollowSession() override;

    // Starts following the main at `host`:`port` with its access code, afresh.
    void follow(const QString &host, int port, const QString &accessCode);
    // This machine becomes a main with the show and clock it shows, and follows no more.
    void takeOver();
    // Whether follow() was called and neither takeOver() nor a lasting refusal ended it.
    bool isTrying() const { return m_trying; }

    Role role() const { return m_role; }
    static QString roleName(Role role);
    QString host() const { return m_host; }
    int port() const { return m_port; }
    // When the role began, on this machine's wall clock (ms since the epoch).
    qint64 sinceMs() const { return m_sinceMs; }
    // Where the following stands, in French ("Suit 192.168.1.20:8080", "Code d'accès refusé…");
    // empty when not following.
    QString status() const { return m_status; }
    bool statusIsError() const { return m_statusIsError; }
    std::optional<double> clockOffsetMs() const { return m_offset.offsetMs(); }

signals:
    void roleChanged();
    void statusChanged();
    // The main is lost (the alert, the banner).
    void lost();
    // The main's show is about to take the engine for the first time since following began.
    void aboutToFollow();
    // The main's show or state was put into the engine, or the main is followed again.
    void mirrored();
    // This machine is the main now, by takeOver().
    void tookOver();

private:
    void fetchShow();
    void showFetched(QNetworkReply *reply);
    void openSocket();
    void socketMessage(const QString &text);
    void socketGone();
    void heard();
    void ping();
    void silence();
    void applyLive();
    void refuse(const QString &reason); // stops trying
    void unreachable(const QString &reason);
    void scheduleRetry();
    void closeNetwork();
    void setRole(Role role);
    void setStatus(const QString &status, bool error);
    QString address() const;

    TimerEngine &m_engine;
    Clock &m_clock;
    std::unique_ptr<QNetworkAccessManager> m_http;
    QPointer<QNetworkReply> m_reply;
    QWebSocket *m_socket = nullptr;
    std::unique_ptr<ClockTimer> m_silenceTimer;
    std::unique_ptr<ClockTimer> m_pingTimer;
    std::unique_ptr<ClockTimer> m_retryTimer;
    MainClockOffset m_offset;

    QString m_host;
    int m_port = 0;
    QString m_code;
    bool m_trying = false;
    Role m_role = Role::Main;
    qint64 m_sinceMs = 0;
    QString m_status;
    bool m_statusIsError = false;

    // The main's show as last read, and its revision.
    std::optional<TimerSession> m_show;
    QByteArray m_showBytes;
    qint64 m_showRevision = -1;
    QByteArray m_mirroredBytes; // the show the engine holds, as read
    std::optional<FollowFeed::Live> m_live; // the main's last live state
};
