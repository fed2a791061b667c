#include "manualclock.h"

#include <algorithm>

class ManualClock::Timer final : public ClockTimer
{
public:
    Timer(ManualClock &clock, std::function<void()> onTimeout)
        : m_clock(clock), m_onTimeout(std::move(onTimeout))
    {
        m_clock.m_timers.push_back(this);
    }
    ~Timer() override { std::erase(m_clock.m_timers, this); }

    void start(qint64 delayMs) override
    {
        deadline = m_clock.m_monotonicUs + std::max<qint64>(delayMs, 0) * 1000;
        armOrder = ++m_clock.m_armCount;
        active = true;
    }
    void stop() override { active = false; }
    bool isActive() const override { return active; }

    void fire()
    {
        active = false;
        m_onTimeout();
    }

    bool active = false;
    qint64 deadline = 0; // µs
    quint64 armOrder = 0;

private:
    ManualClock &m_clock;
    std::function<void()> m_onTimeout;
};

ManualClock::ManualClock(const QDateTime &wallStart, const QTimeZone &zone)
    : m_wall(wallStart), m_zone(zone)
{
}

ManualClock::~ManualClock() = default;

std::unique_ptr<ClockTimer> ManualClock::createTimer(std::function<void()> onTimeout)
{
    return std::make_unique<Timer>(*this, std::move(onTimeout));
}

void ManualClock::move(qint64 us)
{
    m_monotonicUs += us;
    m_wallRemainderUs += us;
    m_wall = m_wall.addMSecs(m_wallRemainderUs / 1000);
    m_wallRemainderUs %= 1000;
}

ManualClock::Timer *ManualClock::earliestDueBy(qint64 monotonicUs) const
{
    Timer *earliest = nullptr;
    for (Timer *t : m_timers) {
        if (!t->active || t->deadline > monotonicUs)
            continue;
        if (!earliest || t->deadline < earliest->deadline
            || (t->deadline == earliest->deadline && t->armOrder < earliest->armOrder))
            earliest = t;
    }
    return earliest;
}

void ManualClock::advance(std::chrono::microseconds step)
{
    const qint64 target = m_monotonicUs + step.count();
    while (Timer *t = earliestDueBy(target)) {
        move(std::max<qint64>(t->deadline - m_monotonicUs, 0)); // a stalled timer fires late
        t->fire();
    }
    move(target - m_monotonicUs);
}

void ManualClock::jump(std::chrono::microseconds step)
{
    move(step.count());
    // Each timer due now fires once; one re-armed by its own callback waits for its new deadline.
    std::vector<Timer *> due;
    for (Timer *t : m_timers) {
        if (t->active && t->deadline <= m_monotonicUs)
            due.push_back(t);
    }
    std::sort(due.begin(), due.end(), [](const Timer *a, const Timer *b) {
        return a->deadline != b->deadline ? a->deadline < b->deadline : a->armOrder < b->armOrder;
    });
    for (Timer *t : due) {
        // A callback may have stopped or destroyed a later timer in this list.
        if (std::find(m_timers.begin(), m_timers.end(), t) != m_timers.end() && t->active
            && t->deadline <= m_monotonicUs)
            t->fire();
    }
}

void ManualClock::setWallClock(const QDateTime &wall)
{
    m_wall = wall;
    m_wallRemainderUs = 0;
}

std::optional<qint64> ManualClock::nextDeadline() const
{
    std::optional<qint64> earliest;
    for (const Timer *t : m_timers) {
        if (t->active && (!earliest || t->deadline < *earliest))
            earliest = t->deadline;
    }
    if (earliest)
        *earliest /= 1000;
    return earliest;
}
