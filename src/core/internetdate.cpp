#include "internetdate.h"

#include "asciichars.h"

namespace InternetDate {

QString format(const QDateTime &instant)
{
    const qint64 ms = instant.toMSecsSinceEpoch();
    const qint64 wholeSeconds = ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
    const QDateTime utc = QDateTime::fromSecsSinceEpoch(wholeSeconds, Qt::UTC);
    const QDate d = utc.date();
    const QTime t = utc.time();
    return QString::asprintf("%04d-%02d-%02dT%02d:%02d:%02dZ", d.year(), d.month(), d.day(),
                             t.hour(), t.minute(), t.second());
}

namespace {

// The decimal number in text[pos, pos + count), or -1 if any of it is not an ASCII digit.
int digits(const QString &text, qsizetype pos, int count)
{
    int value = 0;
    for (int i = 0; i < count; ++i) {
        const QChar c = text.at(pos + i);
        if (!isAsciiDigit(c))
            return -1;
        value = value * 10 + (c.unicode() - u'0');
    }
    return value;
}

} // namespace

std::optional<QDateTime> parse(const QString &text)
{
    // 0123456789012345678 9
    // YYYY-MM-DDTHH:MM:SS Z | +HH:MM
    if (text.size() != 20 && text.size() != 25)
        return std::nullopt;
    if (text[4] != u'-' || text[7] != u'-' || text[10] != u'T' || text[13] != u':'
        || text[16] != u':')
        return std::nullopt;
    const int year = digits(text, 0, 4), month = digits(text, 5, 2), day = digits(text, 8, 2);
    const int hour = digits(text, 11, 2), minute = digits(text, 14, 2), second = digits(text, 17, 2);
    // digits() gives -1 for anything but ASCII digits, and QDate would take -1 as a year.
    if (year < 1 || month < 0 || day < 0 || hour < 0 || hour > 23 || minute < 0 || minute > 59
        || second < 0 || second > 59)
        return std::nullopt;
    const QDate date(year, month, day);
    if (!date.isValid())
        return std::nullopt;

    int offsetSeconds = 0;
    if (text.size() == 20) {
        if (text[19] != u'Z')
            return std::nullopt;
    } else {
        const QChar sign = text[19];
        const int oh = digits(text, 20, 2), om = digits(text, 23, 2);
        if ((sign != u'+' && sign != u'-') || text[22] != u':' || oh < 0 || oh > 23 || om < 0
            || om > 59)
            return std::nullopt;
        offsetSeconds = (sign == u'+' ? 1 : -1) * (oh * 3600 + om * 60);
    }
    const QDateTime utc =
        QDateTime(date, QTime(hour, minute, second), Qt::UTC).addSecs(-offsetSeconds);
    // Only instants that format() can write back in four-digit years are read, so that every
    // date read is saved in a form that reads again.
    if (utc.date().year() < 1 || utc.date().year() > 9999)
        return std::nullopt;
    return utc;
}

} // namespace InternetDate
