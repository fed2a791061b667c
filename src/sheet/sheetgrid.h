#pragma once

#include "sheettable.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

// A cell's reference as a spreadsheet shows it: row and column from 0, (6, 1) is "B7".
QString sheetCellReference(qint64 row, qint64 column);
// A column's letters: 0 is "A", 27 is "AB".
QString sheetColumnName(qint64 column);
// The column that letters name ("AB" is 27); none for anything else.
std::optional<int> sheetColumnOf(const QString &letters);

// One sheet's cells as a workbook reader finds them, in any order. It holds the SheetLimits on
// the values (an empty cell, however far, counts for nothing) and stops at the first one
// passed, then gives the SheetTable: covered cells marked, rows and table trimmed.
class SheetGrid
{
public:
    SheetGrid();
    ~SheetGrid();
    SheetGrid(const SheetGrid &) = delete;
    SheetGrid &operator=(const SheetGrid &) = delete;

    // Places a value; row and column count from 0. An Empty cell, or a Text of no character,
    // clears the place instead. False when the value passes a limit: error() says which.
    bool set(qint64 row, qint64 column, const SheetCell &cell);
    // Whether a value may stand at this place: error() says which limit it passes, if any; a
    // negative place is refused without an error, nothing being there to count.
    bool checkPlace(qint64 row, qint64 column);

    // A merged range, bounds included: every cell but its top-left one is covered.
    void addMerge(qint64 top, qint64 left, qint64 bottom, qint64 right);
    // Cells covered by a merge whose top-left cell is elsewhere, bounds included.
    void addCovered(qint64 top, qint64 left, qint64 bottom, qint64 right);

    bool failed() const { return !m_error.isEmpty(); }
    const QString &error() const { return m_error; }

    // The sheet read (an empty table once a limit was passed). Covered cells are kept only
    // within the rows and columns that hold values: a merge reaching past them is layout, not
    // content.
    SheetTable take(const QString &sheetName);

private:
    void addRectangle(qint64 top, qint64 left, qint64 bottom, qint64 right, int weight);
    void applyCovered(int lastRow, int lastColumn);

    QList<QList<SheetCell>> m_rows;
    qint64 m_textChars = 0;
    QString m_error;
    // Coverage counts as a two-dimensional difference array over the limits' area, made on the
    // first merge: each range costs the same whatever its size.
    std::unique_ptr<int[]> m_coverage;
};
