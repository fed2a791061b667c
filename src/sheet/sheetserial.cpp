#include "sheetserial.h"

#include <QDate>
#include <QString>

#include <cmath>

namespace SheetSerial {

namespace {

constexpr double secondsPerDay = 86400;

// Reads a text from left to right; every reading step fails without moving.
class Cursor
{
public:
    explicit Cursor(QStringView text) : m_text(text) {}

    bool atEnd() const { return m_at >= m_text.size(); }
    QStringView rest() const { return m_text.mid(m_at); }

    bool take(char16_t c)
    {
        if (atEnd() || m_text[m_at] != QChar(c))
            return false;
        ++m_at;
        return true;
    }

    // Between min and max decimal digits, as a whole number.
    std::optional<int> digits(int min, int max)
    {
        qsizetype end = m_at;
        while (end < m_text.size() && end - m_at < max && m_text[end].isDigit()
               && m_text[end].unicode() < 128)
            ++end;
        if (end - m_at < min)
            return std::nullopt;
        const int value = m_text.mid(m_at, end - m_at).toInt();
        m_at = end;
        return value;
    }

    // Digits with an optional fraction after "." or ",": a duration's component.
    std::optional<double> decimal()
    {
        qsizetype end = m_at;
        const auto skipDigits = [&] {
            while (end < m_text.size() && m_text[end].unicode() >= u'0'
                   && m_text[end].unicode() <= u'9')
                ++end;
        };
        skipDigits();
        if (end == m_at)
            return std::nullopt;
        if (end < m_text.size() && (m_text[end] == u'.' || m_text[end] == u',')) {
            ++end;
            skipDigits();
        }
        QString number = m_text.mid(m_at, end - m_at).toString();
        number.replace(u',', u'.');
        bool ok = false;
        const double value = number.toDouble(&ok);
        if (!ok || !std::isfinite(value))
            return std::nullopt;
        m_at = end;
        return value;
    }

private:
    QStringView m_text;
    qsizetype m_at = 0;
};

// What may follow a date and time: nothing, "Z", or an offset such as "+01:00" or "-0500".
bool isZoneOrNothing(QStringView rest)
{
    if (rest.isEmpty() || rest == u"Z")
        return true;
    if (rest.front() != u'+' && rest.front() != u'-')
        return false;
    Cursor zone(rest.mid(1));
    if (!zone.digits(2, 2))
        return false;
    zone.take(u':');
    return (zone.atEnd() || zone.digits(2, 2)) && zone.atEnd();
}

} // namespace

std::optional<double> fromDateTime(QStringView text)
{
    Cursor cursor(text.trimmed());
    const bool beforeYearOne = cursor.take(u'-');
    const std::optional<int> year = cursor.digits(4, 6);
    std::optional<int> month;
    std::optional<int> day;
    if (!year || !cursor.take(u'-') || !(month = cursor.digits(2, 2)) || !cursor.take(u'-')
        || !(day = cursor.digits(2, 2)))
        return std::nullopt;
    const QDate date(beforeYearOne ? -*year : *year, *month, *day);
    if (!date.isValid())
        return std::nullopt;
    double serial = double(date.toJulianDay() - QDate(1899, 12, 30).toJulianDay());
    if (cursor.atEnd())
        return serial;

    if (!cursor.take(u'T') && !cursor.take(u' '))
        return std::nullopt;
    const std::optional<int> hour = cursor.digits(2, 2);
    std::optional<int> minute;
    if (!hour || !cursor.take(u':') || !(minute = cursor.digits(2, 2)))
        return std::nullopt;
    double second = 0;
    if (cursor.take(u':')) {
        const std::optional<double> seconds = cursor.decimal();
        if (!seconds)
            return std::nullopt;
        second = *seconds;
    }
    if (*hour > 23 || *minute > 59 || second >= 61 || !isZoneOrNothing(cursor.rest()))
        return std::nullopt;
    return serial + (*hour * 3600 + *minute * 60 + second) / secondsPerDay;
}

std::optional<double> fromDuration(QStringView text)
{
    Cursor cursor(text.trimmed());
    const bool negative = cursor.take(u'-');
    if (!negative)
        cursor.take(u'+');
    if (!cursor.take(u'P'))
        return std::nullopt;

    double seconds = 0;
    bool anyComponent = false;
    bool inTime = false;
    while (!cursor.atEnd()) {
        if (!inTime && cursor.take(u'T')) {
            inTime = true;
            continue;
        }
        const std::optional<double> value = cursor.decimal();
        if (!value)
            return std::nullopt;
        anyComponent = true;
        if (inTime && cursor.take(u'H'))
            seconds += *value * 3600;
        else if (inTime && cursor.take(u'M'))
            seconds += *value * 60;
        else if (inTime && cursor.take(u'S'))
            seconds += *value;
        else if (!inTime && cursor.take(u'D'))
            seconds += *value * secondsPerDay;
        else if (!inTime && cursor.take(u'W'))
            seconds += *value * 7 * secondsPerDay;
        else if (!inTime && (cursor.take(u'Y') || cursor.take(u'M')) && *value == 0)
            continue; // "P0Y0M0DT…": an empty year or month has a length
        else
            return std::nullopt;
    }
    if (!anyComponent || !std::isfinite(seconds))
        return std::nullopt;
    return (negative ? -seconds : seconds) / secondsPerDay;
}

} // namespace SheetSerial
