#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// One cell as a spreadsheet file holds it, before the importer gives it a meaning.
struct SheetCell {
    enum class Kind { Empty, Text, Number, Boolean };
    Kind kind = Kind::Empty;
    // Text: the text, lines joined by "\n". An error value (#N/A) is its text.
    QString text;
    // Number: the value. A date, time or duration is a serial day number counted from
    // 1899-12-30 00:00 (a workbook's 1904 system already converted): its whole part the day,
    // its fraction the time of day; before 1899-12-30 it is negative. Boolean: 1 or 0.
    double number = 0;
    // Number: the file formats it as a date, a time of day or a duration.
    bool isTime = false;
    // Hidden under a merged range whose top-left cell is elsewhere; its kind is Empty.
    bool covered = false;

    bool operator==(const SheetCell &) const = default;
};

inline SheetCell textCell(const QString &text)
{
    SheetCell cell;
    cell.kind = SheetCell::Kind::Text;
    cell.text = text;
    return cell;
}

inline SheetCell numberCell(double number, bool isTime = false)
{
    SheetCell cell;
    cell.kind = SheetCell::Kind::Number;
    cell.number = number;
    cell.isTime = isTime;
    return cell;
}

// One sheet: rows[i] is the sheet's line i + 1, columns[j] its column j + 1 (A is 0). Rows keep
// their place (an empty line is an empty list); a row ends at its last cell that is not Empty
// or covered; the table ends at its last row that has any.
struct SheetTable {
    QString sheetName;
    QList<QList<SheetCell>> rows;

    bool operator==(const SheetTable &) const = default;
};

// What reading a file gives: the workbook's sheets and the one read, or why nothing was read.
struct SheetReadResult {
    QStringList sheetNames; // in the workbook's order; a CSV file has one, named after the file
    SheetTable table;       // the sheet asked for (the first when none was)
    QString error;          // empty when the file was read; else one French sentence

    bool ok() const { return error.isEmpty(); }
};

// What a reader accepts before refusing the whole file with a message. A running order is a
// few hundred lines of short texts: these keep a hostile or mistaken file from filling memory.
namespace SheetLimits {
constexpr qint64 maxFileBytes = 50 * 1024 * 1024;     // the file itself, and each archive entry inflated
constexpr int maxRows = 10'000;                        // up to the last line with a value
constexpr int maxColumns = 64;                         // up to the last column with a value
constexpr int maxCellChars = 32'767;                   // the most a spreadsheet cell holds
constexpr qint64 maxTextChars = 8 * 1024 * 1024;       // all the read sheet's texts together
} // namespace SheetLimits
