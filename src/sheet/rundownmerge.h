#pragma once

#include "cue.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QTimeZone>

// A linked spreadsheet's running order laid over the show's. The sheet gives the order and
// every planned field; a show cue whose name a row carries again (the first one not matched
// yet, names compared trimmed and without case) stays that cue: its id, so the clock stays on
// it while it runs, and what the log filled in (actual time, overtime). Rows that match no cue
// are new cues; cues that no row matches are gone. Kept cues that the sheet puts in another
// order are moved: the fewest of them, those off the longest run already in order.
struct RundownMerge {
    struct Change {
        enum Kind { Added, Removed, Changed, Moved };
        Kind kind = Changed;
        QString name;
        // Changed: the fields that differ, as the preview names them ("durée"), and "place"
        // when the cue moved too.
        QStringList fields;
        bool operator==(const Change &) const = default;
    };

    QList<Cue> cues;       // the running order once updated
    QList<Change> changes; // in the sheet's order, the removed cues last
    int changed = 0;
    int added = 0;
    int removed = 0;
    int moved = 0; // moved and nothing else changed

    bool isEmpty() const { return changes.isEmpty(); }
    // "2 cues modifiés, 1 ajouté", "1 cue supprimé", "1 cue déplacé": the first count carries
    // the noun.
    QString counts() const;
};

namespace RundownMerging {

// End times are compared as times of day in `zone`: the sheet's are placed on the day it was
// read, the show's on the day they were set.
RundownMerge merge(const QList<Cue> &show, const QList<Cue> &sheet, const QTimeZone &zone);

} // namespace RundownMerging
