#include "formatters.h"

#include <QRegularExpression>

DateFormatter::DateFormatter(QString pattern, QLocale locale, QTimeZone zone)
    : m_pattern(std::move(pattern)), m_locale(std::move(locale)), m_zone(std::move(zone))
{
}

QString DateFormatter::string(const QDateTime &instant) const
{
    return m_locale.toString(instant.toTimeZone(m_zone), m_pattern);
}

namespace Fmt {
namespace {

struct Shared {
    QLocale locale = QLocale::system();
    QTimeZone zone = QTimeZone::systemTimeZone();
    DateFormatter hhmm{QStringLiteral("HH:mm"), locale, zone};
    DateFormatter hhmmss{QStringLiteral("HH:mm:ss"), locale, zone};

    void rebuild()
    {
        hhmm = DateFormatter(hhmm.pattern(), locale, zone);
        hhmmss = DateFormatter(hhmmss.pattern(), locale, zone);
    }
};

Shared &shared()
{
    static Shared instance;
    return instance;
}

} // namespace

const DateFormatter &hhmm() { return shared().hhmm; }
const DateFormatter &hhmmss() { return shared().hhmmss; }
QLocale locale() { return shared().locale; }
QTimeZone timeZone() { return shared().zone; }

void setLocale(const QLocale &locale)
{
    shared().locale = locale;
    shared().rebuild();
}

void setTimeZone(const QTimeZone &zone)
{
    shared().zone = zone;
    shared().rebuild();
}

QString mediumDatePattern(const QLocale &locale)
{
    QString pattern = locale.dateFormat(QLocale::LongFormat);
    // Drop the weekday with the punctuation and blanks that follow it.
    static const QRegularExpression weekday(QStringLiteral("d{4}[,.]?\\s*"));
    pattern.remove(weekday);
    pattern.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    return pattern.trimmed();
}

QString mediumDate(const QDateTime &instant, const QLocale &locale, const QTimeZone &zone)
{
    return locale.toString(instant.toTimeZone(zone).date(), mediumDatePattern(locale));
}

QString fullDate(const QDateTime &instant, const QLocale &locale, const QTimeZone &zone)
{
    return locale.toString(instant.toTimeZone(zone).date(), QLocale::LongFormat);
}

} // namespace Fmt
