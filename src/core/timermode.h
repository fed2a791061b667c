#pragma once

#include <QString>

#include <array>
#include <optional>

// How a cue's length is decided.
enum class TimerMode {
    Duration, // lasts `duration` seconds from the moment it starts
    HardOut,  // ends at a fixed time of day taken from `hardOutTime`
};

namespace TimerModes {

// Every mode, in the order the cue editor offers them.
inline constexpr std::array<TimerMode, 2> all{TimerMode::Duration, TimerMode::HardOut};

// The raw value written in project files: "duration" or "hardOut".
QString rawValue(TimerMode mode);
std::optional<TimerMode> fromRawValue(const QString &raw);

} // namespace TimerModes
