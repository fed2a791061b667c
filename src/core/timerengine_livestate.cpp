// The live state of TimerEngine as the recovery file keeps it, and the resumption of a show
// from it after an interruption.
#include "timerengine.h"

#include <cmath>
#include <utility>

LiveState TimerEngine::liveState() const
{
    LiveState s;
    const qint64 wallMs = m_clock.now().toMSecsSinceEpoch();
    const ClockReading clock = readClock();
    s.sessionID = m_session.id;
    s.activeCueID = m_activeCueID;
    s.activeCueIndex = m_activeCueIndex;
    s.selectedCueIndex = m_selectedCueIndex;
    s.running = m_isRunning;
    s.paused = m_isPaused;
    s.elapsed = clock.elapsed;
    s.remaining = clock.remaining;
    s.plannedDuration = m_plannedDuration;
    s.hardOutTargetMs = m_hardOutTargetMs;
    if (m_isPaused && m_pauseStartedUs)
        s.pausedSinceMs = wallMs - (m_clock.monotonicUs() - *m_pauseStartedUs) / 1000;
    s.capturedAtMs = wallMs;
    s.completedCueLog = m_completedCueLog;
    s.loggedOvertime = m_loggedOvertime;
    s.message = m_currentMessage;
    s.messageUrgent = m_messageUrgent;
    s.blackout = m_blackout;
    s.freeze = m_freeze;
    s.frozenRemaining = m_frozenRemaining;
    s.clockMode = m_clockMode;
    s.doorsTargetMs = m_doorsTargetMs;
    s.showLocked = m_showLocked;
    return s;
}

void TimerEngine::resumeLiveState(const LiveState &s)
{
    const Batch batch(*this);
    const qint64 wallMs = m_clock.now().toMSecsSinceEpoch();
    const qint64 monotonicUs = m_clock.monotonicUs();
    if (s.selectedCueIndex && *s.selectedCueIndex >= 0 && *s.selectedCueIndex < m_session.cues.size())
        m_selectedCueIndex = s.selectedCueIndex;
    m_activeCueID = s.activeCueID;
    refreshDerived();
    if (m_activeCueID && !m_activeCueIndex && s.activeCueIndex && *s.activeCueIndex >= 0
        && *s.activeCueIndex < m_session.cues.size()) {
        m_activeCueID = std::as_const(m_session.cues)[*s.activeCueIndex].id;
        refreshDerived();
    }
    notify(&TimerEngine::selectedCueIndexChanged);

    ++m_clockRun;
    m_cueStartUs.reset();
    m_pauseStartedUs.reset();
    m_pausedAccumUs = 0;
    m_plannedDuration = s.plannedDuration;
    m_hardOutTargetMs = s.hardOutTargetMs;
    m_elapsed = s.elapsed;
    m_remaining = s.remaining;
    const bool running = s.running && m_activeCueIndex;
    if (running) {
        // The cue ran on in wall-clock time while the program was gone; a paused one stood.
        const double elapsed = s.elapsedAt(wallMs);
        // When it began, for the timetable: its running time back from now (its pauses before
        // the program went are not known, and count as not taken).
        m_cueStartedAt = m_clock.now().addMSecs(-std::llround(elapsed * 1000));
        if (s.paused) {
            m_pauseStartedUs = monotonicUs - (wallMs - s.pausedSinceMs.value_or(wallMs)) * 1000;
            m_cueStartUs = *m_pauseStartedUs - std::llround(elapsed * 1e6);
        } else {
            m_cueStartUs = monotonicUs - std::llround(elapsed * 1e6);
            liveClock(monotonicUs, wallMs, m_elapsed, m_remaining);
        }
        // The thresholds already passed stay silent: their alerts sounded before.
        const Cue &cue = std::as_const(m_session.cues)[*m_activeCueIndex];
        m_firedWarning = m_remaining <= cue.warningThreshold;
        m_firedDanger = m_remaining <= cue.dangerThreshold;
        m_firedZero = m_remaining <= 0;
        m_triggerWatch.markPassed(m_remaining, cue.warningThreshold, cue.dangerThreshold);
    }
    setRunState(running, running && s.paused);
    notify(&TimerEngine::clockChanged);

    m_completedCueLog = s.completedCueLog;
    m_loggedOvertime = s.loggedOvertime;
    notify(&TimerEngine::completedCueLogChanged);
    m_currentMessage = s.message;
    m_messageUrgent = s.messageUrgent;
    notify(&TimerEngine::messageChanged);
    setFlag(m_blackout, s.blackout, &TimerEngine::blackoutChanged);
    setFlag(m_clockMode, s.clockMode, &TimerEngine::clockModeChanged);
    setFlag(m_showLocked, s.showLocked, &TimerEngine::showLockedChanged);
    m_freeze = s.freeze;
    m_frozenRemaining = s.frozenRemaining;
    notify(&TimerEngine::freezeChanged);
    // A doors time passed meanwhile opens the doors at the first tick.
    m_doorsTargetMs = s.doorsTargetMs;
    m_doorsRemaining = m_doorsTargetMs ? double(*m_doorsTargetMs - wallMs) / 1000.0 : 0;
    notify(&TimerEngine::doorsChanged);

    if (running || m_doorsTargetMs)
        startTicker();
    else
        stopTicker();
    notifyStateChange();
}

void TimerEngine::setFollowing(bool on)
{
    if (m_following == on)
        return;
    m_following = on;
    emit followingChanged();
}

void TimerEngine::mirror(const TimerSession *show, const LiveState &state, double blinkSeconds)
{
    const Batch batch(*this);
    if (show)
        loadSession(*show);
    resumeLiveState(state);
    if ((blinkSeconds > 0) != m_blinkActive)
        triggerBlink(blinkSeconds); // starts it, or ends one the main ended
}
