#pragma once

#include "columnguess.h"
#include "cue.h"
#include "sheettable.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QString>
#include <QTimeZone>

#include <optional>

// One row of the sheet below the header and what it gives.
struct ImportRow {
    int line = 0;           // the sheet's line number, 1-based
    QString label;          // its name, or else its first text (a title's, a total's)
    std::optional<Cue> cue; // the cue it becomes; none when the row is left out
    QString problem;        // why it is left out, or what of it was not taken; empty if none
    bool notACue = false;   // left out as a total or a section title: no problem of the sheet
};

// Where an end time of day is placed: that time on `day` in `zone` (UTC when the zone is not
// valid). A time that the zone skips (a daylight saving change) moves forward by the gap.
struct ImportContext {
    QDate day;
    QTimeZone zone;
};

// What a sheet would import, to show before importing it.
struct ImportPreview {
    QString error;               // the sheet cannot be imported at all (no header...): French
    int headerLine = 0;          // 1-based; the last line of a two-line header; 0 for none
    QList<ImportColumn> columns; // every column of the header that has a header text
    QList<ImportRow> rows;       // every row after the header that is not blank

    int cueCount() const;
    int ignoredCount() const;
    // "18 cues, 2 lignes ignorées", "1 cue, 1 ligne ignorée", "18 cues" when none is
    // ignored, "Aucun cue" when there is none ("Aucun cue, 2 lignes ignorées").
    QString summary() const;
    QList<Cue> cues() const;
};

// Turns a producer's running order sheet into cues.
//
// The header row is found by itself (ColumnGuess::findHeader) and each column's meaning from
// its header text; `fieldByColumn` overrides it column by column (0 is column A), and may give
// a meaning to a column without a header text, which is then listed with an empty header.
//
// Each row after the header that is not blank becomes a cue or is left out with a reason:
// a total row, a section title (one cell merged across), an unreadable duration or end time,
// a date before 1900 in the duration or end time, or neither a duration nor an end time. A
// colour, threshold or auto-follow mark that cannot be read is left at the cue's default and
// noted. An end time makes a hard-out cue ending at that time on the context's day; its
// duration is the sheet's when given, else the cue's default (600 s), the length it runs when
// its end time is ever removed. A start time column is recognised but not taken: the show has
// no schedule. When several columns have the same meaning, the leftmost one is read, except
// notes, which are joined line by line. Every cue gets a fresh id.
namespace RundownImport {

// The meaning of a header text: compared trimmed, without case, accents, parenthesised parts
// ("Durée (min)") nor a trailing unit ("Durée en minutes"). Ignore for an unknown text.
ImportField fieldForHeader(const QString &header);
// The field's name for the column menus: "Ignorer", "Nom", "Durée"…
QString fieldLabel(ImportField field);

ImportPreview preview(const SheetTable &table, const ImportContext &context,
                      const QHash<int, ImportField> &fieldByColumn = {});

} // namespace RundownImport
