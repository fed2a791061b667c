#pragma once

#include "clock.h"

#include <QDateTime>
#include <QObject>
#include <QQmlEngine>

#include <memory>

// The wall clock the displays show, from the injected clock. It moves on the true second: a
// timer aimed at the next change of the second, not a free-running one-second timer that could
// show a second up to a second late. It also makes the views' phase timers on the same clock.
//
// It lives with the displays, whose wall clock and flash and blink timers it drives; the project
// sheet (today's date) and the splash (its timers) use it too, so every window follows one time.
class DisplayClock : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application with its clock")

    Q_PROPERTY(QDateTime now READ now NOTIFY secondChanged FINAL)
    Q_PROPERTY(QString timeText READ timeText NOTIFY secondChanged FINAL) // "HH:mm:ss"
    Q_PROPERTY(QString dateText READ dateText NOTIFY secondChanged FINAL) // the full date

public:
    explicit DisplayClock(Clock &clock, QObject *parent = nullptr);
    ~DisplayClock() override;

    QDateTime now() const { return m_now; }
    QString timeText() const;
    QString dateText() const;

    // The injected clock itself, for what reads its time zone.
    const Clock &clock() const { return m_clock; }
    // A one-shot timer on the injected clock; destroying it cancels it.
    std::unique_ptr<ClockTimer> createTimer(std::function<void()> onTimeout);

signals:
    void secondChanged();

private:
    void onTimer();
    void arm();

    Clock &m_clock;
    std::unique_ptr<ClockTimer> m_timer;
    QDateTime m_now;
};
