#pragma once

#include <QStringView>

#include <optional>

// Dates and durations written as ISO 8601 text in workbooks, as serial day numbers counted from
// 1899-12-30 00:00 (see SheetCell::number).
namespace SheetSerial {

// "2026-03-14", "2026-03-14T20:30:00" or with fractional seconds; a zone written after it
// ("Z", "+01:00") is left out, the cell shows the local time. Anything else: nullopt.
std::optional<double> fromDateTime(QStringView text);

// A duration such as "PT01H30M00S", "PT36H", "P1DT2H", "-PT0.5S" (fractional seconds, more
// than 24 hours, a sign); years and months, of no fixed length, are refused.
std::optional<double> fromDuration(QStringView text);

} // namespace SheetSerial
