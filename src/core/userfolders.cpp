#include "userfolders.h"

#include "diskwrite.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>

#include <cerrno>

namespace UserFolders {
namespace {

QString underDocuments(const char *relative)
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (documents.isEmpty())
        return {};
    return QDir(documents).filePath(QString::fromUtf8(relative));
}

} // namespace

QString projects()
{
    return underDocuments("Kairon/Projets");
}

QString reports()
{
    return underDocuments("Kairon/Reports");
}

bool ensure(const QString &path, QString *error)
{
    if (path.isEmpty()) {
        if (error)
            *error = QStringLiteral("aucun dossier Documents n'est défini pour cet utilisateur");
        return false;
    }
    if (QFileInfo(path).isDir() || QDir().mkpath(path))
        return true;
    if (error)
        *error = QStringLiteral("impossible de créer le dossier « %1 »").arg(QDir::toNativeSeparators(path));
    return false;
}

bool writeAtomically(const QString &path, const QByteArray &bytes, QString *error)
{
    QSaveFile file(path);
    QString reason;
    errno = 0;
    if (!file.open(QIODevice::WriteOnly)) {
        // QSaveFile refuses a folder or a read-only file by itself, with no errno to read.
        int cause = errno;
        if (!cause) {
            const QFileInfo existing(path);
            cause = existing.isDir() ? EISDIR : existing.exists() ? EACCES : 0;
        }
        reason = DiskWrite::reason(cause);
    } else if (DiskWrite::writeAll(file, bytes, &reason)) {
        errno = 0;
        if (file.commit())
            return true;
        reason = DiskWrite::reason(errno);
    }
    file.cancelWriting(); // the temporary goes, the previous file stays as it was
    if (error)
        *error = QStringLiteral("impossible d'écrire « %1 » (%2)")
                     .arg(QDir::toNativeSeparators(path), reason);
    return false;
}

void removeWriteLeftovers(const QString &folder, const QStringList &extensions, const QDateTime &now)
{
    if (folder.isEmpty() || extensions.isEmpty())
        return;
    static const QRegularExpression temporaryName(QStringLiteral("^.+\\.([^.]+)\\.[A-Za-z0-9]{6}$"));
    const QFileInfoList files =
        QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Unsorted);
    for (const QFileInfo &info : files) {
        const QRegularExpressionMatch match = temporaryName.match(info.fileName());
        if (!match.hasMatch() || !extensions.contains(match.captured(1)))
            continue;
        const QDateTime modified = info.lastModified();
        if (modified.isValid() && modified.secsTo(now) > 60)
            QFile::remove(info.filePath());
    }
}

QString fileNameSafe(QString text, bool replaceColons)
{
    text.replace(u'/', u'-');
    if (replaceColons)
        text.replace(u':', u'-');
    return text;
}

} // namespace UserFolders
