#pragma once

#include "clock.h"

#include <chrono>
#include <optional>
#include <vector>

// A clock that only moves when told to, for deterministic tests and benchmarks. Its timers
// fire from advance() and jump(), never from the event loop.
class ManualClock final : public Clock
{
public:
    ManualClock(const QDateTime &wallStart, const QTimeZone &zone);
    ~ManualClock() override;

    QDateTime now() const override { return m_wall; }
    qint64 monotonicUs() const override { return m_monotonicUs; }
    QTimeZone timeZone() const override { return m_zone; }
    std::unique_ptr<ClockTimer> createTimer(std::function<void()> onTimeout) override;

    qint64 monotonicMs() const { return m_monotonicUs / 1000; }

    // Moves both clocks forward, stopping at each due timer's deadline to fire it on time.
    void advance(std::chrono::microseconds step);
    // Moves both clocks forward at once, then fires each timer that fell due, late (as after
    // a stalled event loop).
    void jump(std::chrono::microseconds step);
    // Moves both clocks forward and fires nothing, as while the event loop is busy elsewhere:
    // the timers that fell due fire, late, at the next advance() or jump().
    void stall(std::chrono::microseconds step) { move(step.count()); }
    // Steps the wall clock alone, as an NTP correction would; monotonic time does not move.
    void setWallClock(const QDateTime &wall);
    void setTimeZone(const QTimeZone &zone) { m_zone = zone; }

    // Monotonic deadline of the earliest armed timer, in milliseconds like monotonicMs().
    std::optional<qint64> nextDeadline() const;

private:
    class Timer;
    friend class Timer;

    void move(qint64 us);
    Timer *earliestDueBy(qint64 monotonicUs) const;

    QDateTime m_wall;
    qint64 m_wallRemainderUs = 0; // the wall clock has whole milliseconds only
    qint64 m_monotonicUs = 1'000'000'000;
    QTimeZone m_zone;
    std::vector<Timer *> m_timers;
    quint64 m_armCount = 0; // orders timers armed for the same deadline
};
