#include "diskwrite.h"

#include <QFileDevice>

#include <cerrno>
#include <unistd.h>

namespace DiskWrite {

QString reason(int error, const QString &qtText)
{
    switch (error) {
    case ENOSPC:
        return QStringLiteral("plus d'espace libre sur le disque");
    case EDQUOT:
        return QStringLiteral("quota de disque dépassé");
    case EACCES:
    case EPERM:
        return QStringLiteral("accès refusé");
    case EROFS:
        return QStringLiteral("disque en lecture seule");
    case EIO:
        return QStringLiteral("erreur de lecture ou d'écriture du disque");
    case EFBIG:
        return QStringLiteral("fichier trop volumineux");
    case ENOENT:
        return QStringLiteral("dossier introuvable");
    case ENOTDIR:
        return QStringLiteral("un fichier occupe la place d'un dossier");
    case EISDIR:
        return QStringLiteral("un dossier porte ce nom");
    case ENAMETOOLONG:
        return QStringLiteral("nom de fichier trop long");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("trop de fichiers ouverts");
    default:
        return qtText.isEmpty() ? QStringLiteral("erreur inconnue") : qtText;
    }
}

bool writeAll(QFileDevice &file, const QByteArray &bytes, QString *why)
{
    // errno is read right after the call that failed, before anything else may change it.
    auto fail = [&](int error) {
        if (why)
            *why = reason(error, file.errorString());
        return false;
    };
    errno = 0;
    if (file.write(bytes) != bytes.size())
        return fail(errno);
    errno = 0;
    if (!file.flush())
        return fail(errno);
    // Some file systems (network ones, quotas) only refuse when the data reaches the disk;
    // EINVAL and EROFS here mean the file cannot be synced at all, which is no refusal.
    if (::fsync(file.handle()) != 0 && errno != EINVAL && errno != EROFS)
        return fail(errno);
    if (file.size() != bytes.size()) {
        if (why)
            *why = QStringLiteral("le disque n'a pas gardé tout le fichier");
        return false;
    }
    return true;
}

} // namespace DiskWrite
