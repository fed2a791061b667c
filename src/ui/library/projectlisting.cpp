#include "projectlisting.h"

#include <QFileInfo>
#include <QThreadPool>

#include <algorithm>

namespace {

// Reads the entries of `paths` into `metas`, on a few threads at once: a library of thousands
// of projects is mostly waiting on the disk, file after file. The caller waits for all of them.
void readInParallel(const SessionStore &store, const QStringList &paths, QList<ProjectMeta> &metas)
{
    constexpr qsizetype perTask = 64;
    if (paths.size() <= perTask) {
        for (qsizetype i = 0; i < paths.size(); ++i)
            metas[i] = store.meta(paths[i]);
        return;
    }
    QThreadPool pool;
    pool.setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
    for (qsizetype first = 0; first < paths.size(); first += perTask) {
        const qsizetype last = std::min(paths.size(), first + perTask);
        pool.start([&store, &paths, &metas, first, last] {
            for (qsizetype i = first; i < last; ++i)
                metas[i] = store.meta(paths[i]); // each task writes its own slots only
        });
    }
    pool.waitForDone();
}

} // namespace

QList<ProjectMeta> ProjectListing::read()
{
    const QStringList paths = m_store.listProjects();
    QHash<QString, Known> known;
    known.reserve(paths.size());
    QList<ProjectMeta> entries(paths.size());
    QStringList toRead;
    QList<qsizetype> rowsToRead;
    for (qsizetype row = 0; row < paths.size(); ++row) {
        const QString &path = paths[row];
        const QFileInfo info(path);
        Known now{info.lastModified(), info.metadataChangeTime(), info.size(), {}};
        const auto before = m_known.constFind(path);
        if (before != m_known.cend() && before->modified == now.modified
            && before->changed == now.changed && before->size == now.size && now.modified.isValid()) {
            entries[row] = before->meta;
        } else {
            toRead << path;
            rowsToRead << row;
        }
        known.insert(path, now);
    }
    QList<ProjectMeta> read(toRead.size());
    readInParallel(m_store, toRead, read);
    for (qsizetype i = 0; i < toRead.size(); ++i)
        entries[rowsToRead[i]] = read[i];
    for (qsizetype row = 0; row < paths.size(); ++row)
        known[paths[row]].meta = entries[row];
    m_known = std::move(known);
    return entries;
}
