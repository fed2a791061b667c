#include "sessionstore.h"

#include "diskwrite.h"
#include "projectdocument.h"
#include "userfolders.h"
#include "uuidtext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>

namespace {

QString quoted(const QString &path)
{
    return QStringLiteral("« %1 »").arg(QDir::toNativeSeparators(path));
}

} // namespace

QString SessionStore::folder() const
{
    const QString path = UserFolders::projects();
    UserFolders::ensure(path);
    return path;
}

QString SessionStore::fileOf(const QUuid &id) const
{
    return QDir(folder()).filePath(UuidText::canonical(id) + u'.' + extension);
}

std::optional<QString> SessionStore::save(const TimerSession &session, QString *error) const
{
    const std::optional<QByteArray> bytes = ProjectDocument::encode(session, error);
    if (!bytes)
        return std::nullopt;
    const QString path = fileOf(session.id);
    if (!UserFolders::writeAtomically(path, *bytes, error))
        return std::nullopt;
    return path;
}

std::optional<QDateTime> SessionStore::modDate(const QString &path)
{
    return modDate(QFileInfo(path));
}

std::optional<QDateTime> SessionStore::modDate(const QFileInfo &info)
{
    // A dangling link or a file gone meanwhile has no date to read.
    const QDateTime date = info.exists() ? info.lastModified() : QDateTime();
    return date.isValid() ? std::optional(date) : std::nullopt;
}

QStringList SessionStore::listProjects() const
{
    const QDir dir(folder());
    if (!dir.exists())
        return {};
    struct Entry {
        QString path;
        std::optional<QDateTime> date;
    };
    UserFolders::removeWriteLeftovers(dir.path(), {extension}, m_clock.now());
    std::vector<Entry> entries;
    const QFileInfoList infos =
        dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Unsorted);
    for (const QFileInfo &info : infos) {
        if (info.suffix() != extension)
            continue;
        entries.push_back({info.filePath(), modDate(info)});
    }
    // Newest first; an unreadable date counts as the most distant past.
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
        if (!a.date || !b.date)
            return a.date.has_value() && !b.date.has_value();
        return *a.date > *b.date;
    });
    QStringList paths;
    paths.reserve(qsizetype(entries.size()));
    for (const Entry &e : entries)
        paths << e.path;
    return paths;
}

std::optional<TimerSession> SessionStore::read(const QString &path, QString *error) const
{
    QFile file(path);
    errno = 0;
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("impossible de lire %1 (%2)")
                         .arg(quoted(path), DiskWrite::openFailure(path, errno));
        return std::nullopt;
    }
    return ProjectDocument::decode(file.readAll(), m_clock.now(), error);
}

ProjectMeta SessionStore::meta(const QString &path) const
{
    if (const std::optional<TimerSession> session = read(path))
        return {path, session->name, ProjectMeta::detailOf(*session)};
    return {path, QFileInfo(path).completeBaseName(), QStringLiteral("fichier illisible")};
}

std::optional<QString> SessionStore::rename(const QString &path, const QString &newName,
                                            QString *error) const
{
    std::optional<TimerSession> session = read(path, error);
    if (!session)
        return std::nullopt;
    session->name = newName;
    session->updatedAt = m_clock.now();
    return saveInPlaceOf(path, *session, error);
}

std::optional<QString> SessionStore::adopt(const QString &path, const TimerSession &session,
                                           QString *error) const
{
    const QFileInfo opened(path);
    const bool inLibrary = QFileInfo(opened.absolutePath()) == QFileInfo(folder());
    if (!inLibrary || opened.fileName() == QFileInfo(fileOf(session.id)).fileName())
        return path;
    return saveInPlaceOf(path, session, error);
}

std::optional<QString> SessionStore::saveInPlaceOf(const QString &path, const TimerSession &session,
                                                   QString *error) const
{
    const std::optional<QString> saved = save(session, error);
    if (!saved)
        return std::nullopt;
    // The show is now in its own file; the old one goes to the Trash, never erased.
    if (QFileInfo(*saved) != QFileInfo(path) && !deleteProject(path, error))
        return std::nullopt;
    return saved;
}

bool SessionStore::deleteProject(const QString &path, QString *error) const
{
    // Without the data folder Qt cannot find the Trash, yet reports success after moving the
    // file under the current directory: make sure the folder is there, and check where the
    // file went.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QString inTrash;
    if (!QFileInfo::exists(path)) {
        if (error)
            *error = QStringLiteral("le fichier %1 n'existe plus").arg(quoted(path));
        return false;
    }
    if (!QFile::moveToTrash(path, &inTrash) || !QFileInfo(inTrash).isAbsolute()) {
        if (error)
            *error = QStringLiteral("impossible de mettre %1 à la corbeille").arg(quoted(path));
        return false;
    }
    return true;
}

std::optional<QString> SessionStore::duplicate(const QString &path, QString *error) const
{
    std::optional<TimerSession> copy = read(path, error);
    if (!copy)
        return std::nullopt;
    copy->id = QUuid::createUuid();
    copy->name += QStringLiteral(" copie");
    copy->createdAt = copy->updatedAt = m_clock.now();
    return save(*copy, error);
}

std::optional<TimerSession> SessionStore::importFrom(const QString &path) const
{
    std::optional<TimerSession> session = read(path);
    if (session)
        save(*session);
    return session;
}

void SessionStore::exportTo(const TimerSession &session, const QString &path) const
{
    if (const std::optional<QByteArray> bytes = ProjectDocument::encode(session))
        UserFolders::writeAtomically(path, *bytes);
}

QString SessionStore::exportFileName(const TimerSession &session)
{
    return UserFolders::fileNameSafe(session.name, true) + u'.' + extension;
}
