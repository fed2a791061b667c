#pragma once

#include "xlsxstyles.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

class SheetGrid;

// The parts of an .xlsx workbook that hold one sheet's cells: the worksheet, then the shared
// strings it refers to. Read with QXmlStreamReader, element names compared without their
// namespace (transitional and strict workbooks differ only there).
namespace XlsxSheet {

struct Format {
    QList<XlsxStyles::TimeKind> styleKinds; // by cell style index (the s attribute)
    bool date1904 = false; // the workbook counts days from 1904-01-01
};

// The shared strings a sheet's cells show: the string's index by cell place (row * 64 +
// column, so in reading order), to be looked up once the sheet is read.
using SharedStringCells = QMap<quint32, qint64>;

// Places the worksheet's values in grid (which stops at the first limit passed), marks its
// merged ranges, and lists the cells that show a shared string. False when the XML is not
// well-formed.
bool readCells(const QByteArray &worksheetXml, const Format &format, SheetGrid &grid,
               SharedStringCells &sharedStringCells);

// The shared strings of the indexes asked for, rich text runs joined, phonetic guides left
// out. An index the part does not reach is absent. nullopt when the XML is not well-formed.
std::optional<QHash<qint64, QString>> readSharedStrings(const QByteArray &sharedStringsXml,
                                                        const QList<qint64> &sortedIndexes);

// Places each shared-string cell's text in grid, in reading order; an index missing from
// strings shows nothing.
void placeSharedStrings(const SharedStringCells &cells, const QHash<qint64, QString> &strings,
                        SheetGrid &grid);

} // namespace XlsxSheet
