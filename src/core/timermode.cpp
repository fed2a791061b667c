#include "timermode.h"

namespace TimerModes {

QString rawValue(TimerMode mode)
{
    return mode == TimerMode::HardOut ? QStringLiteral("hardOut") : QStringLiteral("duration");
}

std::optional<TimerMode> fromRawValue(const QString &raw)
{
    for (TimerMode mode : all) {
        if (raw == rawValue(mode))
            return mode;
    }
    return std::nullopt;
}

} // namespace TimerModes
