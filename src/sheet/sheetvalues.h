#pragma once

#include "sheettable.h"

#include <QString>
#include <QStringView>
#include <QTime>

#include <optional>

// The values of a running order's cells as people write them in a spreadsheet: durations,
// times of day, colours and yes/no marks, typed as text or stored as numbers.
namespace SheetValues {

// A key for comparing what people type: blanks trimmed and runs of blanks made one space,
// lower case, accents and compatibility forms removed, ’ as '. "  Orange  ORV " and
// "orange orv" have the same key, as do "Durée" and "duree".
QString folded(QStringView text);

// The cell as the sheet shows it: a text as written, a number in French notation ("2,5"),
// a date or time as "dd/MM/yyyy", "dd/MM/yyyy HH:mm" or "HH:mm:ss", a boolean as VRAI or
// FAUX, an empty cell as an empty text.
QString displayText(const SheetCell &cell);

// Nothing in it: an empty or covered cell, or a text of blanks.
bool isBlank(const SheetCell &cell);

// A date or time value before 1899-12-30 (a negative serial), which no time of day nor
// duration reads from.
bool isBefore1900(const SheetCell &cell);

// A duration in seconds, rounded to the millisecond. A time value counts its serial days
// (1:30:00 is 5400 s); a plain number counts minutes; a text is minutes ("10", "2,5", "2.5",
// "10 min", "10mn", "10'"), mm:ss ("10:00"), h:mm:ss ("1:05:00"), hours and minutes ("1h30",
// "1 h 30", "1h"), seconds ("90 s", "90 sec") or minutes and seconds ("1'30", "1'30''",
// "1’30”", "1 min 30"). Nothing for a negative, blank or unreadable value.
std::optional<double> durationSeconds(const SheetCell &cell);
std::optional<double> durationSeconds(QStringView text);

// A time of day. A time value keeps the fraction of its serial (a date and time keeps its
// time); a text is "14:30", "14:30:15", "14h30", "14 h 30" or "14h". Nothing for a value
// before 1899-12-30, a plain number, a blank or anything else.
std::optional<QTime> timeOfDay(const SheetCell &cell);
std::optional<QTime> timeOfDay(QStringView text);

// A colour as the cue stores it, "#RRGGBB" in upper case: from "#2ecc71", "2ECC71" or the name
// of a palette colour ("orange orv"), compared without case nor accents. Nothing otherwise.
std::optional<QString> colourHex(const SheetCell &cell);

// A yes/no mark: oui, o, yes, y, vrai, true, x, 1 or a true boolean; non, n, no, faux, false,
// 0, a false boolean or a blank cell. Nothing for anything else.
std::optional<bool> boolean(const SheetCell &cell);

} // namespace SheetValues
