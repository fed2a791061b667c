#pragma once

#include "oscservice.h"
#include "oscstatechange.h"
#include "timerstatesnapshot.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <limits>
#include <memory>
#include <optional>

class Clock;
class ClockTimer;
class TimerEngine;

// Binds remote control to the engine: received OSC commands become engine operations, and the
// engine's state goes out as OSC messages at most once per whole second of remaining time, with
// the show's offset against its timetable ("/kairon/offset") when it has a start time.
// When asked (preference oscSendStateChanges), each change of the transport or of the show
// controls also goes out at once, as "/kairon/state" and "/kairon/message" (oscstatechange.h),
// and so does each change of the offset's whole second.
class NetworkCoordinator : public QObject
{
    Q_OBJECT
    // The listener's last status text; null while listening works or nothing was asked.
    Q_PROPERTY(QVariant oscStatus READ oscStatusVariant NOTIFY oscStatusChanged FINAL)

public:
    explicit NetworkCoordinator(QObject *parent = nullptr);
    ~NetworkCoordinator() override;

    // Keeps the engine (weakly), takes over the OSC callbacks and the engine's state hook, then
    // applies the stored OSC preferences. `clock` is the engine's: it times the offset's
    // changes between cues, and must outlive the engine.
    void attach(TimerEngine *engine, Clock &clock);
    // Reads the stored OSC preferences afresh and (re)configures listening and sending. A port
    // never stored reads as 0 and disables its direction. With the changes of state asked for,
    // the current state goes out once, so that the receiver starts from it.
    Q_INVOKABLE void applyOSCSettings();

    std::optional<QString> oscStatus() const { return m_oscStatus; }
    OSCService &osc() { return m_osc; }

    // Handles one command now (the OSC callback queues them first, see attach()).
    void handleCommand(const OSCMessage &message);
    // Sends the state if its whole second of remaining time differs from the last one sent;
    // then, when they are asked for, the changes of state (see sendStateChanges()).
    void emitState(const TimerStateSnapshot &snapshot);
    // Sends "/kairon/state" if the transport or a show control changed since it was last sent,
    // and "/kairon/message" if the message on air did: one message per change, none for a tick
    // that only moves the clock; then "/kairon/offset" if the offset's whole second (rounded, as
    // the console shows it) changed, for a show with a start time. Does nothing unless the
    // changes of state are asked for.
    void sendStateChanges();
    bool sendsStateChanges() const { return m_sendStateChanges; }

    // Longest stretch of command handling in one turn of the event loop, so that a flood of
    // commands never holds back the engine's ticker.
    static constexpr int commandBudgetMs = 5;

signals:
    void oscStatusChanged();

private:
    QVariant oscStatusVariant() const;
    void handleQueuedCommands();
    void scheduleStateChanges();
    void emitRemainingSecond(const TimerStateSnapshot &snapshot);
    // The offset goes out if its whole second changed; the timer is armed for the instant it
    // would change next, since the offset grows between cues, when the engine does not tick.
    void sendOffsetChange();

    OSCService m_osc;
    QPointer<TimerEngine> m_engine;
    qint64 m_lastSentSecond = std::numeric_limits<qint64>::min();
    std::optional<QString> m_oscStatus;
    QList<OSCMessage> m_queued;
    bool m_handlingScheduled = false;
    bool m_sendStateChanges = false;
    bool m_stateChangesScheduled = false;
    std::optional<OSCStateChange::ShowState> m_lastShowState; // as last sent
    std::optional<OSCStateChange::OnAir> m_lastOnAir;         // as last sent
    std::optional<long> m_lastOffsetSecond;                   // as last sent, rounded
    std::unique_ptr<ClockTimer> m_offsetTimer;
};
