#include "cueschedulemarks.h"

#include "formatters.h"
#include "timerengine.h"

#include <cmath>

QList<CueScheduleMarks> cueScheduleMarks(const TimerEngine &engine)
{
    const qsizetype count = engine.session().cues.size();
    QList<CueScheduleMarks> marks(count);
    const std::optional<ShowPlan> &plan = engine.schedulePlan();
    if (!plan)
        return marks;
    const ScheduleStatus status = *engine.scheduleStatus();
    const DateFormatter &hhmm = Fmt::hhmm();
    for (qsizetype i = 0; i < count && i < plan->cues.size(); ++i) {
        const PlannedCue &planned = plan->cues.at(i);
        CueScheduleMarks &m = marks[i];
        m.plannedStart = hhmm.string(planned.start);
        const QDateTime &expected = status.expectedStarts.value(i);
        if (expected.isValid() && std::llabs(planned.start.msecsTo(expected)) >= 60'000) {
            m.expectedStart = QStringLiteral("→ ") + hhmm.string(expected);
            m.expectedLate = expected > planned.start;
        }
        if (planned.marginBefore) {
            const double margin = *planned.marginBefore;
            m.shortfall = margin < 0;
            m.margin = (m.shortfall ? QStringLiteral("Dépassement ") : QStringLiteral("Marge "))
                       + TimerEngine::format(std::fabs(margin), false);
        }
        m.endsBeforeStart = planned.endsBeforeStart;
    }
    return marks;
}
