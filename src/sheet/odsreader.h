#pragma once

#include "sheettable.h"

#include <QString>

#include <optional>

class QIODevice;

// Reads one sheet of an OpenDocument spreadsheet (.ods) from its zip package on a seekable
// device: the sheet asked for by name, or the first. Every sheet of content.xml is named, only
// the one read is parsed. Repeated rows and columns are expanded only where they hold a value,
// so the million empty rows LibreOffice writes after the last line cost nothing. Dates and
// times (office:date-value, office:time-value) become serial day numbers with
// SheetCell::isTime; a number shown as text keeps its value.
//
// Errors, in French (SheetMessages): not a spreadsheet, encrypted with a password, a part
// inflating past the size limit, no sheet of that name, a limit of SheetLimits passed. The
// table is then empty; the sheet names stay listed when the error is the sheet's own.
namespace OdsReader {
SheetReadResult read(QIODevice &archive, const std::optional<QString> &sheet);
}
