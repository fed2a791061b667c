#include "xlsxsheet.h"

#include "asciichars.h"
#include "sheetgrid.h"
#include "sheetserial.h"
#include "sheettable.h"

#include <QBuffer>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

namespace XlsxSheet {

namespace {

// 1904-01-01, day 0 of a workbook in the 1904 date system, counted from 1899-12-30.
constexpr double days1904 = 1462;

struct CellPlace {
    qint64 row;
    qint64 column;
};

bool isAsciiLetter(QChar c)
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// "AB12" (or "$AB$12") as row 11, column 27; at most 3 letters and 7 digits.
std::optional<CellPlace> parseReference(QStringView reference)
{
    qsizetype i = 0;
    const auto skipDollar = [&] {
        if (i < reference.size() && reference[i] == u'$')
            ++i;
    };
    skipDollar();
    qint64 column = 0;
    const qsizetype lettersStart = i;
    while (i < reference.size() && isAsciiLetter(reference[i]) && i - lettersStart < 4)
        column = column * 26 + (reference[i++].toUpper().unicode() - u'A' + 1);
    if (i == lettersStart || i - lettersStart > 3)
        return std::nullopt;
    skipDollar();
    qint64 row = 0;
    const qsizetype digitsStart = i;
    while (i < reference.size() && isAsciiDigit(reference[i]) && i - digitsStart < 8)
        row = row * 10 + (reference[i++].unicode() - u'0');
    if (i == digitsStart || i - digitsStart > 7 || i != reference.size() || row == 0)
        return std::nullopt;
    return CellPlace{row - 1, column - 1};
}

// A text as the cell shows it: "_x000D_" stands for a character XML cannot hold ("_x005F_"
// for a literal "_"), and every line ends in "\n".
QString decodedText(QStringView raw)
{
    QString text;
    text.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (raw[i] == u'_' && i + 6 < raw.size() && raw[i + 1] == u'x' && raw[i + 6] == u'_') {
            const QStringView digits = raw.mid(i + 2, 4);
            if (std::all_of(digits.begin(), digits.end(), isAsciiHexDigit)) {
                text += QChar(digits.toUShort(nullptr, 16));
                i += 6;
                continue;
            }
        }
        text += raw[i];
    }
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

// The text of an si or is element, the reader on its start: its t elements, in runs or not,
// without the phonetic guides (rPh). Past the longest cell allowed, the rest is left out: the
// cell is refused anyway.
QString readRichText(QXmlStreamReader &xml)
{
    QString text;
    int depth = 0;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (xml.name() == u"rPh") {
                xml.skipCurrentElement();
            } else if (xml.name() == u"t") {
                text += decodedText(xml.readElementText(QXmlStreamReader::IncludeChildElements));
                if (text.size() > SheetLimits::maxCellChars)
                    text.truncate(SheetLimits::maxCellChars + 1);
            } else {
                ++depth;
            }
        } else if (token == QXmlStreamReader::EndElement) {
            if (depth-- == 0)
                break;
        }
    }
    return text;
}

// The place of a cell within the limits, as a key of SharedStringCells.
std::optional<quint32> placeKey(qint64 row, qint64 column)
{
    if (row < 0 || row >= SheetLimits::maxRows || column < 0 || column >= SheetLimits::maxColumns)
        return std::nullopt;
    return quint32(row * SheetLimits::maxColumns + column);
}

class WorksheetParser
{
public:
    WorksheetParser(QXmlStreamReader &xml, const Format &format, SheetGrid &grid,
                    SharedStringCells &sharedStringCells)
        : m_xml(xml), m_format(format), m_grid(grid), m_sharedStringCells(sharedStringCells)
    {
    }

    void readSheetData()
    {
        while (!m_grid.failed() && m_xml.readNextStartElement()) {
            if (m_xml.name() == u"row")
                readRow();
            else
                m_xml.skipCurrentElement();
        }
    }

    void addMerge(QStringView range)
    {
        const qsizetype colon = range.indexOf(u':');
        if (colon < 0)
            return;
        const std::optional<CellPlace> from = parseReference(range.left(colon));
        const std::optional<CellPlace> to = parseReference(range.mid(colon + 1));
        if (from && to)
            m_grid.addMerge(std::min(from->row, to->row), std::min(from->column, to->column),
                            std::max(from->row, to->row), std::max(from->column, to->column));
    }

private:
    void readRow()
    {
        // A row without its number follows the previous one.
        bool numbered = false;
        const qint64 number = m_xml.attributes().value(QLatin1String("r")).toLongLong(&numbered);
        m_row = numbered && number >= 1 && number <= 9'999'999 ? number - 1 : m_row + 1;
        m_nextColumn = 0;
        while (!m_grid.failed() && m_xml.readNextStartElement()) {
            if (m_xml.name() == u"c")
                readCell();
            else
                m_xml.skipCurrentElement();
        }
    }

    void readCell()
    {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        // A cell without its reference follows the previous one in the row.
        const std::optional<CellPlace> place = parseReference(attributes.value(QLatin1String("r")));
        const qint64 row = place ? place->row : m_row;
        const qint64 column = place ? place->column : m_nextColumn;
        m_nextColumn = column + 1;
        const QString type = attributes.value(QLatin1String("t")).toString();
        const qsizetype style = attributes.value(QLatin1String("s")).toLongLong();

        QString value; // a formula's cached value, or the value
        QString inlineText;
        bool hasInlineText = false;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == u"v") {
                value = m_xml.readElementText(QXmlStreamReader::IncludeChildElements);
            } else if (m_xml.name() == u"is") {
                inlineText = readRichText(m_xml);
                hasInlineText = true;
            } else {
                m_xml.skipCurrentElement(); // the formula itself, extensions
            }
        }

        const std::optional<quint32> key = placeKey(row, column);
        if (type == u"s") {
            bool ok = false;
            const qint64 index = value.trimmed().toLongLong(&ok);
            if (ok && index >= 0 && m_grid.checkPlace(row, column) && key)
                m_sharedStringCells.insert(*key, index);
            else
                m_grid.set(row, column, SheetCell());
            return;
        }
        if (key)
            m_sharedStringCells.remove(*key);
        m_grid.set(row, column, cellOf(type, value, hasInlineText ? &inlineText : nullptr, style));
    }

    SheetCell cellOf(const QString &type, const QString &value, const QString *inlineText,
                     qsizetype style) const
    {
        if (type == u"inlineStr")
            return textCell(inlineText ? *inlineText : decodedText(value));
        if (type == u"str" || type == u"e") // a formula's text, or an error such as "#N/A"
            return textCell(decodedText(value));
        if (type == u"b") {
            const QString flag = value.trimmed();
            if (flag == u"1" || flag == u"true")
                return {SheetCell::Kind::Boolean, {}, 1};
            if (flag == u"0" || flag == u"false")
                return {SheetCell::Kind::Boolean, {}, 0};
            return {};
        }
        if (type == u"d") {
            const std::optional<double> serial = SheetSerial::fromDateTime(value);
            return serial ? numberCell(*serial, true) : SheetCell();
        }
        bool ok = false;
        double number = value.toDouble(&ok);
        if (!ok || !std::isfinite(number))
            return {}; // a formula without a cached value, or nothing readable
        const XlsxStyles::TimeKind kind = style >= 0 && style < m_format.styleKinds.size()
            ? m_format.styleKinds[style]
            : XlsxStyles::TimeKind::None;
        // Only a date moves with the 1904 system: a time or a duration is the same length.
        if (kind == XlsxStyles::TimeKind::Date && m_format.date1904)
            number += days1904;
        return numberCell(number, kind != XlsxStyles::TimeKind::None);
    }

    QXmlStreamReader &m_xml;
    const Format &m_format;
    SheetGrid &m_grid;
    SharedStringCells &m_sharedStringCells;
    qint64 m_row = -1;
    qint64 m_nextColumn = 0;
};

} // namespace

bool readCells(const QByteArray &worksheetXml, const Format &format, SheetGrid &grid,
               SharedStringCells &sharedStringCells)
{
    QBuffer buffer;
    buffer.setData(worksheetXml);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&buffer);
    WorksheetParser parser(xml, format, grid, sharedStringCells);
    while (!xml.atEnd() && !grid.failed()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"sheetData")
            parser.readSheetData();
        else if (xml.name() == u"mergeCell")
            parser.addMerge(xml.attributes().value(QLatin1String("ref")));
    }
    return grid.failed() || !xml.hasError();
}

std::optional<QHash<qint64, QString>> readSharedStrings(const QByteArray &sharedStringsXml,
                                                        const QList<qint64> &sortedIndexes)
{
    QBuffer buffer;
    buffer.setData(sharedStringsXml);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&buffer);
    QHash<qint64, QString> strings;
    qint64 index = 0;
    qsizetype wanted = 0;
    while (!xml.atEnd() && wanted < sortedIndexes.size()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"si")
            continue;
        if (sortedIndexes[wanted] == index) {
            strings.insert(index, readRichText(xml));
            ++wanted;
        } else {
            xml.skipCurrentElement();
        }
        ++index;
    }
    if (xml.hasError())
        return std::nullopt;
    return strings;
}

void placeSharedStrings(const SharedStringCells &cells, const QHash<qint64, QString> &strings,
                        SheetGrid &grid)
{
    for (auto cell = cells.cbegin(); cell != cells.cend(); ++cell) {
        const qint64 row = cell.key() / SheetLimits::maxColumns;
        const qint64 column = cell.key() % SheetLimits::maxColumns;
        if (!grid.set(row, column, textCell(strings.value(cell.value()))))
            return;
    }
}

} // namespace XlsxSheet
