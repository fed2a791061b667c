#include "consolepresenter.h"

#include "apptheme.h"
#include "enginetypes.h"
#include "formatters.h"
#include "theme.h"


ConsolePresenter::ConsolePresenter(QObject *parent) : QObject(parent)
{
    m_frame = compute();
}

void ConsolePresenter::setEngine(TimerEngine *engine)
{
    if (m_engine == engine)
        return;
    followEngine(m_engine, engine, this,
                 {&TimerEngine::activeCueChanged, &TimerEngine::clockChanged,
                  &TimerEngine::sessionChanged, &TimerEngine::runStateChanged,
                  &TimerEngine::doorsChanged, &TimerEngine::showLockedChanged},
                 &ConsolePresenter::refresh);
    if (engine) {
        connect(engine, &TimerEngine::templatesChanged, this, &ConsolePresenter::listsChanged);
        connect(engine, &TimerEngine::presetMessagesChanged, this, &ConsolePresenter::listsChanged);
    }
    refresh();
    emit listsChanged();
    emit engineChanged();
}

void ConsolePresenter::setClock(DisplayClock *clock)
{
    if (m_clock == clock)
        return;
    follow(m_clock, clock, this, {&DisplayClock::secondChanged}, &ConsolePresenter::refresh);
    refresh();
    emit clockChanged();
}

void ConsolePresenter::refresh()
{
    const Frame frame = compute();
    if (frame == m_frame)
        return;
    m_frame = frame;
    emit frameChanged();
}

ConsolePresenter::Frame ConsolePresenter::compute() const
{
    Frame f;
    const TimerEngine *e = m_engine;
    const std::optional<Cue> cue = e ? e->activeCue() : std::nullopt;
    const double remaining = e ? e->remaining() : 0.0;
    const double overtime = e ? e->totalOvertime() : 0.0;
    f.hasCue = cue.has_value();
    f.cueTitle = cue ? cue->name : QStringLiteral("Aucun cue actif");
    f.timeText = TimerEngine::format(remaining, true);
    f.stateColor = toQColor(AppTheme::stateColor(cue, remaining));
    f.elapsedText = QStringLiteral("Écoulé : ") + TimerEngine::format(e ? e->elapsed() : 0.0, false);
    f.dayEndText = e ? QStringLiteral("Fin journée : ") + Fmt::hhmm().string(e->projectedDayEnd())
                     : QString();
    // The overtime counts as such once it shows: a cue handed over a few milliseconds past zero
    // logs those milliseconds, which read "00:00" and must not turn the console red.
    const bool overtimeShows = overtime >= 1.0;
    if (overtimeShows)
        f.driftText = QStringLiteral("(+") + TimerEngine::format(overtime, false)
                      + QStringLiteral(" de drift)");
    if (const std::optional<double> offset = e ? e->scheduleOffset() : std::nullopt) {
        f.scheduleText = ShowSchedule::offsetText(*offset);
        f.scheduleColor = toQColor(AppTheme::scheduleColor(*offset));
    }
    const std::optional<Cue> next = e ? e->nextCue() : std::nullopt;
    if (next)
        f.nextText = QStringLiteral("Suivant : ") + next->name;
    const bool playing = e && e->isRunning() && !e->isPaused();
    f.playSymbol = playing ? QStringLiteral("pause.fill") : QStringLiteral("play.fill");
    f.doorsLabel = e && e->doorsActive()
                       ? QStringLiteral("Doors ") + TimerEngine::format(e->doorsRemaining(), false)
                       : QStringLiteral("Doors");
    f.overtimeText = QStringLiteral("Dépassement total : ") + TimerEngine::format(overtime, false);
    f.overtimeColor = toQColor(overtimeShows ? AppTheme::stateOvertime : AppTheme::textSecondary);
    const bool locked = e && e->showLocked();
    f.lockSymbol = locked ? QStringLiteral("lock.fill") : QStringLiteral("lock.open");
    f.lockColor = toQColor(locked ? AppTheme::stateDanger : AppTheme::textSecondary);
    f.lockHelp = locked ? QStringLiteral("Mode show verrouillé — édition bloquée")
                        : QStringLiteral("Verrouiller l'édition (mode show)");
    f.projectSummary = e ? e->session().metadataSummary() : QString();
    return f;
}

QStringList ConsolePresenter::templateLabels() const
{
    QStringList labels;
    if (m_engine)
        for (const CueTemplate &t : m_engine->templates())
            labels << t.name + QStringLiteral(" · ") + TimerEngine::format(t.duration, false);
    return labels;
}

QVariantList ConsolePresenter::presets() const
{
    QVariantList list;
    if (m_engine)
        for (const PresetMessage &p : m_engine->presetMessages())
            list << QVariantMap{{QStringLiteral("text"), p.text}, {QStringLiteral("urgent"), p.urgent}};
    return list;
}
