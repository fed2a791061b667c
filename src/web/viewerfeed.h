#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include "cue.h"

class Clock;
class TimerEngine;

// What the WebSocket viewers are told, message by message. A viewer first gets the whole show
// (`"type": "show"`, with the protocol's version) and the whole state (`"type": "state"`); after
// that, every viewer gets the same messages: a show message when the show changes, and a
// `"type": "patch"` with only the fields of the state that changed. A clock that simply runs on
// sends nothing: its fields go out only when it no longer runs where the last reading sent
// said it would (a start, a pause, an adjustment, a step of the system clock). Every message
// carries a sequence number; the show and patch messages each take the next one, so that a
// viewer that sees a gap asks for the whole state again.
class ViewerFeed
{
public:
    // 1 was the whole state document once per shown second, which carried no version.
    static constexpr int protocolVersion = 2;
    // How far a running clock may move from the path the viewers hold before they get it
    // again: a page's own estimate of the program's clock is rarely closer.
    static constexpr double clockToleranceSeconds = 0.010;

    // Both must outlive the feed.
    ViewerFeed(const TimerEngine &engine, const Clock &clock);

    // The show may have changed, and with it the state (the active cue's name, what comes next).
    void showChanged();
    // A field of the state may have changed.
    void stateChanged();
    bool hasPendingChanges() const { return m_showPending || m_statePending; }

    // The messages for every viewer, for what changed since the last call (none, a show, a
    // patch, or a show then a patch). Nothing while no viewer has been welcomed.
    QList<QByteArray> takeChanges();

    // The show, then the state, whole, as every viewer holds them now: for a viewer that comes
    // or asks. Take the changes first, so that this viewer and the others hold the same state.
    QList<QByteArray> welcome();

    // No viewer is left: what was sent no longer says what the next one holds.
    void forget();

    quint64 sequence() const { return m_sequence; }

private:
    QByteArray message(const char *type, QJsonObject body) const;
    // Whether the show's name or a field of a cue that the show message carries changed since
    // it was sent. Cheaper than making the message: a cue's log fields change at each start.
    bool showEdited() const;
    void keepShow();

    const TimerEngine &m_engine;
    const Clock &m_clock;
    QJsonObject m_show;  // the show as the viewers hold it; empty before the first welcome
    QString m_showName;  // what it was made from
    QList<Cue> m_showCues;
    QJsonObject m_state; // the state as the viewers hold it, its clock as last read for them
    quint64 m_sequence = 0;
    bool m_showPending = false;
    bool m_statePending = false;
};
