#pragma once

#include "sheettable.h"

#include <QString>

#include <optional>

class QIODevice;

// Reads one sheet of an Excel workbook (.xlsx, Office Open XML) from its zip package on a
// seekable device: the sheet asked for by name, or the first. The workbook lists every sheet's
// name; only the one read is parsed, with the shared strings it shows and the cell styles that
// make a number a date, a time of day or a duration (SheetCell::isTime). A workbook in the 1904
// date system has its dates moved to the 1900 count; its times and durations keep their value.
//
// Errors, in French (SheetMessages): not a workbook, a part inflating past the size limit, no
// sheet of that name, a limit of SheetLimits passed. The table is then empty; the sheet names
// stay listed when the error is the sheet's own (no such sheet, a limit), so that another
// sheet can be chosen.
namespace XlsxReader {
SheetReadResult read(QIODevice &archive, const std::optional<QString> &sheet);
}
