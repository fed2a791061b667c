#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// What a workbook's number formats make of a number: whether it shows as a date, a time of day
// or a duration, read from xl/styles.xml.
namespace XlsxStyles {

enum class TimeKind {
    None, // a plain number
    TimeOnly, // hours, minutes or seconds only: a time of day or a duration
    Date, // a date, with or without its time
};

// The kind of a format code such as "[h]:mm:ss" or "dd/mm/yyyy": its y, m, d, h and s outside
// quoted text, escaped characters and brackets ([Red], [$-40C], [>=100]), or an elapsed [h],
// [mm] or [ss]. An m is minutes after an h or before an s, else a month.
TimeKind kindOfFormatCode(const QString &code);

// The kind of a built-in format: 14 to 22 and 45 to 47 are dates and times.
TimeKind kindOfBuiltInFormat(int numFmtId);

// Each cell style (the s attribute of a cell, an index into cellXfs) and its kind; a style
// the list does not reach is a plain number. Unreadable XML gives what was read before it.
QList<TimeKind> cellStyleKinds(const QByteArray &stylesXml);

} // namespace XlsxStyles
