// The clock of TimerEngine: the live cue clock read from the injected clock's instants, the
// alerts at the thresholds, and the ticker that publishes the clock on the shown second's
// changes and follows on to the next cue.
#include "timerengine.h"

#include "tickphase.h"
#include "walltime.h"

#include <algorithm>

// ---- Clock --------------------------------------------------------------------------------

TimerEngine::ClockReading TimerEngine::readClock() const
{
    ClockReading reading{m_remaining, m_elapsed};
    if (m_isRunning && !m_isPaused && m_cueStartUs && activeCuePtr())
        liveClock(m_clock.monotonicUs(), m_clock.now().toMSecsSinceEpoch(), reading.elapsed,
                  reading.remaining);
    return reading;
}

void TimerEngine::liveClock(qint64 monotonicUs, qint64 wallMs, double &elapsed,
                            double &remaining) const
{
    const qint64 stoppedAt = m_isPaused && m_pauseStartedUs ? *m_pauseStartedUs : monotonicUs;
    elapsed = double(stoppedAt - *m_cueStartUs - m_pausedAccumUs) / 1e6;
    remaining = m_hardOutTargetMs ? double(*m_hardOutTargetMs - wallMs) / 1000.0
                                  : m_plannedDuration - elapsed;
}

void TimerEngine::refreshClock(qint64 monotonicUs, qint64 wallMs)
{
    if (!m_cueStartUs)
        return;
    liveClock(monotonicUs, wallMs, m_elapsed, m_remaining);
    notify(&TimerEngine::clockChanged);
}

void TimerEngine::loadClock(const Cue &cue, const QDateTime &now, qint64 monotonicUs)
{
    if (cue.mode == TimerMode::HardOut) {
        const QDateTime target = WallTime::resolveHardOut(cue, now, m_clock.timeZone());
        m_hardOutTargetMs = target.toMSecsSinceEpoch();
        m_plannedDuration = std::max(double(now.msecsTo(target)) / 1000.0, 1.0);
    } else {
        m_hardOutTargetMs.reset();
        m_plannedDuration = cue.duration;
    }
    m_cueStartUs = monotonicUs;
    m_cueStartedAt = now;
    m_pausedAccumUs = 0;
    m_pauseStartedUs.reset();
    m_elapsed = 0;
    // A hard-out cue whose end has passed starts showing its overtime at once, although its
    // planned length is held at the one-second minimum.
    m_remaining = m_hardOutTargetMs ? double(*m_hardOutTargetMs - now.toMSecsSinceEpoch()) / 1000.0
                                    : m_plannedDuration;
    ++m_clockRun;
    clearAlertLatches();
    m_triggerWatch.arm();
    notify(&TimerEngine::clockChanged);
}

void TimerEngine::clearAlertLatches()
{
    m_firedWarning = m_firedDanger = m_firedZero = false;
}

void TimerEngine::fireAlerts(const Cue &cue)
{
    if (!m_soundsEnabled) {
        if (m_remaining <= 0)
            m_firedZero = true;
        return;
    }
    if (!m_firedWarning && cue.dangerThreshold < m_remaining
        && m_remaining <= cue.warningThreshold) {
        m_firedWarning = true;
        m_sound.play(AlertSound::warning());
    }
    if (!m_firedDanger && 0 < m_remaining && m_remaining <= cue.dangerThreshold) {
        m_firedDanger = true;
        m_sound.play(AlertSound::danger());
    }
    if (!m_firedZero && m_remaining <= 0) {
        m_firedZero = true;
        m_sound.play(AlertSound::zero());
    }
}

// ---- Ticker -------------------------------------------------------------------------------

void TimerEngine::startTicker()
{
    m_tickerOn = true;
    armTicker();
}

void TimerEngine::stopTicker()
{
    m_tickerOn = false;
    m_ticker->stop();
}

void TimerEngine::armTicker()
{
    if (!m_tickerOn)
        return;
    const qint64 monotonicUs = m_clock.monotonicUs();
    const qint64 wallMs = m_clock.now().toMSecsSinceEpoch();
    double shown = 0;
    double published = 0;
    bool phased = false;
    if (m_isRunning && !m_isPaused && m_cueStartUs && m_activeCueIndex) {
        double elapsed = 0;
        liveClock(monotonicUs, wallMs, elapsed, shown);
        published = m_remaining;
        phased = true;
    } else if (m_doorsTargetMs) {
        shown = double(*m_doorsTargetMs - wallMs) / 1000.0;
        published = m_doorsRemaining;
        phased = true;
    }
    // A second that changed since the value was published (time spent by the views while an
    // operation ran, say) is shown by a tick at once rather than at the next phase point.
    const qint64 delayMs = !phased ? TickPhase::periodMs
                           : TickPhase::displayedSecond(published) != TickPhase::displayedSecond(shown)
                               ? 0
                               : TickPhase::delayUntilNextTickMs(shown);
    const qint64 dueUs = monotonicUs + delayMs * 1000;
    // An operation re-arming the ticker never pushes back the tick already coming, nor drops
    // one already due but not yet dispatched: a stream of commands (adjustments from a control
    // surface) would otherwise starve the displays of ticks. That tick lands off the new
    // phase, and the tick after it is back on it.
    if (m_ticker->isActive() && m_tickDueUs <= dueUs)
        return;
    m_tickDueUs = dueUs;
    m_ticker->start(delayMs);
}

void TimerEngine::tick()
{
    const Batch batch(*this);
    runTick();
    armTicker();
}

void TimerEngine::runTick()
{
    // A tick calls the hook at most once, at its end, with the state it leaves.
    bool doorsMoved = false;
    if (m_doorsTargetMs) {
        m_doorsRemaining = double(*m_doorsTargetMs - m_clock.now().toMSecsSinceEpoch()) / 1000.0;
        if (m_doorsRemaining <= 0) {
            m_doorsTargetMs.reset();
            if (m_soundsEnabled)
                m_sound.play(AlertSound::zero());
            if (!m_session.cues.isEmpty())
                postJob([this] { start(0); });
        }
        notify(&TimerEngine::doorsChanged);
        doorsMoved = true;
    }

    const Cue *cue = activeCuePtr();
    if (!m_isRunning || m_isPaused || !cue || !m_cueStartUs) {
        if (doorsMoved)
            notifyStateChange();
        return;
    }

    refreshClock(m_clock.monotonicUs(), m_clock.now().toMSecsSinceEpoch());
    fireAlerts(*cue);
    for (const TriggerMoment moment :
         m_triggerWatch.observe(m_remaining, cue->warningThreshold, cue->dangerThreshold))
        emit cueMoment(moment, *cue, *m_activeCueIndex, m_remaining);

    const bool followOn = m_remaining <= 0 && cue->autoFollow
                          && *m_activeCueIndex + 1 < m_session.cues.size();
    if (followOn) {
        // Not from inside the tick: the next cue starts on the next turn of the event loop,
        // unless this run of the cue has ended by then.
        const quint64 run = m_clockRun;
        postJob([this, run] {
            if (run == m_clockRun && m_isRunning)
                next();
        });
        if (doorsMoved)
            notifyStateChange();
        return;
    }
    notifyStateChange();
}
