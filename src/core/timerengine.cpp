// TimerEngine's state and what observers read of it: the derived values (the active and next
// cue, the day's remaining duration), the forms QML reads, the plain setters and the state hook.
// The transport, the show controls, the editing and the clock are each in a file of their own.
#include "timerengine.h"

#include "uuidtext.h"

#include <QMetaObject>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <utility>

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
            const Batch batch(*this);
            if (m_blinkActive) {
                m_blinkActive = false;
                notify(&TimerEngine::blinkActiveChanged);
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

ShowPosition TimerEngine::showPosition() const
{
    ShowPosition position;
    if (m_isRunning && m_activeCueIndex) {
        position.activeIndex = m_activeCueIndex;
        position.activeStartedAt = m_cueStartedAt;
        position.activeRemaining = readClock().remaining;
        return position;
    }
    if (m_lastLeftCueID) {
        const auto it = std::find_if(m_session.cues.cbegin(), m_session.cues.cend(),
                                     [this](const Cue &c) { return c.id == *m_lastLeftCueID; });
        if (it != m_session.cues.cend()) {
            position.lastEndedIndex = int(it - m_session.cues.cbegin());
            position.lastEndedAt = m_lastLeftAt;
        }
    }
    return position;
}

const std::optional<ShowPlan> &TimerEngine::schedulePlan() const
{
    const QTimeZone zone = m_clock.timeZone();
    if (m_planStale || m_planZone != zone.id()) {
        m_plan = ShowSchedule::plan(m_session, zone);
        m_planZone = zone.id();
        m_planStale = false;
    }
    return m_plan;
}

std::optional<ScheduleStatus> TimerEngine::scheduleStatus() const
{
    const std::optional<ShowPlan> &plan = schedulePlan();
    if (!plan)
        return std::nullopt;
    return ShowSchedule::status(*plan, m_session.cues, showPosition(), m_clock.now(), m_clock.timeZone());
}

std::optional<double> TimerEngine::scheduleOffset() const
{
    const std::optional<ShowPlan> &plan = schedulePlan();
    if (!plan)
        return std::nullopt;
    return ShowSchedule::offset(*plan, m_session.cues, showPosition(), m_clock.now());
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

bool TimerEngine::recomputeDerived()
{
    // Read through a const reference: a save may share the list on another thread, and a
    // non-const read would copy all of it here on the main thread.
    const QList<Cue> &cues = m_session.cues;
    std::optional<int> index;
    if (m_activeCueID) {
        for (int i = 0; i < cues.size(); ++i) {
            if (cues[i].id == *m_activeCueID) {
                index = i;
                break;
            }
        }
    }
    const std::optional<int> base = index ? index : m_selectedCueIndex;
    double sum = 0;
    for (qsizetype i = base ? std::max(*base + 1, 0) : 0; i < cues.size(); ++i)
        sum += cues[i].duration;
    const bool moved = index != m_activeCueIndex || sum != m_durationsAfterBase;
    m_activeCueIndex = index;
    m_durationsAfterBase = sum;
    return moved;
}

void TimerEngine::refreshDerived()
{
    recomputeDerived();
    notify(&TimerEngine::activeCueChanged);
    notify(&TimerEngine::clockChanged);
}

// ---- Notifications ----------------------------------------------------------------------------

namespace {
// The order in which an operation's signals reach observers: the show first, then what is
// derived from it.
constexpr void (TimerEngine::*signalOrder[])() = {
    &TimerEngine::sessionChanged,      &TimerEngine::selectedCueIndexChanged,
    &TimerEngine::activeCueChanged,    &TimerEngine::runStateChanged,
    &TimerEngine::clockChanged,        &TimerEngine::completedCueLogChanged,
    &TimerEngine::undoStateChanged,    &TimerEngine::messageChanged,
    &TimerEngine::presetMessagesChanged, &TimerEngine::blackoutChanged,
    &TimerEngine::freezeChanged,       &TimerEngine::clockModeChanged,
    &TimerEngine::blinkActiveChanged,  &TimerEngine::doorsChanged,
    &TimerEngine::showLockedChanged,   &TimerEngine::soundsEnabledChanged,
    &TimerEngine::templatesChanged,
};
constexpr int signalCount = int(std::size(signalOrder));
static_assert(signalCount <= 32);
} // namespace

void TimerEngine::notify(Signal signal)
{
    if (signal == &TimerEngine::sessionChanged)
        m_planStale = true;
    for (int i = 0; i < signalCount; ++i) {
        if (signalOrder[i] == signal) {
            m_pendingSignals |= 1u << i;
            return;
        }
    }
}

void TimerEngine::flushChanges()
{
    // An operation that moved the list or the active id without refreshing still publishes
    // a consistent state.
    if (recomputeDerived()) {
        notify(&TimerEngine::activeCueChanged);
        notify(&TimerEngine::clockChanged);
    }
    // A handler may run another operation, which notifies on its own before this loop goes on.
    while (m_pendingSignals || m_pendingHook) {
        const quint32 signalsToEmit = std::exchange(m_pendingSignals, 0);
        const bool callHook = std::exchange(m_pendingHook, false);
        static_assert(signalOrder[0] == &TimerEngine::sessionChanged);
        emit aboutToNotify(signalsToEmit & 1u);
        int bit = 0;
        for (const Signal signal : signalOrder) {
            if (signalsToEmit & (1u << bit++))
                emit(this->*signal)();
        }
        if (callHook && m_onStateChange)
            m_onStateChange(snapshot());
    }
    // Time the observers spent may have changed the shown second: a tick comes at once then.
    armTicker();
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
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (m_selectedCueIndex == index)
        return;
    m_selectedCueIndex = index;
    notify(&TimerEngine::selectedCueIndexChanged);
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
    const Batch batch(*this);
    if (flag != on) {
        flag = on;
        notify(changed);
    }
}

void TimerEngine::setBlackout(bool on)
{
    if (refusesCommands())
        return;
    setFlag(m_blackout, on, &TimerEngine::blackoutChanged);
}

void TimerEngine::setClockMode(bool on)
{
    if (refusesCommands())
        return;
    setFlag(m_clockMode, on, &TimerEngine::clockModeChanged);
}

void TimerEngine::setShowLocked(bool on)
{
    if (refusesCommands())
        return;
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
    notify(&TimerEngine::runStateChanged);
    notify(&TimerEngine::clockChanged); // the day's remaining duration counts the live cue only while running
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

void TimerEngine::notifyStateChange()
{
    const Batch batch(*this);
    m_pendingHook = true;
}

void TimerEngine::postJob(std::function<void()> job)
{
    // Queued on this object: dropped by the event loop if the engine is destroyed first.
    QMetaObject::invokeMethod(
        this,
        [this, job = std::move(job)] {
            ++m_ownJobs;
            job();
            --m_ownJobs;
        },
        Qt::QueuedConnection);
}
