#pragma once

#include "livestate.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

// What a main machine tells the machines that follow it over the WebSocket: after a follower
// says `{"command": "follow", "code": …}`, a `"type": "live"` message at once and then each time
// the live state moves off the path the last one gave (a start, a pause, an adjustment, a
// message, a lock…) or the show is edited. The show itself is read from GET /api/show, whose
// answer carries the same revision: a live message of a newer revision says to read it again.
namespace FollowFeed {

// Both sides must speak the same: a main or a follower of another version is refused.
inline constexpr int protocolVersion = 1;
// The headers of GET /api/show.
inline constexpr char protocolHeader[] = "X-Kairon-Follow-Protocol";
inline constexpr char revisionHeader[] = "X-Kairon-Show-Revision";

struct Live {
    LiveState state;         // instants on the main's wall clock
    qint64 revision = 0;     // the show's, as GET /api/show gives it
    double blinkSeconds = 0; // what is left of the blink on air; 0 for none
};

QByteArray message(const Live &live);
// A live message read back. None, with the reason, for one that is not whole; a message of
// another protocol says which in `otherProtocol`.
std::optional<Live> read(const QJsonObject &message, QString *error, std::optional<int> *otherProtocol);

} // namespace FollowFeed
