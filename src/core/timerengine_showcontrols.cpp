// The show controls of TimerEngine: message, freeze, blink and the doors countdown.
#include "timerengine.h"

#include "walltime.h"

#include <algorithm>
#include <cmath>

void TimerEngine::sendMessage(const std::optional<QString> &text, bool urgent)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    m_currentMessage = text;
    m_messageUrgent = urgent;
    notify(&TimerEngine::messageChanged);
    if (m_soundsEnabled && urgent)
        m_sound.play(AlertSound::attention());
    notifyStateChange();
}

void TimerEngine::toggleFreeze()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    m_freeze = !m_freeze;
    if (m_freeze)
        m_frozenRemaining = m_remaining;
    // The clock keeps running underneath, so releasing shows the true time at once.
    notify(&TimerEngine::freezeChanged);
    notifyStateChange();
}

void TimerEngine::triggerBlink(double duration)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    m_blinkTimer->stop();
    if (m_blinkActive) {
        // A second call ends the blink at once, silently.
        m_blinkActive = false;
        notify(&TimerEngine::blinkActiveChanged);
        notifyStateChange();
        return;
    }
    m_blinkActive = true;
    notify(&TimerEngine::blinkActiveChanged);
    if (m_soundsEnabled)
        m_sound.play(AlertSound::attention());
    notifyStateChange();
    const double ms = std::isfinite(duration) ? duration * 1000 : 0;
    const qint64 delayMs = std::llround(std::clamp(ms, 0.0, double(std::numeric_limits<int>::max())));
    m_blinkEndsUs = m_clock.monotonicUs() + delayMs * 1000;
    m_blinkTimer->start(delayMs);
}

double TimerEngine::blinkSecondsLeft() const
{
    return m_blinkActive ? std::max(0.0, double(m_blinkEndsUs - m_clock.monotonicUs()) / 1e6) : 0.0;
}

void TimerEngine::startDoors(const QDateTime &at)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    const QDateTime now = m_clock.now();
    const QDateTime target = WallTime::resolveDoorsTarget(at, now, m_clock.timeZone());
    m_doorsTargetMs = target.toMSecsSinceEpoch();
    m_doorsRemaining = double(now.msecsTo(target)) / 1000.0;
    notify(&TimerEngine::doorsChanged);
    // The countdown runs even when no cue does.
    startTicker();
    notifyStateChange();
}

void TimerEngine::startDoorsAt(QTime timeOfDay)
{
    if (refusesCommands())
        return;
    const QDateTime now = m_clock.now().toTimeZone(m_clock.timeZone());
    startDoors(QDateTime(now.date(), timeOfDay, m_clock.timeZone()));
}

void TimerEngine::cancelDoors()
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (!m_doorsTargetMs)
        return;
    m_doorsTargetMs.reset();
    notify(&TimerEngine::doorsChanged);
    notifyStateChange();
}
