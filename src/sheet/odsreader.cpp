#include "odsreader.h"

#include "sheetgrid.h"
#include "sheetmessages.h"
#include "sheetserial.h"
#include "ziparchive.h"

#include <QBuffer>
#include <QXmlStreamReader>

#include <cmath>

namespace {

const QString officeNamespace = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:office:1.0");
const QString tableNamespace = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:table:1.0");
const QString textNamespace = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:text:1.0");
const QString calcExtensionNamespace =
    QStringLiteral("urn:org:documentfoundation:names:experimental:calc:xmlns:calcext:1.0");
const QString manifestNamespace =
    QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:manifest:1.0");

// The most a repetition counts: far past any limit, small enough that sums cannot overflow.
constexpr qint64 maxRepeat = qint64(1) << 31;

bool isElement(const QXmlStreamReader &xml, const QString &namespaceUri, QLatin1String name)
{
    return xml.name() == name && xml.namespaceUri() == namespaceUri;
}

// Whether the package's manifest describes encrypted entries: the file has a password.
bool isEncrypted(const QByteArray &manifest)
{
    QBuffer buffer;
    buffer.setData(manifest);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&buffer);
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement
            && isElement(xml, manifestNamespace, QLatin1String("encryption-data")))
            return true;
    return false;
}

// A repetition attribute (table:number-rows-repeated...): 1 when absent or unreadable.
qint64 repeatCount(const QXmlStreamAttributes &attributes, QLatin1String name)
{
    bool ok = false;
    const qint64 count = attributes.value(tableNamespace, name).toLongLong(&ok);
    return ok && count >= 1 ? std::min(count, maxRepeat) : 1;
}

bool holdsValue(const SheetCell &cell)
{
    return cell.kind != SheetCell::Kind::Empty
        && !(cell.kind == SheetCell::Kind::Text && cell.text.isEmpty());
}

// A cell's text as it is built: past the longest cell allowed, the rest is left out (the cell
// is refused anyway), so that a text:s of a billion spaces costs nothing.
class CellText
{
public:
    // Spaces, tabs and line breaks written as elements, kept as they are.
    void append(QChar c, qint64 count = 1)
    {
        m_text += QString(qsizetype(std::min<qint64>(count, room())), c);
        m_lastWasCollapsedSpace = false;
    }
    // Character data of a paragraph: its runs of white space show as one space, even across
    // spans.
    void appendCharacters(QStringView characters)
    {
        for (const QChar c : characters) {
            if (room() == 0)
                return;
            const bool space = c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
            if (space && m_lastWasCollapsedSpace)
                continue;
            m_text += space ? QChar(u' ') : c;
            m_lastWasCollapsedSpace = space;
        }
    }
    QString take() { return std::move(m_text); }

private:
    qsizetype room() const
    {
        return std::max<qsizetype>(0, SheetLimits::maxCellChars + 1 - m_text.size());
    }

    QString m_text;
    bool m_lastWasCollapsedSpace = false;
};

// The text of a paragraph (text:p or text:h), the reader on its start: its spans and links,
// text:s spaces, tabs and line breaks; notes, annotations and drawings left out.
void readParagraph(QXmlStreamReader &xml, CellText &text)
{
    int depth = 0;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::Characters) {
            text.appendCharacters(xml.text());
        } else if (token == QXmlStreamReader::StartElement) {
            const bool inText = xml.namespaceUri() == textNamespace;
            if (inText && xml.name() == u"s") {
                bool ok = false;
                const qint64 count =
                    xml.attributes().value(textNamespace, QLatin1String("c")).toLongLong(&ok);
                text.append(u' ', ok && count >= 1 ? count : 1);
                xml.skipCurrentElement();
            } else if (inText && xml.name() == u"tab") {
                text.append(u'\t');
                xml.skipCurrentElement();
            } else if (inText && xml.name() == u"line-break") {
                text.append(u'\n');
                xml.skipCurrentElement();
            } else if (!inText || xml.name() == u"note" || xml.name() == u"ruby-text") {
                xml.skipCurrentElement();
            } else {
                ++depth; // a span, a link, a field: its text counts
            }
        } else if (token == QXmlStreamReader::EndElement) {
            if (depth-- == 0)
                return;
        }
    }
}

// A cell's paragraphs joined by "\n", the reader on the cell's start, read to its end.
QString readParagraphs(QXmlStreamReader &xml)
{
    CellText text;
    bool first = true;
    while (xml.readNextStartElement()) {
        if (isElement(xml, textNamespace, QLatin1String("p"))
            || isElement(xml, textNamespace, QLatin1String("h"))) {
            if (!first)
                text.append(u'\n');
            first = false;
            readParagraph(xml, text);
        } else {
            xml.skipCurrentElement(); // an annotation, a drawing
        }
    }
    return text.take();
}

// A table-cell's value, the reader on its start, read to its end. The value attributes win
// over the text the cell shows; a value that cannot be read leaves the text.
SheetCell readCell(QXmlStreamReader &xml)
{
    const QXmlStreamAttributes attributes = xml.attributes();
    const QStringView type = attributes.value(officeNamespace, QLatin1String("value-type"));
    const bool isError =
        attributes.value(calcExtensionNamespace, QLatin1String("value-type")) == u"error";
    std::optional<SheetCell> value;
    if (isError) {
        // An error's value is a placeholder; the cell shows "#DIV/0!", "Err:502"...
    } else if (type == u"float" || type == u"percentage" || type == u"currency") {
        bool ok = false;
        const double number =
            attributes.value(officeNamespace, QLatin1String("value")).toDouble(&ok);
        if (ok && std::isfinite(number))
            value = numberCell(number, false);
    } else if (type == u"date") {
        if (const auto serial = SheetSerial::fromDateTime(
                attributes.value(officeNamespace, QLatin1String("date-value"))))
            value = numberCell(*serial, true);
    } else if (type == u"time") {
        if (const auto serial = SheetSerial::fromDuration(
                attributes.value(officeNamespace, QLatin1String("time-value"))))
            value = numberCell(*serial, true);
    } else if (type == u"boolean") {
        const QStringView flag = attributes.value(officeNamespace, QLatin1String("boolean-value"));
        if (flag == u"true" || flag == u"false")
            value = SheetCell{SheetCell::Kind::Boolean, {}, flag == u"true" ? 1.0 : 0.0};
    } else if (type == u"string"
               && !attributes.value(officeNamespace, QLatin1String("string-value")).isNull()) {
        QString text = attributes.value(officeNamespace, QLatin1String("string-value")).toString();
        if (text.size() > SheetLimits::maxCellChars)
            text.truncate(SheetLimits::maxCellChars + 1);
        value = SheetCell{SheetCell::Kind::Text, text};
    }
    if (value) {
        xml.skipCurrentElement();
        return *value;
    }
    return SheetCell{SheetCell::Kind::Text, readParagraphs(xml)};
}

class ContentParser
{
public:
    ContentParser(QXmlStreamReader &xml, SheetGrid &grid) : m_xml(xml), m_grid(grid) {}

    // Reads the rows of the table the reader is on, to its end (or to the first limit passed).
    void readTable()
    {
        int depth = 0;
        while (!m_xml.atEnd() && !m_grid.failed()) {
            const QXmlStreamReader::TokenType token = m_xml.readNext();
            if (token == QXmlStreamReader::StartElement) {
                if (isElement(m_xml, tableNamespace, QLatin1String("table-row")))
                    readRow();
                else if (isElement(m_xml, tableNamespace, QLatin1String("table-header-rows"))
                         || isElement(m_xml, tableNamespace, QLatin1String("table-row-group"))
                         || isElement(m_xml, tableNamespace, QLatin1String("table-rows")))
                    ++depth; // rows grouped: they are the table's rows all the same
                else
                    m_xml.skipCurrentElement(); // columns, shapes, forms
            } else if (token == QXmlStreamReader::EndElement && depth-- == 0) {
                return;
            }
        }
    }

private:
    void readRow()
    {
        const qint64 rows = repeatCount(m_xml.attributes(), QLatin1String("number-rows-repeated"));
        qint64 column = 0;
        while (!m_grid.failed() && m_xml.readNextStartElement()) {
            const qint64 columns =
                repeatCount(m_xml.attributes(), QLatin1String("number-columns-repeated"));
            if (isElement(m_xml, tableNamespace, QLatin1String("table-cell"))) {
                const SheetCell cell = readCell(m_xml);
                if (holdsValue(cell))
                    place(cell, rows, column, columns);
            } else if (isElement(m_xml, tableNamespace, QLatin1String("covered-table-cell"))) {
                m_grid.addCovered(m_row, column, m_row + rows - 1, column + columns - 1);
                m_xml.skipCurrentElement();
            } else {
                m_xml.skipCurrentElement();
                continue;
            }
            column += columns;
        }
        m_row += rows;
    }

    // A value repeated over rows and columns: placed until a limit stops it.
    void place(const SheetCell &cell, qint64 rows, qint64 column, qint64 columns)
    {
        for (qint64 row = m_row; row < m_row + rows; ++row)
            for (qint64 at = column; at < column + columns; ++at)
                if (!m_grid.set(row, at, cell))
                    return;
    }

    QXmlStreamReader &m_xml;
    SheetGrid &m_grid;
    qint64 m_row = 0;
};

SheetReadResult failure(const QString &message, const QStringList &sheetNames = {})
{
    SheetReadResult result;
    result.sheetNames = sheetNames;
    result.error = message;
    return result;
}

QString messageFor(ZipArchive::Status status)
{
    return status == ZipArchive::Status::TooBig ? SheetMessages::partTooBig()
                                                : SheetMessages::notReadable();
}

} // namespace

SheetReadResult OdsReader::read(QIODevice &archive, const std::optional<QString> &sheet)
{
    const ZipArchive zip(archive);
    if (!zip.isOpen())
        return failure(SheetMessages::notReadable());
    const QString manifestPart = QStringLiteral("META-INF/manifest.xml");
    if (zip.contains(manifestPart)) {
        const ZipArchive::Entry manifest = zip.read(manifestPart);
        if (manifest.status != ZipArchive::Status::Ok)
            return failure(messageFor(manifest.status));
        if (isEncrypted(manifest.bytes))
            return failure(SheetMessages::passwordProtected());
    }
    const ZipArchive::Entry content = zip.read(QStringLiteral("content.xml"));
    if (content.status != ZipArchive::Status::Ok)
        return failure(messageFor(content.status));

    QBuffer buffer;
    buffer.setData(content.bytes);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&buffer);
    SheetGrid grid;
    ContentParser parser(xml, grid);
    QStringList names;
    std::optional<QString> chosen;
    bool inSpreadsheet = false; // tables elsewhere are a text document's
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::EndElement
            && isElement(xml, officeNamespace, QLatin1String("spreadsheet"))) {
            inSpreadsheet = false;
        } else if (token != QXmlStreamReader::StartElement) {
            continue;
        } else if (isElement(xml, officeNamespace, QLatin1String("spreadsheet"))) {
            inSpreadsheet = true;
        } else if (inSpreadsheet && isElement(xml, tableNamespace, QLatin1String("table"))) {
            const QString name =
                xml.attributes().value(tableNamespace, QLatin1String("name")).toString();
            names.append(name);
            if (!chosen && (!sheet || name == *sheet)) {
                chosen = name;
                parser.readTable();
            } else {
                xml.skipCurrentElement(); // only named
            }
        }
    }
    if (xml.hasError() || names.isEmpty())
        return failure(SheetMessages::notReadable());
    if (!chosen)
        return failure(SheetMessages::noSuchSheet(*sheet), names);
    if (grid.failed())
        return failure(grid.error(), names);

    SheetReadResult result;
    result.sheetNames = names;
    result.table = grid.take(*chosen);
    return result;
}
