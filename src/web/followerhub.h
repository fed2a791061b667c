#pragma once

#include "followfeed.h"

#include <QList>

#include <optional>

class QWebSocket;
class TimerEngine;

// The machines that follow this one, each on its WebSocket: a follower gets the live state as
// soon as it is let in, then each time it leaves the path the last message gave. A clock that
// simply runs on sends nothing; the followers ping, and their pongs keep the link heard.
class FollowerHub
{
public:
    // How far a running clock may drift from the path sent before it is sent again.
    static constexpr double clockToleranceSeconds = 0.005;

    explicit FollowerHub(const TimerEngine &engine);

    // A follower whose access code was checked. It is sent the live state at once.
    void add(QWebSocket *follower);
    // The follower's socket is going; false if it was not one.
    bool remove(QWebSocket *follower);
    bool isEmpty() const { return m_followers.isEmpty(); }
    QList<QWebSocket *> followers() const { return m_followers; }
    void clear();

    // An operation of the engine has ended: the followers learn what moved, before any window
    // of this machine draws it.
    void engineChanged(bool sessionChanged);
    // Changes with every edit of the show, so that a follower knows when to read it again.
    qint64 revision() const { return m_revision; }

private:
    FollowFeed::Live current() const;
    void send(QWebSocket *follower, const QByteArray &message);

    const TimerEngine &m_engine;
    QList<QWebSocket *> m_followers;
    std::optional<FollowFeed::Live> m_sent;
    qint64 m_revision = 1;
};
