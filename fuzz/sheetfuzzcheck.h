#pragma once

// What every workbook reader promises, checked on whatever it read, and the zip packages the
// workbook fuzzers make of their input.
#include "fuzzcheck.h"
#include "sheettable.h"
#include "ziparchive.h"

#include <QList>

#include <cmath>
#include <utility>

// On success the limits hold, covered cells are empty, and rows and table end on a cell that
// counts; on error nothing of the sheet is returned.
inline void checkSheetRead(const SheetReadResult &read)
{
    if (!read.ok()) {
        FUZZ_CHECK(read.table == SheetTable(), read.error, read.table.sheetName,
                   read.table.rows.size());
        return;
    }
    FUZZ_CHECK(read.sheetNames.contains(read.table.sheetName), read.sheetNames,
               read.table.sheetName);
    const QList<QList<SheetCell>> &rows = read.table.rows;
    FUZZ_CHECK(rows.size() <= SheetLimits::maxRows, rows.size());
    FUZZ_CHECK(rows.isEmpty() || !rows.last().isEmpty(), rows.size());
    qint64 textChars = 0;
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const QList<SheetCell> &cells = rows[row];
        FUZZ_CHECK(cells.size() <= SheetLimits::maxColumns, row, cells.size());
        FUZZ_CHECK(cells.isEmpty() || cells.last().kind != SheetCell::Kind::Empty
                       || cells.last().covered,
                   row, cells.size());
        for (qsizetype column = 0; column < cells.size(); ++column) {
            const SheetCell &cell = cells[column];
            const bool blank = cell.text.isEmpty() && cell.number == 0 && !cell.isTime;
            switch (cell.kind) {
            case SheetCell::Kind::Empty:
                FUZZ_CHECK(blank, row, column, cell.text, cell.number);
                break;
            case SheetCell::Kind::Text:
                FUZZ_CHECK(!cell.covered && !cell.text.isEmpty()
                               && cell.text.size() <= SheetLimits::maxCellChars,
                           row, column, cell.text.size());
                textChars += cell.text.size();
                break;
            case SheetCell::Kind::Number:
                FUZZ_CHECK(!cell.covered && cell.text.isEmpty() && std::isfinite(cell.number), row,
                           column, cell.number);
                break;
            case SheetCell::Kind::Boolean:
                FUZZ_CHECK(!cell.covered && (cell.number == 0 || cell.number == 1), row, column,
                           cell.number);
                break;
            }
        }
    }
    FUZZ_CHECK(textChars <= SheetLimits::maxTextChars, textChars);
}


// The fuzzer's input as a package: a zip archive as it is, or else NUL-separated parts zipped
// under these names in order (a missing part is left out).
inline QByteArray packageOf(const QByteArray &input, const QStringList &partNames)
{
    if (input.startsWith("PK"))
        return input;
    const QList<QByteArray> parts = input.split('\0');
    ZipEntries entries;
    for (qsizetype i = 0; i < parts.size() && i < partNames.size(); ++i)
        entries.append({partNames[i], parts[i]});
    // Stored as they are: the fuzzer's bytes reach the XML readers through the checksums.
    const QByteArray package = zipOf(entries, false);
    FUZZ_CHECK(!package.isEmpty() || entries.isEmpty(), entries.size());
    return package;
}
