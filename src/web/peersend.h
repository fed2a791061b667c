#pragma once

#include <QString>
#include <QWebSocket>

// Sends a message to a WebSocket peer, viewer or backup machine. One that stopped reading (a
// phone asleep on a dead link) would make the server hold every message for it: past a bound
// of unread bytes, hundreds of pushes, it is dropped instead (its disconnected() forgets it)
// and it connects again. Returns whether the message was queued.
inline bool sendOrDrop(QWebSocket *peer, const QString &message)
{
    constexpr qint64 maxUnreadBytes = 1 << 20;
    if (peer->bytesToWrite() > maxUnreadBytes) {
        peer->abort();
        return false;
    }
    peer->sendTextMessage(message);
    return true;
}
