#include "stagepresenter.h"

#include "enginetypes.h"
#include "theme.h"

#include <algorithm>

StagePresenter::StagePresenter(QObject *parent) : QObject(parent)
{
    m_frame = compute();
}

StagePresenter::~StagePresenter() = default;

void StagePresenter::setEngine(TimerEngine *engine)
{
    if (m_engine == engine)
        return;
    // Every published value the stage reads; each one recomputes the frame.
    followEngine(m_engine, engine, this,
                 {&TimerEngine::activeCueChanged, &TimerEngine::runStateChanged,
                  &TimerEngine::clockChanged, &TimerEngine::messageChanged,
                  &TimerEngine::blackoutChanged, &TimerEngine::freezeChanged,
                  &TimerEngine::clockModeChanged, &TimerEngine::blinkActiveChanged,
                  &TimerEngine::doorsChanged},
                 &StagePresenter::refresh);
    refresh();
    emit inputsChanged();
}

void StagePresenter::setClock(DisplayClock *clock)
{
    if (m_clock == clock)
        return;
    m_clock = clock;
    m_flashTimer.reset();
    m_blinkTimer.reset();
    if (m_clock) {
        // The phase timers run for the whole life of the view, as on any stage screen.
        m_flashTimer = m_clock->createTimer([this] { onFlashTimer(); });
        m_blinkTimer = m_clock->createTimer([this] { onBlinkTimer(); });
        m_flashTimer->start(flashPeriodMs);
        m_blinkTimer->start(blinkPeriodMs);
    }
    refresh();
    emit inputsChanged();
}

void StagePresenter::onFlashTimer()
{
    m_flashTimer->start(flashPeriodMs);
    // Deliberately not reset when the condition ends: the next one starts from this phase.
    if (m_engine && (m_engine->messageUrgent() || m_engine->remaining() < 0)) {
        m_flash = !m_flash;
        refresh();
    }
}

void StagePresenter::onBlinkTimer()
{
    m_blinkTimer->start(blinkPeriodMs);
    if (m_engine && m_engine->blinkActive()) {
        m_blinkPhase = !m_blinkPhase;
        refresh();
    }
}

void StagePresenter::refresh()
{
    const Frame frame = compute();
    if (frame == m_frame)
        return;
    m_frame = frame;
    emit frameChanged();
}

StagePresenter::Frame StagePresenter::compute() const
{
    Frame f;
    f.flash = m_flash;
    f.blinkPhase = m_blinkPhase;
    const TimerEngine *e = m_engine;
    if (!e) {
        f.stateColor = toQColor(AppTheme::textMuted);
        f.timeText = TimerEngine::format(0, true);
        return f;
    }
    if (e->blackout())
        f.mode = Blackout;
    else if (e->doorsActive() && !e->isRunning())
        f.mode = Doors;
    else if (e->clockMode())
        f.mode = Clock;
    else
        f.mode = Timer;

    const std::optional<Cue> cue = e->activeCue();
    const double shown = e->freeze() ? e->frozenRemaining() : e->remaining();
    f.hasCue = cue.has_value();
    f.cueName = cue ? cue->name : QString();
    f.timeText = TimerEngine::format(shown, true);
    f.stateColor = toQColor(AppTheme::stateColor(cue, shown));
    f.timeOpacity = shown < 0 && !m_flash ? 0.35 : 1.0;
    const double planned = e->plannedDuration();
    f.progress = planned > 0 ? std::clamp(e->elapsed() / planned, 0.0, 1.0) : 0.0;
    f.frozen = e->freeze();
    f.doorsText = TimerEngine::format(std::max(e->doorsRemaining(), 0.0), false);

    f.blinkVisible = e->blinkActive();
    f.blinkColor = m_blinkPhase ? toQColor(AppTheme::accent) : QColor(Qt::white);

    const std::optional<QString> message = e->currentMessage();
    f.bannerVisible = !e->blackout() && message.has_value();
    f.message = message.value_or(QString());
    f.messageUrgent = e->messageUrgent();
    f.bannerOpacity = f.messageUrgent && !m_flash ? 0.5 : 1.0;
    return f;
}
