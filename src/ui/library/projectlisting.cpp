#include "projectlisting.h"

#include <QFileInfo>

QList<ProjectMeta> ProjectListing::read()
{
    const QStringList paths = m_store.listProjects();
    QHash<QString, Known> known;
    known.reserve(paths.size());
    QList<ProjectMeta> entries;
    entries.reserve(paths.size());
    for (const QString &path : paths) {
        const QFileInfo info(path);
        Known now{info.lastModified(), info.metadataChangeTime(), info.size(), {}};
        const auto before = m_known.constFind(path);
        if (before != m_known.cend() && before->modified == now.modified
            && before->changed == now.changed && before->size == now.size && now.modified.isValid())
            now.meta = before->meta;
        else
            now.meta = m_store.meta(path);
        entries << now.meta;
        known.insert(path, now);
    }
    m_known = std::move(known);
    return entries;
}
