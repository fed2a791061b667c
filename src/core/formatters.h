#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QTimeZone>

// A time-of-day formatter: a fixed pattern rendered in one locale and one time zone.
class DateFormatter
{
public:
    DateFormatter(QString pattern, QLocale locale, QTimeZone zone);

    QString string(const QDateTime &instant) const;

    const QString &pattern() const { return m_pattern; }
    const QLocale &locale() const { return m_locale; }
    const QTimeZone &timeZone() const { return m_zone; }

private:
    QString m_pattern;
    QLocale m_locale;
    QTimeZone m_zone;
};

// The shared clock formatters and the display locale and time zone they use. They are built
// once and reused: the displays redraw ten times a second. Main thread only.
namespace Fmt {

const DateFormatter &hhmm();   // "HH:mm", always the 24-hour clock
const DateFormatter &hhmmss(); // "HH:mm:ss"

// The locale and time zone of every displayed date; the system's until set otherwise.
QLocale locale();
QTimeZone timeZone();
void setLocale(const QLocale &locale);
void setTimeZone(const QTimeZone &zone);

// The calendar date in the locale's medium style ("15 nov. 2026" in French).
QString mediumDate(const QDateTime &instant, const QLocale &locale, const QTimeZone &zone);
// The calendar date in the locale's complete style, weekday included ("dimanche 22 novembre
// 2026" in French).
QString fullDate(const QDateTime &instant, const QLocale &locale, const QTimeZone &zone);
// Qt has short and long date formats only; the medium one is the long one without the
// weekday and with abbreviated month names.
QString mediumDatePattern(const QLocale &locale);

} // namespace Fmt
