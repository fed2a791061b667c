#include "showcommands.h"

#include "enginetypes.h"

void ShowCommands::setEngine(TimerEngine *engine)
{
    if (m_engine == engine)
        return;
    followEngine(m_engine, engine, this,
                 {&TimerEngine::runStateChanged, &TimerEngine::blackoutChanged,
                  &TimerEngine::freezeChanged, &TimerEngine::clockModeChanged},
                 &ShowCommands::titlesChanged);
    emit engineChanged();
    emit titlesChanged();
}

QString ShowCommands::playPauseTitle() const
{
    const bool playing = m_engine && m_engine->isRunning() && !m_engine->isPaused();
    return playing ? QStringLiteral("Pause") : QStringLiteral("Play");
}

QString ShowCommands::blackoutTitle() const
{
    return m_engine && m_engine->blackout() ? QStringLiteral("Désactiver le blackout")
                                            : QStringLiteral("Blackout");
}

QString ShowCommands::freezeTitle() const
{
    return m_engine && m_engine->freeze() ? QStringLiteral("Désactiver le freeze")
                                          : QStringLiteral("Freeze");
}

QString ShowCommands::clockModeTitle() const
{
    return m_engine && m_engine->clockMode() ? QStringLiteral("Quitter le mode horloge")
                                             : QStringLiteral("Mode horloge");
}

void ShowCommands::undo() { run([](TimerEngine &e) { e.undo(); }); }
void ShowCommands::redo() { run([](TimerEngine &e) { e.redo(); }); }
void ShowCommands::stop() { run([](TimerEngine &e) { e.stop(); }); }
void ShowCommands::reset() { run([](TimerEngine &e) { e.reset(); }); }
void ShowCommands::nextCue() { run([](TimerEngine &e) { e.next(); }); }
void ShowCommands::previousCue() { run([](TimerEngine &e) { e.previous(); }); }
void ShowCommands::addThirtySeconds() { run([](TimerEngine &e) { e.adjust(adjustStepSeconds); }); }
void ShowCommands::removeThirtySeconds() { run([](TimerEngine &e) { e.adjust(-adjustStepSeconds); }); }
void ShowCommands::blink() { run([](TimerEngine &e) { e.triggerBlink(blinkSeconds); }); }
void ShowCommands::toggleBlackout() { run([](TimerEngine &e) { e.setBlackout(!e.blackout()); }); }
void ShowCommands::toggleFreeze() { run([](TimerEngine &e) { e.toggleFreeze(); }); }
void ShowCommands::toggleClockMode() { run([](TimerEngine &e) { e.setClockMode(!e.clockMode()); }); }

void ShowCommands::playPause()
{
    run([](TimerEngine &e) {
        if (e.isRunning())
            e.pause();
        else
            e.start();
    });
}
