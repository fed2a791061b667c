#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// Dates in project files: UTC internet date-times to the whole second, "2026-11-15T18:20:00Z".
namespace InternetDate {

// Sub-second parts are dropped, not rounded.
QString format(const QDateTime &instant);

// Accepts "YYYY-MM-DDTHH:MM:SS" followed by "Z" or a "+HH:MM"/"-HH:MM" offset, and nothing
// else: fractional seconds or a missing zone make the text unreadable, and so does an instant
// outside the years 0001 to 9999 in UTC, which could not be written back in this form.
std::optional<QDateTime> parse(const QString &text);

} // namespace InternetDate
