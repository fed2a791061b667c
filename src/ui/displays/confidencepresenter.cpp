#include "confidencepresenter.h"

#include "enginetypes.h"
#include "theme.h"

ConfidencePresenter::ConfidencePresenter(QObject *parent) : QObject(parent)
{
    m_frame = compute();
}

void ConfidencePresenter::setEngine(TimerEngine *engine)
{
    if (m_engine == engine)
        return;
    followEngine(m_engine, engine, this,
                 {&TimerEngine::activeCueChanged, &TimerEngine::clockChanged,
                  &TimerEngine::messageChanged, &TimerEngine::sessionChanged},
                 &ConfidencePresenter::refresh);
    refresh();
    emit engineChanged();
}

void ConfidencePresenter::setClock(DisplayClock *clock)
{
    if (m_clock == clock)
        return;
    follow(m_clock, clock, this, {&DisplayClock::secondChanged}, &ConfidencePresenter::refresh);
    refresh();
    emit clockChanged();
}

void ConfidencePresenter::refresh()
{
    const Frame frame = compute();
    if (frame == m_frame)
        return;
    m_frame = frame;
    emit frameChanged();
}

ConfidencePresenter::Frame ConfidencePresenter::compute() const
{
    Frame f;
    const TimerEngine *e = m_engine;
    const std::optional<Cue> cue = e ? e->activeCue() : std::nullopt;
    const double remaining = e ? e->remaining() : 0.0;
    f.hasCue = cue.has_value();
    f.cueName = cue ? cue->name : QString();
    f.speaker = cue ? cue->speaker : QString();
    f.timeText = TimerEngine::format(remaining, true);
    f.stateColor = toQColor(AppTheme::stateColor(cue, remaining));
    const std::optional<Cue> next = e ? e->nextCue() : std::nullopt;
    f.hasNext = next.has_value();
    f.nextText = next ? QStringLiteral("Suivant : ") + next->name : QString();
    const std::optional<QString> message = e ? e->currentMessage() : std::nullopt;
    f.hasMessage = message.has_value();
    f.message = message.value_or(QString());
    f.messageColor = toQColor(e && e->messageUrgent() ? AppTheme::stateOvertime : AppTheme::accent);
    if (const std::optional<double> offset = e ? e->scheduleOffset() : std::nullopt) {
        f.scheduleText = ShowSchedule::speakerText(*offset);
        f.scheduleColor = toQColor(AppTheme::scheduleColor(*offset));
    }
    return f;
}
