#pragma once

#include "display.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QScreen>
#include <QString>
#include <QtQml/qqml.h>

#include <chrono>
#include <memory>
#include <vector>

class Clock;
class ClockTimer;
class QWindow;

// Lists the connected displays for the operator and puts an open output window (stage,
// confidence) full screen on the display the operator picks.
//
// It never activates or focuses a window it moves: the operator keeps typing in their own
// window while the output windows change place.
//
// It lives with the displays, whose windows it places; the console only offers its list of
// displays in the stage output button and asks it to move a window.
class ScreenManager : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application creates the screen manager.")
    Q_PROPERTY(QList<Kairon::Display> displays READ displays NOTIFY displaysChanged FINAL)

public:
    // How long a window that was full screen is left in a normal state before it goes full
    // screen on its new display: window systems that animate the change (or ignore a move
    // of a full-screen window) need the first transition finished before the second.
    static constexpr std::chrono::milliseconds FullScreenHandOffDelay{800};

    explicit ScreenManager(Clock &clock, QObject *parent = nullptr);
    ~ScreenManager() override;

    QList<Kairon::Display> displays() const;

    // Puts the first visible top-level window whose title contains `titleFragment` (case
    // insensitive) full screen on the screen at `screenIndex` of displays(), and raises it.
    // A window already full screen leaves full screen now and goes full screen on the new
    // screen FullScreenHandOffDelay later. False when the index names no screen or no visible
    // window matches.
    Q_INVOKABLE bool sendWindow(const QString &titleFragment, int screenIndex);
    // The same for a window already found; a hidden one is shown there.
    void sendWindowTo(QWindow *window, QScreen *screen);
    // The screen a window that left full screen is about to go full screen on, if any.
    QScreen *pendingScreenOf(const QWindow *window) const;
    // Forgets the move a window waits for, if any.
    void cancelPendingMove(const QWindow *window);

signals:
    void displaysChanged();
    // A screen goes away; its windows are still on it. Once the receivers have returned, the
    // windows left on it are brought onto a remaining screen.
    void screenLeaving(QScreen *screen);

private:
    // A window that left full screen and goes full screen on `screen` at `deadlineUs`.
    struct PendingMove
    {
        QPointer<QWindow> window;
        QPointer<QScreen> screen; // null once that screen is gone: the fallback screen then
        qint64 deadlineUs = 0;    // on the clock's monotonic time
    };

    void handOff(QWindow *window, QScreen *screen);
    void finishDueHandOffs();
    void armForNextHandOff();

    void rescueWindowsFrom(QScreen *leaving);
    void refreshDisplays();

    Clock &m_clock;
    // One timer for every pending move, armed for the earliest; it is never destroyed while
    // it may be firing, so a move started from inside another move's completion is safe.
    std::unique_ptr<ClockTimer> m_handOffTimer;
    std::vector<PendingMove> m_pendingMoves;
    QList<Kairon::Display> m_announced; // the list as displaysChanged last announced it
};
