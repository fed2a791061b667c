#include "projectmeta.h"

#include "timerengine.h"

#include <QStringList>

QString ProjectMeta::detailOf(const TimerSession &session)
{
    QStringList pieces;
    const QString summary = session.metadataSummary();
    if (!summary.isEmpty())
        pieces << summary;
    if (session.operatorName && !session.operatorName->isEmpty())
        pieces << QStringLiteral("régie : ") + *session.operatorName;
    const qsizetype count = session.cues.size();
    pieces << QString::number(count) + (count >= 2 ? QStringLiteral(" cues") : QStringLiteral(" cue"));
    double total = 0;
    for (const Cue &cue : session.cues)
        total += cue.duration;
    pieces << TimerEngine::format(total, false);
    return pieces.join(QStringLiteral(" · "));
}
