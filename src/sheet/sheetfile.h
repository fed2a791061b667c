#pragma once

#include "sheettable.h"

#include <QByteArray>
#include <QString>

#include <optional>

// Reads a spreadsheet file whatever its name says, by what it holds: a zip package with
// xl/workbook.xml is an Excel workbook (XlsxReader), one with an OpenDocument spreadsheet's
// mimetype or a content.xml an .ods (OdsReader); an OLE compound file is refused with its
// reason (encrypted with a password, or the Excel 97–2003 format); any other text is a CSV or
// tab-separated export (CsvReader, the sheet named after the file). The sheet asked for by
// name, or the first; a CSV file has its one sheet, whatever is asked.
//
// A file past SheetLimits::maxFileBytes is refused before being read whole. On error the
// result holds one French sentence and an empty table.
namespace SheetFile {

SheetReadResult read(const QString &path, const std::optional<QString> &sheet = {});

// The same from the file's bytes; fileName (a path or a bare name) names a CSV file's sheet.
SheetReadResult readBytes(const QByteArray &bytes, const QString &fileName,
                          const std::optional<QString> &sheet = {});

} // namespace SheetFile
