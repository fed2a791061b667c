#include "systemclock.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

class PreciseTimer final : public ClockTimer
{
public:
    explicit PreciseTimer(std::function<void()> onTimeout)
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, std::move(onTimeout));
    }

    void start(qint64 delayMs) override
    {
        m_timer.start(std::chrono::milliseconds(
            std::clamp<qint64>(delayMs, 0, std::numeric_limits<int>::max())));
    }
    void stop() override { m_timer.stop(); }
    bool isActive() const override { return m_timer.isActive(); }

private:
    QTimer m_timer;
};

} // namespace

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTimeUtc();
}

qint64 SystemClock::monotonicUs() const
{
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

QTimeZone SystemClock::timeZone() const
{
    return QTimeZone::systemTimeZone();
}

std::unique_ptr<ClockTimer> SystemClock::createTimer(std::function<void()> onTimeout)
{
    return std::make_unique<PreciseTimer>(std::move(onTimeout));
}
