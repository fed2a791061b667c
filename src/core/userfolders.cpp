#include "userfolders.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

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
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    if (error)
        *error = QStringLiteral("impossible d'écrire « %1 » (%2)")
                     .arg(QDir::toNativeSeparators(path), file.errorString());
    file.cancelWriting();
    return false;
}

QString fileNameSafe(QString text, bool replaceColons)
{
    text.replace(u'/', u'-');
    if (replaceColons)
        text.replace(u':', u'-');
    return text;
}

} // namespace UserFolders
