#include "sheetvalues.h"

#include "cuepalette.h"

#include <QDate>
#include <QRegularExpression>

#include <cmath>

namespace {

constexpr double secondsPerDay = 86400;
constexpr qint64 millisecondsPerDay = 86'400'000;
// Serials beyond year 9999 either way are shown as plain numbers.
constexpr double largestShownSerial = 2'958'465;

const QDate serialEpoch(1899, 12, 30);

double roundedToMilliseconds(double seconds)
{
    return std::round(seconds * 1000) / 1000;
}

// "2,5" and "2.5" alike; nothing when the number is too large to hold.
std::optional<double> decimal(QStringView digits)
{
    bool ok = false;
    const double value = digits.toString().replace(u',', u'.').toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<double> nonNegativeSeconds(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0)
        return std::nullopt;
    return roundedToMilliseconds(seconds);
}

QRegularExpression pattern(const char *expression)
{
    return QRegularExpression(QLatin1StringView(expression));
}

// The serial's day and time of day; the day may be before the epoch.
struct SerialParts {
    QDate date;
    QTime time;
};

std::optional<SerialParts> serialParts(double serial)
{
    if (!std::isfinite(serial) || std::abs(serial) > largestShownSerial)
        return std::nullopt;
    const double day = std::floor(serial);
    auto milliseconds = qint64(std::llround((serial - day) * double(millisecondsPerDay)));
    qint64 days = qint64(day);
    if (milliseconds >= millisecondsPerDay) {
        milliseconds -= millisecondsPerDay;
        ++days;
    }
    return SerialParts{serialEpoch.addDays(days), QTime::fromMSecsSinceStartOfDay(int(milliseconds))};
}

QString timeText(QTime time)
{
    return time.toString(time.second() == 0 && time.msec() == 0 ? u"HH:mm" : u"HH:mm:ss");
}

QString numberText(double value)
{
    return QString::number(value, 'g', 15).replace(u'.', u',');
}

QString serialText(double serial)
{
    const std::optional<SerialParts> parts = serialParts(serial);
    if (!parts)
        return numberText(serial);
    if (parts->date == serialEpoch)
        return parts->time.toString(u"HH:mm:ss");
    const QString day = parts->date.toString(u"dd/MM/yyyy");
    if (parts->time == QTime(0, 0))
        return day;
    return day + u' ' + timeText(parts->time);
}

// A text's key for the duration and time patterns: folded, with the quote-like signs people
// type for minutes and seconds made plain ' and ".
QString unitText(QStringView text)
{
    return SheetValues::folded(text).replace(QStringLiteral("''"), QStringLiteral("\""));
}

} // namespace

namespace SheetValues {

QString folded(QStringView text)
{
    QString key = text.toString().normalized(QString::NormalizationForm_KD);
    QString result;
    result.reserve(key.size());
    for (const QChar c : key) {
        if (c.category() == QChar::Mark_NonSpacing)
            continue;
        switch (c.unicode()) {
        case u'\u2018': case u'\u2019': case u'\u2032':
            result.append(u'\'');
            break;
        case u'\u201C': case u'\u201D': case u'\u2033':
            result.append(u'"');
            break;
        default:
            result.append(c.toLower());
        }
    }
    return result.simplified();
}

QString displayText(const SheetCell &cell)
{
    switch (cell.kind) {
    case SheetCell::Kind::Empty:
        return {};
    case SheetCell::Kind::Text:
        return cell.text;
    case SheetCell::Kind::Boolean:
        return cell.number != 0 ? QStringLiteral("VRAI") : QStringLiteral("FAUX");
    case SheetCell::Kind::Number:
        return cell.isTime ? serialText(cell.number) : numberText(cell.number);
    }
    return {};
}

bool isBlank(const SheetCell &cell)
{
    switch (cell.kind) {
    case SheetCell::Kind::Empty:
        return true;
    case SheetCell::Kind::Text:
        return cell.text.trimmed().isEmpty();
    default:
        return false;
    }
}

bool isBefore1900(const SheetCell &cell)
{
    return cell.kind == SheetCell::Kind::Number && cell.isTime && cell.number < 0;
}

std::optional<double> durationSeconds(const SheetCell &cell)
{
    switch (cell.kind) {
    case SheetCell::Kind::Number:
        return nonNegativeSeconds(cell.isTime ? cell.number * secondsPerDay : cell.number * 60);
    case SheetCell::Kind::Text:
        return durationSeconds(cell.text);
    default:
        return std::nullopt;
    }
}

std::optional<double> durationSeconds(QStringView text)
{
    static const QRegularExpression minutes = pattern(
        R"(^(\d+(?:[.,]\d+)?)\s*(?:min|mins|minute|minutes|mn|m|')?$)");
    static const QRegularExpression seconds = pattern(
        R"(^(\d+(?:[.,]\d+)?)\s*(?:s|sec|secs|seconde|secondes|"|second|seconds)$)");
    static const QRegularExpression hours = pattern(R"(^(\d+(?:[.,]\d+)?)\s*(?:h|heure|heures)$)");
    static const QRegularExpression clock = pattern(
        R"(^(?:(\d+):)?(\d+):(\d{1,2}(?:[.,]\d+)?)$)");
    // 1h30, 1 h 30 min, 1h05m30s
    static const QRegularExpression hoursMinutes = pattern(
        R"(^(\d+)\s*h\s*(\d{1,2})\s*(?:min|mn|m|')?(?:\s*(\d{1,2})\s*(?:s|sec|")?)?$)");
    // 1'30, 1'30'', 1 min 30, 1min30s
    static const QRegularExpression minutesSeconds = pattern(
        R"(^(\d+)\s*(?:'|min|mn|m)\s*(\d{1,2})\s*(?:s|sec|")?$)");

    const QString key = unitText(text);
    auto number = [](const QRegularExpressionMatch &match, int group) {
        return match.capturedView(group).isEmpty() ? std::optional<double>(0)
                                                   : decimal(match.capturedView(group));
    };
    QRegularExpressionMatch match;
    if ((match = minutes.match(key)).hasMatch()) {
        const auto value = number(match, 1);
        return value ? nonNegativeSeconds(*value * 60) : std::nullopt;
    }
    if ((match = seconds.match(key)).hasMatch()) {
        const auto value = number(match, 1);
        return value ? nonNegativeSeconds(*value) : std::nullopt;
    }
    if ((match = hours.match(key)).hasMatch()) {
        const auto value = number(match, 1);
        return value ? nonNegativeSeconds(*value * 3600) : std::nullopt;
    }
    const bool isClock = (match = clock.match(key)).hasMatch();
    if (isClock || (match = hoursMinutes.match(key)).hasMatch()) {
        // h:mm:ss or m:ss; in h:mm:ss and 1h30 the minutes stay under 60, and seconds always do.
        // Both patterns capture hours, minutes and seconds in groups 1 to 3.
        const bool hasHours = !isClock || !match.capturedView(1).isEmpty();
        const auto h = number(match, 1), m = number(match, 2), s = number(match, 3);
        if (!h || !m || !s || *s >= 60 || (hasHours && *m >= 60))
            return std::nullopt;
        return nonNegativeSeconds(*h * 3600 + *m * 60 + *s);
    }
    if ((match = minutesSeconds.match(key)).hasMatch()) {
        const auto m = number(match, 1), s = number(match, 2);
        if (!m || !s || *s >= 60)
            return std::nullopt;
        return nonNegativeSeconds(*m * 60 + *s);
    }
    return std::nullopt;
}

std::optional<QTime> timeOfDay(const SheetCell &cell)
{
    if (cell.kind == SheetCell::Kind::Text)
        return timeOfDay(cell.text);
    if (cell.kind != SheetCell::Kind::Number || !cell.isTime || !(cell.number >= 0))
        return std::nullopt;
    // A time far past the years a calendar shows still has its fraction of a day.
    const double fraction = cell.number - std::floor(cell.number);
    if (!std::isfinite(fraction))
        return std::nullopt;
    const qint64 milliseconds = std::llround(fraction * double(millisecondsPerDay));
    return QTime::fromMSecsSinceStartOfDay(int(milliseconds % millisecondsPerDay));
}

std::optional<QTime> timeOfDay(QStringView text)
{
    static const QRegularExpression withColons = pattern(R"(^(\d{1,2}):(\d{2})(?::(\d{2}))?$)");
    static const QRegularExpression withH = pattern(R"(^(\d{1,2})\s*h\s*(\d{2})?$)");
    const QString key = unitText(text);
    QRegularExpressionMatch match = withColons.match(key);
    if (!match.hasMatch())
        match = withH.match(key);
    if (!match.hasMatch())
        return std::nullopt;
    const int hour = match.capturedView(1).toInt();
    const int minute = match.capturedView(2).toInt();  // 0 when absent
    const int second = match.capturedView(3).toInt();
    if (hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return QTime(hour, minute, second);
}

std::optional<QString> colourHex(const SheetCell &cell)
{
    static const QRegularExpression hex = pattern(R"(^#?([0-9A-Fa-f]{6})$)");
    const QString text = displayText(cell).trimmed();
    const QRegularExpressionMatch match = hex.match(text);
    if (match.hasMatch())
        return u'#' + match.captured(1).toUpper();
    const QString key = folded(text);
    if (key.isEmpty())
        return std::nullopt;
    for (const CueColour &colour : CuePalette::colours()) {
        if (folded(colour.name) == key)
            return colour.hex;
    }
    return std::nullopt;
}

std::optional<bool> boolean(const SheetCell &cell)
{
    switch (cell.kind) {
    case SheetCell::Kind::Empty:
        return false;
    case SheetCell::Kind::Boolean:
        return cell.number != 0;
    case SheetCell::Kind::Number:
        if (!cell.isTime && (cell.number == 0 || cell.number == 1))
            return cell.number == 1;
        return std::nullopt;
    case SheetCell::Kind::Text:
        break;
    }
    static const QStringList yes{"oui", "o", "yes", "y", "vrai", "true", "x", "1"};
    static const QStringList no{"", "non", "n", "no", "faux", "false", "0"};
    const QString key = folded(cell.text);
    if (yes.contains(key))
        return true;
    if (no.contains(key))
        return false;
    return std::nullopt;
}

} // namespace SheetValues
