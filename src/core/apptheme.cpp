#include "apptheme.h"

#include "colorhex.h"
#include "showschedule.h"

#include <cmath>

namespace AppTheme {

ThemeColor stateColor(const std::optional<Cue> &activeCue, double shown)
{
    if (!activeCue)
        return textMuted;
    if (shown < 0)
        return stateOvertime;
    if (shown <= activeCue->dangerThreshold)
        return stateDanger;
    if (shown <= activeCue->warningThreshold)
        return stateWarning;
    return cueColor(*activeCue).value_or(stateNormal);
}

ThemeColor scheduleColor(double offsetSeconds)
{
    const double offset = std::round(offsetSeconds);
    return offset >= ShowSchedule::lateDangerSeconds    ? stateDanger
           : offset >= ShowSchedule::lateWarningSeconds ? stateWarning
           : offset <= -ShowSchedule::onTimeSeconds     ? success
                                                        : textSecondary;
}

std::optional<ThemeColor> cueColor(const Cue &cue)
{
    if (!cue.colorHex)
        return std::nullopt;
    const std::optional<SrgbColor> own = colorFromHex(*cue.colorHex);
    if (!own)
        return std::nullopt;
    const auto channel = [](double c) { return int(std::lround(c * 255)); };
    return ThemeColor{channel(own->red), channel(own->green), channel(own->blue)};
}

} // namespace AppTheme
