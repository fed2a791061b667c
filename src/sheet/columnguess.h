#pragma once

#include "sheettable.h"

#include <QList>
#include <QString>

// What a sheet's column holds for the import.
enum class ImportField {
    Ignore,
    Name,
    Speaker,
    Duration,
    EndTime,
    StartTime,
    Colour,
    Notes,
    AutoFollow,
    Warning,
    Danger,
};

// One column of the sheet's header: its place (0 is column A), its header text as written
// (trimmed) and what it is read as.
struct ImportColumn {
    int column = 0;
    QString header;
    ImportField field = ImportField::Ignore;

    bool operator==(const ImportColumn &) const = default;
};

// Where a sheet's header is and what its columns are taken to be.
struct SheetHeader {
    int lastRow = -1; // 0-based index of the header's last row; -1 when there is none
    QList<ImportColumn> columns; // those with a header text, left to right
};

namespace ColumnGuess {

// The header: the first row whose cells name at least two known columns, so that title
// rows and blank rows above it are passed over; it is looked for in the first 200 rows. A
// header cell merged over several columns whose next row names known columns under it makes
// a two-line header: the names of that second row head those columns, and the header ends
// on it.
SheetHeader findHeader(const SheetTable &table);

} // namespace ColumnGuess
