#pragma once

#include "timersession.h"

#include <QString>

// One entry of the project library listing.
struct ProjectMeta {
    QString id;   // the project file's path, also its identity in the list
    QString name; // the show's name; the file name without extension when unreadable
    QString detail; // "client · salle · date · régie : … · 3 cues · 1:05:00", or "fichier illisible"

    // The detail line of a readable show: its metadata summary, "régie : " and the operator,
    // the number of cues (plural from 2: "0 cue", "1 cue", "2 cues") and their total duration.
    static QString detailOf(const TimerSession &session);

    bool operator==(const ProjectMeta &) const = default;
};
