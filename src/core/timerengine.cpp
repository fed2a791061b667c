#include "timerengine.h"

#include "tickphase.h"
#include "uuidtext.h"
#include "walltime.h"

#include <QMetaObject>

#include <algorithm>
#include <cmath>
#include <cstdio>

TimerEngine::TimerEngine(Clock &clock, AlertPlayer &sound, QObject *parent)
    : QObject(parent),
      m_clock(clock),
      m_sound(sound),
      m_session(clock.now()),
      m_presetMessages(PresetMessage::defaults()),
      m_templates(CueTemplate::defaults())
{
    m_session.name = QStringLiteral("Session");
    // The timers belong to the engine: destroyed with it, they can never call into it after.
    m_ticker = m_clock.createTimer([this] { tick(); });
    m_blinkTimer = m_clock.createTimer([this] {
        postJob([this] {
            if (m_blinkActive) {
                m_blinkActive = false;
                emit blinkActiveChanged();
            }
            notifyStateChange();
        });
    });
}

TimerEngine::~TimerEngine() = default;

QString TimerEngine::format(double seconds, bool showSign)
{
    if (!std::isfinite(seconds))
        return QStringLiteral("--:--");
    const double magnitude = std::min(std::floor(std::fabs(seconds)), 9.0e15);
    const auto t = static_cast<long long>(magnitude);
    const long long h = t / 3600, m = (t % 3600) / 60, s = t % 60;
    const char *sign = seconds < 0 && showSign ? "-" : "";
    char text[40];
    const int length = t < 3600 ? std::snprintf(text, sizeof text, "%s%02lld:%02lld", sign, m, s)
                                : std::snprintf(text, sizeof text, "%s%lld:%02lld:%02lld", sign,
                                                h, m, s);
    return QString::fromLatin1(text, length);
}

// ---- Derived values ---------------------------------------------------------------------------

const Cue *TimerEngine::activeCuePtr() const
{
    return m_activeCueIndex ? &m_session.cues[*m_activeCueIndex] : nullptr;
}

std::optional<int> TimerEngine::baseIndex() const
{
    return m_activeCueIndex ? m_activeCueIndex : m_selectedCueIndex;
}

const Cue *TimerEngine::nextCuePtr() const
{
    const std::optional<int> base = baseIndex();
    if (!base || *base + 1 < 0 || *base + 1 >= m_session.cues.size())
        return nullptr;
    return &m_session.cues[*base + 1];
}

std::optional<Cue> TimerEngine::activeCue() const
{
    const Cue *cue = activeCuePtr();
    return cue ? std::optional(*cue) : std::nullopt;
}

std::optional<Cue> TimerEngine::nextCue() const
{
    const Cue *cue = nextCuePtr();
    return cue ? std::optional(*cue) : std::nullopt;
}

double TimerEngine::remainingDayDuration() const
{
    // Hard-out cues count with their duration field here: this is a planning figure, not a
    // calendar computation.
    return (m_isRunning ? std::max(m_remaining, 0.0) : 0.0) + m_durationsAfterBase;
}

QDateTime TimerEngine::projectedDayEnd() const
{
    return m_clock.now().addMSecs(std::llround(remainingDayDuration() * 1000));
}

std::optional<QDateTime> TimerEngine::doorsTarget() const
{
    if (!m_doorsTargetMs)
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(*m_doorsTargetMs, Qt::UTC);
}

void TimerEngine::refreshDerived()
{
    m_activeCueIndex.reset();
    if (m_activeCueID) {
        for (int i = 0; i < m_session.cues.size(); ++i) {
            if (m_session.cues[i].id == *m_activeCueID) {
                m_activeCueIndex = i;
                break;
            }
        }
    }
    const std::optional<int> base = baseIndex();
    double sum = 0;
    for (qsizetype i = base ? std::max(*base + 1, 0) : 0; i < m_session.cues.size(); ++i)
        sum += m_session.cues[i].duration;
    m_durationsAfterBase = sum;
    emit activeCueChanged();
    emit clockChanged();
}

// ---- QML-facing forms ---------------------------------------------------------------------

void TimerEngine::setSelectedCueRow(int row)
{
    setSelectedCueIndex(row < 0 ? std::nullopt : std::optional(row));
}

QString TimerEngine::activeCueIDText() const
{
    return m_activeCueID ? UuidText::canonical(*m_activeCueID) : QString();
}

QVariant TimerEngine::activeCueVariant() const
{
    const Cue *cue = activeCuePtr();
    return cue ? QVariant::fromValue(*cue) : QVariant();
}

QVariant TimerEngine::nextCueVariant() const
{
    const Cue *cue = nextCuePtr();
    return cue ? QVariant::fromValue(*cue) : QVariant();
}

QVariant TimerEngine::currentMessageVariant() const
{
    return m_currentMessage ? QVariant(*m_currentMessage) : QVariant();
}

QVariant TimerEngine::doorsTargetVariant() const
{
    const std::optional<QDateTime> target = doorsTarget();
    return target ? QVariant(*target) : QVariant();
}

// ---- Plain setters --------------------------------------------------------------------------

void TimerEngine::setSelectedCueIndex(std::optional<int> index)
{
    if (m_selectedCueIndex == index)
        return;
    m_selectedCueIndex = index;
    emit selectedCueIndexChanged();
    refreshDerived();
}

void TimerEngine::setActiveCueID(std::optional<QUuid> id)
{
    if (m_activeCueID == id)
        return;
    m_activeCueID = id;
    refreshDerived();
}

void TimerEngine::setFlag(bool &flag, bool on, void (TimerEngine::*changed)())
{
    if (flag != on) {
        flag = on;
        emit(this->*changed)();
    }
}

void TimerEngine::setBlackout(bool on)
{
    setFlag(m_blackout, on, &TimerEngine::blackoutChanged);
}

void TimerEngine::setClockMode(bool on)
{
    setFlag(m_clockMode, on, &TimerEngine::clockModeChanged);
}

void TimerEngine::setShowLocked(bool on)
{
    setFlag(m_showLocked, on, &TimerEngine::showLockedChanged);
}

void TimerEngine::setSoundsEnabled(bool on)
{
    setFlag(m_soundsEnabled, on, &TimerEngine::soundsEnabledChanged);
}

void TimerEngine::setRunState(bool running, bool paused)
{
    if (m_isRunning == running && m_isPaused == paused)
        return;
    m_isRunning = running;
    m_isPaused = paused;
    emit runStateChanged();
    emit clockChanged(); // the day's remaining duration counts the live cue only while running
}

// ---- State hook ---------------------------------------------------------------------------

TimerStateSnapshot TimerEngine::snapshot() const
{
    TimerStateSnapshot s;
    s.running = m_isRunning;
    s.paused = m_isPaused;
    s.remaining = m_freeze ? m_frozenRemaining : m_remaining;
    s.elapsed = m_elapsed;
    s.overtime = m_remaining < 0; // the live clock, even while the display is frozen
    if (const Cue *cue = activeCuePtr()) {
        s.cueName = cue->name;
        s.speaker = cue->speaker;
    } else {
        s.cueName = QStringLiteral("—");
    }
    if (const Cue *next = nextCuePtr())
        s.nextCueName = next->name;
    s.message = m_currentMessage;
    s.messageUrgent = m_messageUrgent;
    s.blackout = m_blackout;
    s.freeze = m_freeze;
    s.clockMode = m_clockMode;
    s.progress = TimerStateSnapshot::progressOf(m_elapsed, m_plannedDuration);
    return s;
}

TimerEngine::ClockReading TimerEngine::readClock() const
{
    ClockReading reading{m_remaining, m_elapsed};
    if (m_isRunning && !m_isPaused && m_cueStartUs && activeCuePtr())
        liveClock(m_clock.monotonicUs(), m_clock.now().toMSecsSinceEpoch(), reading.elapsed,
                  reading.remaining);
    return reading;
}

void TimerEngine::notifyStateChange()
{
    if (m_onStateChange)
        m_onStateChange(snapshot());
}

void TimerEngine::postJob(std::function<void()> job)
{
    // Queued on this object: dropped by the event loop if the engine is destroyed first.
    QMetaObject::invokeMethod(this, std::move(job), Qt::QueuedConnection);
}

// ---- Clock --------------------------------------------------------------------------------

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
    m_totalOvertime = m_loggedOvertime + (m_remaining < 0 ? -m_remaining : 0.0);
    emit clockChanged();
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
    m_pausedAccumUs = 0;
    m_pauseStartedUs.reset();
    m_elapsed = 0;
    // A hard-out cue whose end has passed starts showing its overtime at once, although its
    // planned length is held at the one-second minimum.
    m_remaining = m_hardOutTargetMs ? double(*m_hardOutTargetMs - now.toMSecsSinceEpoch()) / 1000.0
                                    : m_plannedDuration;
    ++m_clockRun;
    clearAlertLatches();
    emit clockChanged();
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
        emit doorsChanged();
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
