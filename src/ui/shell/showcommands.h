#pragma once

#include "timerengine.h"

#include <QObject>
#include <QPointer>
#include <QQmlEngine>

// The commands of the menus and their shortcuts, on the application's engine, with the titles
// that follow its state ("Pause" while a cue runs, "Play" otherwise…).
//
// It lives with the shell, whose menu bar and shortcuts are its main users; the console's
// transport bar calls the same commands so that a button and its menu item never differ.
class ShowCommands : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine NOTIFY engineChanged FINAL)
    Q_PROPERTY(QString playPauseTitle READ playPauseTitle NOTIFY titlesChanged FINAL)
    Q_PROPERTY(QString blackoutTitle READ blackoutTitle NOTIFY titlesChanged FINAL)
    Q_PROPERTY(QString freezeTitle READ freezeTitle NOTIFY titlesChanged FINAL)
    Q_PROPERTY(QString clockModeTitle READ clockModeTitle NOTIFY titlesChanged FINAL)

public:
    static constexpr double adjustStepSeconds = 30.0;
    static constexpr double blinkSeconds = TimerEngine::blinkSeconds;

    using QObject::QObject;

    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine);

    QString playPauseTitle() const;
    QString blackoutTitle() const;
    QString freezeTitle() const;
    QString clockModeTitle() const;

    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    // Starts the selected cue when nothing runs, else pauses or resumes.
    Q_INVOKABLE void playPause();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void reset();
    Q_INVOKABLE void nextCue();
    Q_INVOKABLE void previousCue();
    Q_INVOKABLE void addThirtySeconds();
    Q_INVOKABLE void removeThirtySeconds();
    Q_INVOKABLE void blink();
    Q_INVOKABLE void toggleBlackout();
    Q_INVOKABLE void toggleFreeze();
    Q_INVOKABLE void toggleClockMode();

signals:
    void engineChanged();
    void titlesChanged();

private:
    // Runs an operation on the engine, when there is one.
    template <typename Operation>
    void run(Operation operation)
    {
        if (m_engine)
            operation(*m_engine);
    }

    QPointer<TimerEngine> m_engine;
};
