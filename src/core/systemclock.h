#pragma once

#include "clock.h"

// The real clocks of the machine; timers are precise QTimers on the calling thread.
class SystemClock final : public Clock
{
public:
    QDateTime now() const override;
    qint64 monotonicUs() const override;
    QTimeZone timeZone() const override;
    std::unique_ptr<ClockTimer> createTimer(std::function<void()> onTimeout) override;
};
