#include "showcommands.h"

void ShowCommands::setEngine(TimerEngine *engine)
{
    if (m_engine == engine)
        return;
    if (m_engine)
        m_engine->disconnect(this);
    m_engine = engine;
    if (m_engine) {
        for (auto signal : {&TimerEngine::runStateChanged, &TimerEngine::blackoutChanged,
                            &TimerEngine::freezeChanged, &TimerEngine::clockModeChanged})
            connect(m_engine, signal, this, &ShowCommands::titlesChanged);
    }
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

void ShowCommands::undo()
{
    if (m_engine)
        m_engine->undo();
}

void ShowCommands::redo()
{
    if (m_engine)
        m_engine->redo();
}

void ShowCommands::playPause()
{
    if (!m_engine)
        return;
    if (m_engine->isRunning())
        m_engine->pause();
    else
        m_engine->start();
}

void ShowCommands::stop()
{
    if (m_engine)
        m_engine->stop();
}

void ShowCommands::reset()
{
    if (m_engine)
        m_engine->reset();
}

void ShowCommands::nextCue()
{
    if (m_engine)
        m_engine->next();
}

void ShowCommands::previousCue()
{
    if (m_engine)
        m_engine->previous();
}

void ShowCommands::addThirtySeconds()
{
    if (m_engine)
        m_engine->adjust(adjustStepSeconds);
}

void ShowCommands::removeThirtySeconds()
{
    if (m_engine)
        m_engine->adjust(-adjustStepSeconds);
}

void ShowCommands::blink()
{
    if (m_engine)
        m_engine->triggerBlink(blinkSeconds);
}

void ShowCommands::toggleBlackout()
{
    if (m_engine)
        m_engine->setBlackout(!m_engine->blackout());
}

void ShowCommands::toggleFreeze()
{
    if (m_engine)
        m_engine->toggleFreeze();
}

void ShowCommands::toggleClockMode()
{
    if (m_engine)
        m_engine->setClockMode(!m_engine->clockMode());
}
