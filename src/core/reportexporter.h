#pragma once

#include "cuelogentry.h"
#include "reportfiles.h"
#include "timersession.h"

#include <QDateTime>
#include <QList>
#include <QLocale>
#include <QString>
#include <QTimeZone>

#include <optional>

// The after-show report: what was planned for each played cue against what happened, as a
// semicolon-separated UTF-8 file in Documents/Kairon/Reports.
namespace ReportExporter {

// Writes "Rapport_<name>_<yyyy-MM-dd_HH-mm>.csv" atomically (an export within the same minute
// replaces it) and returns its path.
std::optional<QString> exportCSV(const TimerSession &session, const QList<CueLogEntry> &log,
                                 double totalOvertime, ExportError *error = nullptr);

// The parts of it, for the tests: the file name and the text at the instant `now`, dates in
// `locale` and `zone`.
QString fileName(const TimerSession &session, const QDateTime &now, const QTimeZone &zone);
QString reportText(const TimerSession &session, const QList<CueLogEntry> &log,
                   double totalOvertime, const QDateTime &now, const QLocale &locale,
                   const QTimeZone &zone);

// A text field: quoted, with its quotes doubled, when it holds ";", a quote or a line break.
QString escape(const QString &text);
// Seconds as a clock "HH:MM:SS", rounded to the nearest second (hours not wrapped at 24).
QString fmt(double seconds);
// Seconds as a whole number, truncated toward zero. Both forms may differ by one on purpose:
// 59.6 is 59 and 00:01:00.
QString wholeSeconds(double seconds);

} // namespace ReportExporter
