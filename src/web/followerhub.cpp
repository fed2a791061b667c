#include "followerhub.h"

#include "peersend.h"
#include "timerengine.h"

#include <QWebSocket>

FollowerHub::FollowerHub(const TimerEngine &engine) : m_engine(engine) {}

FollowFeed::Live FollowerHub::current() const
{
    return {m_engine.liveState(), m_revision, m_engine.blinkSecondsLeft()};
}

void FollowerHub::add(QWebSocket *follower)
{
    if (m_followers.contains(follower))
        return;
    m_followers.append(follower);
    const FollowFeed::Live live = current();
    if (m_followers.size() == 1)
        m_sent = live;
    send(follower, FollowFeed::message(live));
}

bool FollowerHub::remove(QWebSocket *follower)
{
    if (!m_followers.removeOne(follower))
        return false;
    if (m_followers.isEmpty())
        m_sent.reset();
    return true;
}

void FollowerHub::clear()
{
    m_followers.clear();
    m_sent.reset();
}

void FollowerHub::engineChanged(bool sessionChanged)
{
    if (sessionChanged)
        ++m_revision;
    if (m_followers.isEmpty())
        return;
    const FollowFeed::Live live = current();
    if (m_sent && m_sent->revision == live.revision && (m_sent->blinkSeconds > 0) == (live.blinkSeconds > 0)
        && m_sent->state.sameAs(live.state, clockToleranceSeconds))
        return;
    m_sent = live;
    const QByteArray message = FollowFeed::message(live);
    const QList<QWebSocket *> followers = m_followers; // a dropped one leaves the list
    for (QWebSocket *follower : followers)
        send(follower, message);
}

void FollowerHub::send(QWebSocket *follower, const QByteArray &message)
{
    // Into the system's buffers now: ahead of the frame this machine draws of the change.
    if (sendOrDrop(follower, QString::fromUtf8(message)))
        follower->flush();
}
