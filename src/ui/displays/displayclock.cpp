#include "displayclock.h"

#include "formatters.h"

namespace {

qint64 wholeSecond(const QDateTime &t)
{
    const qint64 ms = t.toMSecsSinceEpoch();
    return ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
}

} // namespace

DisplayClock::DisplayClock(Clock &clock, QObject *parent)
    : QObject(parent), m_clock(clock), m_now(clock.now())
{
    m_timer = m_clock.createTimer([this] { onTimer(); });
    arm();
}

DisplayClock::~DisplayClock() = default;

QString DisplayClock::timeText() const
{
    return Fmt::hhmmss().string(m_now);
}

QString DisplayClock::dateText() const
{
    return Fmt::fullDate(m_now, Fmt::locale(), Fmt::timeZone());
}

std::unique_ptr<ClockTimer> DisplayClock::createTimer(std::function<void()> onTimeout)
{
    return m_clock.createTimer(std::move(onTimeout));
}

void DisplayClock::onTimer()
{
    const QDateTime now = m_clock.now();
    // A timer that fired a little early sees the old second: it waits for the rest of it.
    if (wholeSecond(now) != wholeSecond(m_now)) {
        m_now = now;
        emit secondChanged();
    }
    arm();
}

void DisplayClock::arm()
{
    const qint64 ms = m_clock.now().toMSecsSinceEpoch();
    const qint64 intoSecond = ((ms % 1000) + 1000) % 1000;
    m_timer->start(1000 - intoSecond);
}
