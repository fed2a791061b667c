#pragma once

#include <QDateTime>
#include <QTimeZone>

#include <functional>
#include <memory>

// A one-shot timer measured on the monotonic clock.
class ClockTimer
{
public:
    virtual ~ClockTimer() = default;
    virtual void start(qint64 delayMs) = 0; // (re)arms the timer; it fires once
    virtual void stop() = 0;
    virtual bool isActive() const = 0;
};

// The only source of time for the engine and the views' logic, injected so that every clock
// rule can be tested with a clock the test moves by hand.
class Clock
{
public:
    virtual ~Clock() = default;

    // Wall-clock time, for time-of-day targets. It can step (NTP, the operator setting the time).
    virtual QDateTime now() const = 0;
    // Microseconds from an arbitrary origin; never jumps, so durations are measured on it.
    virtual qint64 monotonicUs() const = 0;
    // The user's calendar, in which times of day are read.
    virtual QTimeZone timeZone() const = 0;

    // A timer that calls `onTimeout` on the current thread. Destroying it cancels it, so an
    // owner that holds its timers never gets called after it is gone.
    virtual std::unique_ptr<ClockTimer> createTimer(std::function<void()> onTimeout) = 0;
};
