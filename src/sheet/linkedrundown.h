#pragma once

#include "linkedspreadsheet.h"
#include "rundownimport.h"

#include <QHash>

// A show's running order kept in step with the spreadsheet it was imported from: the link
// remembers the file, its sheet and the column meanings the operator chose in the preview, so
// that reading it again gives the same cues the import gave.
namespace LinkedRundown {

// The link for `path` (made absolute) read on `sheet` with these column choices.
LinkedSpreadsheet linkFor(const QString &path, const QString &sheet,
                          const QHash<int, ImportField> &fieldByColumn);
// The column choices a link keeps; a column or field it does not know is passed over.
QHash<int, ImportField> fieldsOf(const LinkedSpreadsheet &link);

// The key a field is kept under ("duration", "ignore"…), and back.
QString fieldKey(ImportField field);
std::optional<ImportField> fieldForKey(const QString &key);

// The file read again as the import read it: its cues, to lay over the show's with
// RundownMerging::merge.
struct Reading {
    QString error; // the file no longer reads, or has no header: one French sentence
    QList<Cue> cues;
};
Reading read(const LinkedSpreadsheet &link, const ImportContext &context);

} // namespace LinkedRundown
