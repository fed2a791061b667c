// The transport of TimerEngine: start, pause and resume, stop, reset, next, previous, adjust,
// and loading another show.
#include "timerengine.h"

#include <cmath>
#include <utility>

void TimerEngine::start(std::optional<int> cueIndex)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    const int index = cueIndex           ? *cueIndex
                      : m_selectedCueIndex ? *m_selectedCueIndex
                      : m_activeCueIndex   ? *m_activeCueIndex
                                           : 0;
    if (index < 0 || index >= m_session.cues.size())
        return;
    if (m_isRunning && m_activeCueIndex)
        logActiveCue();

    const QDateTime now = m_clock.now();
    const qint64 monotonicUs = m_clock.monotonicUs();
    const Cue cue = std::as_const(m_session.cues)[index];
    m_activeCueID = cue.id;
    if (m_selectedCueIndex != index) {
        m_selectedCueIndex = index;
        notify(&TimerEngine::selectedCueIndexChanged);
    }
    refreshDerived();

    loadClock(cue, now, monotonicUs);
    setRunState(true, false);
    startTicker();
    emit cueMoment(TriggerMoment::Start, cue, index, m_remaining);
    notifyStateChange();
}

void TimerEngine::pause()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (!m_isRunning)
        return;
    const qint64 monotonicUs = m_clock.monotonicUs();
    if (!m_isPaused) {
        // The display holds the exact value of the moment of the pause, not that of the last tick.
        refreshClock(monotonicUs, m_clock.now().toMSecsSinceEpoch());
        m_pauseStartedUs = monotonicUs;
        setRunState(true, true);
    } else {
        if (m_pauseStartedUs) {
            const qint64 pausedForUs = monotonicUs - *m_pauseStartedUs;
            m_pausedAccumUs += pausedForUs;
            // A paused hard-out cue ends later by the time it was paused, so that it resumes
            // with the time it had left.
            if (m_hardOutTargetMs)
                *m_hardOutTargetMs += (pausedForUs + 500) / 1000;
        }
        m_pauseStartedUs.reset();
        setRunState(true, false);
        armTicker();
    }
    notifyStateChange();
}

void TimerEngine::stop()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (m_isRunning)
        logActiveCue();
    halt();
}

void TimerEngine::halt()
{
    ++m_clockRun;
    setRunState(false, false);
    stopTicker();
    notifyStateChange();
}

void TimerEngine::reset()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    const Cue *cue = activeCuePtr();
    if (!cue)
        return;
    loadClock(*cue, m_clock.now(), m_clock.monotonicUs());
    if (m_isPaused)
        setRunState(m_isRunning, false);
    armTicker();
    notifyStateChange();
}

void TimerEngine::next()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    const std::optional<int> base = baseIndex();
    if (!base)
        start(0);
    else if (*base + 1 < m_session.cues.size())
        start(*base + 1);
    else
        stop();
}

void TimerEngine::previous()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    const std::optional<int> base = baseIndex();
    if (base && *base >= 1)
        start(*base - 1);
}

void TimerEngine::adjust(double seconds)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (!activeCuePtr() || !std::isfinite(seconds))
        return;
    if (m_hardOutTargetMs)
        *m_hardOutTargetMs += std::llround(seconds * 1000);
    else
        m_plannedDuration = std::max(m_plannedDuration + seconds, 1.0);
    // Unclamped on purpose: a large cut shows its raw value until the next tick recomputes the
    // clock from the clamped planned length.
    m_remaining += seconds;
    notify(&TimerEngine::clockChanged);
    armTicker();
    notifyStateChange();
}

void TimerEngine::logCue(const Cue &cue, std::optional<int> writeBackIndex)
{
    // The log holds the exact time of leaving, not that of the last tick.
    if (m_isRunning && !m_isPaused)
        refreshClock(m_clock.monotonicUs(), m_clock.now().toMSecsSinceEpoch());
    const double overtime = m_remaining < 0 ? -m_remaining : 0.0;
    m_loggedOvertime += overtime;
    m_completedCueLog.append(CueLogEntry{cue.name, m_plannedDuration, m_elapsed, overtime});
    m_lastLeftCueID = cue.id;
    m_lastLeftAt = m_clock.now();
    emit cueMoment(TriggerMoment::End, cue, writeBackIndex.value_or(-1), m_remaining);
    notify(&TimerEngine::completedCueLogChanged);
    notify(&TimerEngine::clockChanged);
    if (writeBackIndex) {
        Cue &logged = m_session.cues[*writeBackIndex];
        logged.actualElapsed = m_elapsed;
        logged.overtime = overtime;
        notify(&TimerEngine::sessionChanged);
    }
}

void TimerEngine::logActiveCue()
{
    if (const Cue *cue = activeCuePtr())
        logCue(*cue, m_activeCueIndex);
}

void TimerEngine::loadSession(const TimerSession &session)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    stop();
    m_session = session;
    clearLiveState();
    m_selectedCueIndex = session.cues.isEmpty() ? std::nullopt : std::optional(0);
    m_loggedOvertime = 0;
    m_completedCueLog.clear();
    m_undoStack.clear();
    m_redoStack.clear();
    m_showLocked = false;

    notify(&TimerEngine::sessionChanged);
    notify(&TimerEngine::selectedCueIndexChanged);
    notify(&TimerEngine::completedCueLogChanged);
    notify(&TimerEngine::undoStateChanged);
    notify(&TimerEngine::showLockedChanged);
    refreshDerived();
    notifyStateChange();
}

void TimerEngine::returnToIdle()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    stop();
    clearLiveState();
    m_selectedCueIndex.reset();
    notify(&TimerEngine::selectedCueIndexChanged);
    refreshDerived();
    notifyStateChange();
}

void TimerEngine::clearLiveState()
{
    m_activeCueID.reset();
    m_lastLeftCueID.reset();
    m_remaining = m_elapsed = m_plannedDuration = 0;
    m_currentMessage.reset();
    m_messageUrgent = m_blackout = m_freeze = m_clockMode = m_blinkActive = false;
    m_blinkTimer->stop();
    m_doorsTargetMs.reset();
    notify(&TimerEngine::messageChanged);
    notify(&TimerEngine::blackoutChanged);
    notify(&TimerEngine::freezeChanged);
    notify(&TimerEngine::clockModeChanged);
    notify(&TimerEngine::blinkActiveChanged);
    notify(&TimerEngine::doorsChanged);
}
