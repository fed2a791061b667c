#include "xlsxstyles.h"

#include <QBuffer>
#include <QHash>
#include <QXmlStreamReader>

namespace XlsxStyles {

namespace {

// One run of a date or time letter in a format code: 'y', 'm', 'd', 'h', 's', or an elapsed
// [h], [m] or [s] as 'H', 'M', 'S'.
struct Token {
    char16_t letter;
    qsizetype length;
};

bool isElapsed(QStringView inside)
{
    if (inside.isEmpty())
        return false;
    const QChar first = inside.front().toLower();
    if (first != u'h' && first != u'm' && first != u's')
        return false;
    for (const QChar c : inside)
        if (c.toLower() != first)
            return false;
    return true;
}

QList<Token> dateTimeTokens(QStringView code)
{
    QList<Token> tokens;
    for (qsizetype i = 0; i < code.size(); ++i) {
        const char16_t c = code[i].toLower().unicode();
        if (c == u'"') { // quoted text
            const qsizetype end = code.indexOf(u'"', i + 1);
            i = end < 0 ? code.size() : end;
        } else if (c == u'\\' || c == u'_' || c == u'*') { // the next character is literal
            ++i;
        } else if (c == u'[') { // a colour, a condition, a locale, or an elapsed time
            qsizetype end = code.indexOf(u']', i + 1);
            if (end < 0)
                end = code.size();
            const QStringView inside = code.mid(i + 1, end - i - 1);
            if (isElapsed(inside))
                tokens.append({char16_t(inside.front().toUpper().unicode()), inside.size()});
            i = end;
        } else if (code.mid(i, 5).compare(u"AM/PM", Qt::CaseInsensitive) == 0) {
            i += 4;
        } else if (code.mid(i, 3).compare(u"A/P", Qt::CaseInsensitive) == 0) {
            i += 2;
        } else if (c == u'y' || c == u'm' || c == u'd' || c == u'h' || c == u's') {
            qsizetype end = i + 1;
            while (end < code.size() && code[end].toLower() == QChar(c))
                ++end;
            tokens.append({c, end - i});
            i = end - 1;
        }
    }
    return tokens;
}

bool isHour(const Token &token)
{
    return token.letter == u'h' || token.letter == u'H';
}

bool isSecond(const Token &token)
{
    return token.letter == u's' || token.letter == u'S';
}

} // namespace

TimeKind kindOfFormatCode(const QString &code)
{
    const QList<Token> tokens = dateTimeTokens(code);
    bool date = false;
    bool time = false;
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        const Token &token = tokens[i];
        if (token.letter == u'y' || token.letter == u'd') {
            date = true;
        } else if (token.letter == u'm') {
            // Minutes after an hour or before a second; else (or mmm and longer) a month.
            const bool minutes = token.length <= 2
                && ((i > 0 && isHour(tokens[i - 1]))
                    || (i + 1 < tokens.size() && isSecond(tokens[i + 1])));
            (minutes ? time : date) = true;
        } else {
            time = true;
        }
    }
    return date ? TimeKind::Date : time ? TimeKind::TimeOnly : TimeKind::None;
}

TimeKind kindOfBuiltInFormat(int numFmtId)
{
    if ((numFmtId >= 14 && numFmtId <= 17) || numFmtId == 22)
        return TimeKind::Date;
    if ((numFmtId >= 18 && numFmtId <= 21) || (numFmtId >= 45 && numFmtId <= 47))
        return TimeKind::TimeOnly;
    return TimeKind::None;
}

QList<TimeKind> cellStyleKinds(const QByteArray &stylesXml)
{
    QHash<int, QString> customCodes;
    QList<int> formatOfStyle;
    QBuffer buffer;
    buffer.setData(stylesXml);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&buffer);
    bool inCellXfs = false; // not inside cellStyleXfs, the named styles
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::EndElement && xml.name() == u"cellXfs") {
            inCellXfs = false;
        } else if (token == QXmlStreamReader::StartElement) {
            const QStringView name = xml.name();
            const QXmlStreamAttributes attributes = xml.attributes();
            if (name == u"numFmt") {
                customCodes.insert(attributes.value(QLatin1String("numFmtId")).toInt(),
                                   attributes.value(QLatin1String("formatCode")).toString());
            } else if (name == u"cellXfs") {
                inCellXfs = true;
            } else if (name == u"xf" && inCellXfs) {
                formatOfStyle.append(attributes.value(QLatin1String("numFmtId")).toInt());
                xml.skipCurrentElement();
            }
        }
    }

    QHash<int, TimeKind> kindOfFormat;
    QList<TimeKind> kinds;
    kinds.reserve(formatOfStyle.size());
    for (const int format : std::as_const(formatOfStyle)) {
        auto known = kindOfFormat.constFind(format);
        if (known == kindOfFormat.cend()) {
            const auto custom = customCodes.constFind(format);
            known = kindOfFormat.insert(format,
                                        custom != customCodes.cend() ? kindOfFormatCode(*custom)
                                                                     : kindOfBuiltInFormat(format));
        }
        kinds.append(*known);
    }
    return kinds;
}

} // namespace XlsxStyles
