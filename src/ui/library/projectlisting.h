#pragma once

#include "projectmeta.h"
#include "sessionstore.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

// The listing entries of the project library in the store's order, newest first. A file is
// read again only when its size or one of its dates changed since the last listing, so that
// listing thousands of projects again after one of them changed costs a look at each file's
// dates, not a reading of every file.
class ProjectListing
{
public:
    explicit ProjectListing(const SessionStore &store) : m_store(store) {}

    QList<ProjectMeta> read();

private:
    struct Known {
        QDateTime modified;
        QDateTime changed; // of the file's metadata: a new file in place, new permissions
        qint64 size = -1;
        ProjectMeta meta;
    };

    const SessionStore &m_store;
    QHash<QString, Known> m_known; // by file path
};
