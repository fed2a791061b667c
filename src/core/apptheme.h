#pragma once

#include "cue.h"

#include <optional>

// A colour of the palette: sRGB channels from 0 to 255 and an opacity from 0 to 1.
struct ThemeColor {
    int red = 0;
    int green = 0;
    int blue = 0;
    double alpha = 1.0;

    bool operator==(const ThemeColor &) const = default;
};

// The one colour palette of the application, for the C++ code and, through the UI module's
// AppTheme singleton, for every view.
namespace AppTheme {

inline constexpr ThemeColor accent{255, 107, 0};
inline constexpr ThemeColor accentLogo{255, 78, 0};
inline constexpr ThemeColor accentHover{255, 140, 0};
inline constexpr ThemeColor accentBorder{255, 107, 0, 0.2};
inline constexpr ThemeColor bgDeep{10, 10, 12};
inline constexpr ThemeColor bgMain{18, 18, 20};
inline constexpr ThemeColor bgPanel{26, 26, 30};
inline constexpr ThemeColor bgElevated{35, 35, 40};
inline constexpr ThemeColor bgInput{42, 42, 48};
inline constexpr ThemeColor textPrimary{255, 255, 255};
inline constexpr ThemeColor textSecondary{184, 184, 192};
inline constexpr ThemeColor textMuted{112, 112, 120};
inline constexpr ThemeColor stateNormal{46, 204, 113};
inline constexpr ThemeColor stateWarning{241, 196, 15};
inline constexpr ThemeColor stateDanger{231, 76, 60};
inline constexpr ThemeColor stateOvertime{255, 59, 48};
inline constexpr ThemeColor separator{255, 255, 255, 0.08};
inline constexpr ThemeColor success{46, 204, 113};

// The colour of a countdown showing `shown` seconds of `activeCue`, first match wins: no
// active cue → textMuted; below zero → stateOvertime; at or below the danger threshold →
// stateDanger; at or below the warning threshold → stateWarning; the cue's own colour when its
// text parses → that colour; else stateNormal. A cue's colour thus replaces only the calm green.
ThemeColor stateColor(const std::optional<Cue> &activeCue, double shown);

// The colour of the show's offset against its timetable, rounded to the second as it is shown:
// stateDanger from 5 min late, stateWarning from 2 min, success from 30 s early, else
// textSecondary.
ThemeColor scheduleColor(double offsetSeconds);

// The cue's own colour, when it has one whose text parses.
std::optional<ThemeColor> cueColor(const Cue &cue);

} // namespace AppTheme
