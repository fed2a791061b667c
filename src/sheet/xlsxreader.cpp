#include "xlsxreader.h"

#include "sheetgrid.h"
#include "sheetmessages.h"
#include "xlsxsheet.h"
#include "xlsxstyles.h"
#include "ziparchive.h"

#include <QBuffer>
#include <QDir>
#include <QHash>
#include <QUrl>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

const QString workbookPart = QStringLiteral("xl/workbook.xml");
const QString workbookRelationshipsPart = QStringLiteral("xl/_rels/workbook.xml.rels");

// The sheets the workbook lists, in its order, each with the relationship naming its part.
struct Workbook {
    QStringList sheetNames;
    QStringList relationshipIds;
    bool date1904 = false;
};

// A part the workbook refers to: its type (a URI) and its name in the package.
struct Relationship {
    QString type;
    QString part;
};

std::optional<Workbook> parseWorkbook(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&buffer);
    Workbook workbook;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (xml.name() == u"workbookPr") {
            const QString flag = attributes.value(QLatin1String("date1904")).toString().toLower();
            workbook.date1904 = flag == u"1" || flag == u"true" || flag == u"on";
        } else if (xml.name() == u"sheet") {
            // r:id, whatever the prefix of the relationships namespace.
            QString id;
            for (const QXmlStreamAttribute &attribute : attributes)
                if (attribute.name() == u"id" && !attribute.namespaceUri().isEmpty())
                    id = attribute.value().toString();
            workbook.sheetNames.append(attributes.value(QLatin1String("name")).toString());
            workbook.relationshipIds.append(id);
        }
    }
    if (xml.hasError())
        return std::nullopt;
    return workbook;
}

// A relationship's target as a part name: absolute from the package's root ("/xl/…"), or
// relative to the folder of the part that refers to it ("worksheets/sheet1.xml").
QString partName(const QString &folder, const QString &target)
{
    QString path = QUrl::fromPercentEncoding(target.toUtf8());
    path.replace(u'\\', u'/');
    path = path.startsWith(u'/') ? path.mid(1) : folder + u'/' + path;
    return QDir::cleanPath(path);
}

QHash<QString, Relationship> parseRelationships(const QByteArray &bytes, const QString &folder)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader xml(&buffer);
    QHash<QString, Relationship> relationships;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"Relationship")
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (attributes.value(QLatin1String("TargetMode")) == u"External")
            continue;
        relationships.insert(
            attributes.value(QLatin1String("Id")).toString(),
            {attributes.value(QLatin1String("Type")).toString(),
             partName(folder, attributes.value(QLatin1String("Target")).toString())});
    }
    return relationships;
}

// The part of a relationship type (styles, shared strings), or where Excel puts it.
QString partOfType(const QHash<QString, Relationship> &relationships, QStringView typeEnd,
                   const QString &usualPart)
{
    for (const Relationship &relationship : relationships)
        if (relationship.type.endsWith(typeEnd))
            return relationship.part;
    return usualPart;
}

QString messageFor(ZipArchive::Status status)
{
    return status == ZipArchive::Status::TooBig ? SheetMessages::partTooBig()
                                                : SheetMessages::notReadable();
}

SheetReadResult failure(const QString &message, const QStringList &sheetNames = {})
{
    SheetReadResult result;
    result.sheetNames = sheetNames;
    result.error = message;
    return result;
}

} // namespace

SheetReadResult XlsxReader::read(QIODevice &archive, const std::optional<QString> &sheet)
{
    const ZipArchive zip(archive);
    if (!zip.isOpen())
        return failure(SheetMessages::notReadable());
    ZipArchive::Entry entry = zip.read(workbookPart);
    if (entry.status != ZipArchive::Status::Ok)
        return failure(messageFor(entry.status));
    const std::optional<Workbook> workbook = parseWorkbook(entry.bytes);
    if (!workbook || workbook->sheetNames.isEmpty())
        return failure(SheetMessages::notReadable());
    const QStringList &names = workbook->sheetNames;

    entry = zip.read(workbookRelationshipsPart);
    if (entry.status == ZipArchive::Status::TooBig)
        return failure(SheetMessages::partTooBig());
    const QHash<QString, Relationship> relationships =
        parseRelationships(entry.bytes, QStringLiteral("xl"));

    const qsizetype chosen = sheet ? names.indexOf(*sheet) : 0;
    if (chosen < 0)
        return failure(SheetMessages::noSuchSheet(*sheet), names);
    const auto sheetRelationship = relationships.constFind(workbook->relationshipIds[chosen]);
    if (sheetRelationship == relationships.cend())
        return failure(SheetMessages::notReadable());

    XlsxSheet::Format format;
    format.date1904 = workbook->date1904;
    const QString stylesPart =
        partOfType(relationships, u"/styles", QStringLiteral("xl/styles.xml"));
    if (zip.contains(stylesPart)) {
        entry = zip.read(stylesPart);
        if (entry.status != ZipArchive::Status::Ok)
            return failure(messageFor(entry.status));
        format.styleKinds = XlsxStyles::cellStyleKinds(entry.bytes);
    }

    SheetGrid grid;
    XlsxSheet::SharedStringCells sharedStringCells;
    entry = zip.read(sheetRelationship->part);
    if (entry.status != ZipArchive::Status::Ok)
        return failure(messageFor(entry.status));
    const bool wellFormed = XlsxSheet::readCells(entry.bytes, format, grid, sharedStringCells);
    entry = {};
    if (grid.failed())
        return failure(grid.error(), names);
    if (!wellFormed)
        return failure(SheetMessages::notReadable());

    if (!sharedStringCells.isEmpty()) {
        QList<qint64> indexes(sharedStringCells.cbegin(), sharedStringCells.cend());
        std::sort(indexes.begin(), indexes.end());
        indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
        QHash<qint64, QString> strings;
        const QString stringsPart =
            partOfType(relationships, u"/sharedStrings", QStringLiteral("xl/sharedStrings.xml"));
        if (zip.contains(stringsPart)) {
            entry = zip.read(stringsPart);
            if (entry.status != ZipArchive::Status::Ok)
                return failure(messageFor(entry.status));
            std::optional<QHash<qint64, QString>> read =
                XlsxSheet::readSharedStrings(entry.bytes, indexes);
            if (!read)
                return failure(SheetMessages::notReadable());
            strings = std::move(*read);
        }
        XlsxSheet::placeSharedStrings(sharedStringCells, strings, grid);
        if (grid.failed())
            return failure(grid.error(), names);
    }

    SheetReadResult result;
    result.sheetNames = names;
    result.table = grid.take(names[chosen]);
    return result;
}
