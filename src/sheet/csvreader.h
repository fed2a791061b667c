#pragma once

#include "sheettable.h"

#include <QByteArray>
#include <QString>

// Reads a CSV or tab-separated text export of a spreadsheet into one sheet of Text cells (the
// importer gives them a meaning).
//
// The text is UTF-8 (with or without a byte order mark), UTF-16 with a byte order mark (Excel's
// "Unicode text"), or else Windows-1252 as French Excel saves it. The separator is found from
// the first lines: comma, semicolon or tab, whichever splits them most consistently. Fields may
// be quoted, with doubled quotes and line breaks inside; lines end in CRLF, LF or CR. An
// unterminated quote takes the rest of the file into its field, as spreadsheets do.
//
// The same limits as the workbook readers apply (SheetLimits), with the same messages. On
// error the table is empty.
namespace CsvReader {
SheetReadResult read(const QByteArray &bytes, const QString &sheetName);
}
