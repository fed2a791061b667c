#pragma once

#include "timersession.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTimeZone>

// The running order written back as a spreadsheet the producer opens, one row per cue: "N°",
// "Nom", "Intervenant", "Durée", "Fin", "Alerte", "Danger", "Enchaînement", "Couleur", "Notes".
// A show with a planned start also gets "Début prévu" right after "N°", each cue's start in the
// show's timetable (ShowSchedule::plan), so that the running order reads time first.
// Durations and thresholds are time values shown [h]:mm:ss, a planned start and an end time
// (hard-out cues only) a time of day in `zone`, hour and minute. What it writes imports back to
// the same cues, field for field; the import leaves the planned start aside.
namespace RundownExport {

// The header row; with `withPlannedStart`, the one of a show that has a planned start.
QStringList headers(bool withPlannedStart);

// The workbook: one sheet "Conducteur", bold header frozen at the top, columns fitted to their
// texts. Written atomically: a refused write leaves the previous file whole. False, with the
// French reason in `error`, when it cannot be written.
bool writeXlsx(const TimerSession &session, const QTimeZone &zone, const QString &path,
               QString *error = nullptr);

// The same as CSV as a French spreadsheet opens it: UTF-8 with its byte order mark, semicolons,
// CRLF line ends, times written "0:10:00" and "14:30".
QByteArray csvBytes(const TimerSession &session, const QTimeZone &zone);
bool writeCsv(const TimerSession &session, const QTimeZone &zone, const QString &path,
              QString *error = nullptr);

} // namespace RundownExport
