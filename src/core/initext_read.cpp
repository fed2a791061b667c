#include "initext.h"

#include <QDataStream>
#include <QIODevice>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <string>
#include <utility>

// Reading; initext.cpp writes.
namespace IniText {
namespace {

int hexValue(char16_t c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

int octValue(char c) { return c >= '0' && c <= '7' ? c - '0' : -1; }

// A key or section name as written: "\" back to "/", "%XX" and "%UXXXX" back to their character.
QString unescapedKey(QByteArrayView raw)
{
    const QString text = QString::fromUtf8(raw);
    QString key;
    for (qsizetype i = 0; i < text.size();) {
        const QChar c = text[i];
        if (c == u'\\') {
            key += u'/';
            ++i;
            continue;
        }
        if (c != u'%' || i == text.size() - 1) {
            key += c;
            ++i;
            continue;
        }
        const qsizetype digits = text[i + 1] == u'U' ? 4 : 2;
        const qsizetype first = i + 1 + (digits == 4);
        bool ok = first + digits <= text.size();
        const ushort code = ok ? QStringView(text).sliced(first, digits).toUShort(&ok, 16) : 0;
        if (!ok) {
            key += u'%';
            ++i;
            continue;
        }
        key += QChar(code);
        i = first + digits;
    }
    return key;
}

// The text of one value marked with "@" (see textOf()); any other text as it is.
QVariant valueOf(const QString &text)
{
    const QStringView s(text);
    if (s.startsWith(u'@') && s.endsWith(u')')) {
        if (s.startsWith(QLatin1StringView("@ByteArray(")))
            return s.sliced(11).chopped(1).toLatin1();
        if (s.startsWith(QLatin1StringView("@String(")))
            return s.sliced(8).chopped(1).toString();
        const bool dateTime = s.startsWith(QLatin1StringView("@DateTime("));
        if (dateTime || s.startsWith(QLatin1StringView("@Variant("))) {
            QByteArray bytes = s.sliced(dateTime ? 10 : 9).toLatin1();
            QDataStream stream(&bytes, QIODevice::ReadOnly);
            stream.setVersion(dateTime ? QDataStream::Qt_5_6 : QDataStream::Qt_4_0);
            QVariant value;
            stream >> value;
            return value;
        }
        const auto numbers = [&](qsizetype open) {
            QList<int> result;
            for (const QStringView n : s.sliced(open + 1).chopped(1).split(u' '))
                result << n.toInt();
            return result;
        };
        if (s.startsWith(QLatin1StringView("@Rect("))) {
            if (const QList<int> n = numbers(5); n.size() == 4)
                return QRect(n[0], n[1], n[2], n[3]);
        } else if (s.startsWith(QLatin1StringView("@Size("))) {
            if (const QList<int> n = numbers(5); n.size() == 2)
                return QSize(n[0], n[1]);
        } else if (s.startsWith(QLatin1StringView("@Point("))) {
            if (const QList<int> n = numbers(6); n.size() == 2)
                return QPoint(n[0], n[1]);
        } else if (s == QLatin1StringView("@Invalid()")) {
            return {};
        }
    }
    if (s.startsWith(QLatin1StringView("@@")))
        return s.sliced(1).toString();
    return text;
}

// A list of texts; when one holds a marker, a list of values.
QVariant listOf(const QStringList &items)
{
    QStringList texts = items;
    for (QString &text : texts) {
        if (!text.startsWith(u'@'))
            continue;
        if (text.size() < 2 || text[1] != u'@') {
            QVariantList values;
            for (const QString &item : items)
                values << valueOf(item);
            return values;
        }
        text.remove(0, 1);
    }
    return texts;
}

// What follows "=": C escapes undone, quotes removed, unquoted blanks around it trimmed; a list
// when a comma stands outside quotes.
QVariant parseValue(QByteArrayView raw)
{
    static constexpr char escapes[] = "abfnrtv\"?'\\";
    static constexpr char escaped[] = "\a\b\f\n\r\t\v\"?'\\";
    const qsizetype n = raw.size();
    QStringList items;
    QString current;
    bool isList = false;
    bool inQuotes = false;
    bool quoted = false;  // the current item had quotes: its blanks are its own
    bool trimEnd = true;  // false when the text ends inside an escape
    qsizetype kept = 0;   // characters at the start of `current` that trimming leaves
    qsizetype i = 0;
    const auto skipBlanks = [&] {
        while (i < n && (raw[i] == ' ' || raw[i] == '\t'))
            ++i;
    };
    const auto trim = [&] {
        qsizetype end = current.size();
        while (end > kept && (current[end - 1] == u' ' || current[end - 1] == u'\t'))
            --end;
        current.truncate(end);
    };
    skipBlanks();
    while (i < n) {
        const char c = raw[i];
        if (c == '\\') {
            if (++i >= n) {
                trimEnd = false;
                break;
            }
            const char e = raw[i++];
            const bool hex = e == 'x' && i < n && hexValue(uchar(raw[i])) >= 0;
            if (const char *simple = std::char_traits<char>::find(escapes, 11, e)) {
                current += QLatin1Char(escaped[simple - escapes]);
            } else if (hex || octValue(e) >= 0) {
                char16_t code = hex ? 0 : octValue(e);
                for (int d; i < n && (d = hex ? hexValue(uchar(raw[i])) : octValue(raw[i])) >= 0; ++i)
                    code = char16_t(code * (hex ? 16 : 8) + d);
                current += QChar(code);
                if (i >= n) {
                    trimEnd = false;
                    break;
                }
            } else if (e == 'x' && i >= n) {
                trimEnd = false;
                break;
            } else if ((e == '\n' || e == '\r') && i < n && raw[i] != e
                       && (raw[i] == '\n' || raw[i] == '\r')) {
                ++i; // a line continued: the pair of line ends goes with it
            }
            kept = current.size();
        } else if (c == '"') {
            ++i;
            quoted = true;
            inQuotes = !inQuotes;
            if (!inQuotes) {
                skipBlanks();
                kept = current.size();
            }
        } else if (c == ',' && !inQuotes) {
            if (!quoted)
                trim();
            isList = true;
            items << std::exchange(current, QString());
            quoted = false;
            ++i;
            skipBlanks();
            kept = 0;
        } else {
            qsizetype j = i + 1;
            while (j < n && raw[j] != '\\' && raw[j] != '"' && raw[j] != ',')
                ++j;
            current += QString::fromUtf8(raw.sliced(i, j - i));
            i = j;
        }
    }
    if (trimEnd && !quoted)
        trim();
    if (!isList)
        return valueOf(current);
    items << current;
    return listOf(items);
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// The next line of `text` from `pos`, comments left out: a line goes on within quotes and past
// an escaped line end, and ends at a ";" outside quotes. Sets `equals` to the first "=" outside
// quotes, or -1. False at the end of the text.
bool nextLine(QByteArrayView text, qsizetype &pos, QByteArrayView &line, qsizetype &equals)
{
    const qsizetype n = text.size();
    qsizetype start = pos;
    while (start < n && isBlank(text[start]))
        ++start;
    equals = -1;
    bool inQuotes = false;
    qsizetype i = start;
    while (i < n) {
        const char c = text[i++];
        if (c == '=') {
            if (!inQuotes && equals == -1)
                equals = i - 1 - start;
        } else if (c == '\n' || c == '\r') {
            if (i == start + 1) {
                ++start;
            } else if (!inQuotes) {
                --i;
                break;
            }
        } else if (c == '\\') {
            if (i < n) {
                const char next = text[i++];
                if (i < n && ((next == '\n' && text[i] == '\r') || (next == '\r' && text[i] == '\n')))
                    ++i;
            }
        } else if (c == '"') {
            inQuotes = !inQuotes;
        } else if (c == ';') {
            if (i == start + 1) { // a comment: the line after it is read instead
                while (i < n && text[i] != '\n' && text[i] != '\r')
                    ++i;
                while (i < n && isBlank(text[i]))
                    ++i;
                start = i;
            } else if (!inQuotes) {
                --i;
                break;
            }
        }
    }
    pos = i;
    line = text.sliced(start, i - start);
    return !line.isEmpty();
}

} // namespace

QSettings::SettingsMap read(QByteArrayView text)
{
    if (text.startsWith("\xef\xbb\xbf"))
        text = text.sliced(3);
    QSettings::SettingsMap map;
    QString section; // "" in [General], else the section's name and "/"
    QByteArrayView line;
    qsizetype equals;
    for (qsizetype pos = 0; nextLine(text, pos, line, equals);) {
        if (line.startsWith('[')) {
            const qsizetype close = line.indexOf(']');
            const QByteArrayView name = line.first(close < 0 ? line.size() : close).sliced(1).trimmed();
            if (name.compare("general", Qt::CaseInsensitive) == 0)
                section.clear();
            else if (name.compare("%general", Qt::CaseInsensitive) == 0)
                section = QString::fromLatin1(name.sliced(1)) + u'/';
            else
                section = unescapedKey(name) + u'/';
        } else if (equals >= 0) {
            map.insert(section + unescapedKey(line.first(equals).trimmed()),
                       parseValue(line.sliced(equals + 1)));
        }
    }
    return map;
}

} // namespace IniText
