#pragma once

#include "commandline.h"

#include <QDateTime>
#include <QTextStream>
#include <QTimeZone>

// `kairon --import SHEET [--sheet NAME] --output PROJECT`: the running order of a spreadsheet
// made into a new project file, named after the spreadsheet, without a window. Any problem
// (an unreadable file, a row that cannot become a cue, a value not taken) is printed on its own
// line and nothing is written: a batch never leaves a project that silently lacks a cue.
namespace BatchImport {

// Exit status 0 when the project is written, 1 otherwise.
int run(const CommandLine &commandLine);

// The same at `now` in `zone` (where end times of day are placed), printing to `out` and `err`.
int run(const CommandLine &commandLine, const QDateTime &now, const QTimeZone &zone,
        QTextStream &out, QTextStream &err);

} // namespace BatchImport
