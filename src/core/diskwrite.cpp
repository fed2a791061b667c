#include "diskwrite.h"

#include <QFileDevice>
#include <QFileInfo>

#include <cerrno>
#include <unistd.h>

namespace DiskWrite {

QString reason(int error)
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
        return QStringLiteral("fichier ou dossier introuvable");
    case ENOTDIR:
        return QStringLiteral("un fichier occupe la place d'un dossier");
    case EISDIR:
        return QStringLiteral("un dossier porte ce nom");
    case ENAMETOOLONG:
        return QStringLiteral("nom de fichier trop long");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("trop de fichiers ouverts");
    case ELOOP:
        return QStringLiteral("trop de liens symboliques imbriqués");
    case EBUSY:
    case ETXTBSY:
        return QStringLiteral("fichier occupé par un autre programme");
    case EXDEV:
        return QStringLiteral("déplacement impossible d'un disque à un autre");
    case EEXIST:
        return QStringLiteral("un fichier porte déjà ce nom");
    case ENOTEMPTY:
        return QStringLiteral("dossier non vide");
    case ENODEV:
    case ENXIO:
        return QStringLiteral("disque débranché ou absent");
    case ESTALE:
    case ETIMEDOUT:
    case EHOSTDOWN:
    case EHOSTUNREACH:
        return QStringLiteral("disque réseau injoignable");
    case ENOMEM:
        return QStringLiteral("mémoire insuffisante");
    case EINVAL:
        return QStringLiteral("opération refusée par le système de fichiers");
    case 0:
        return QStringLiteral("erreur inconnue");
    default:
        // Never the system's own text: it is English on most machines.
        return QStringLiteral("erreur système n° %1").arg(error);
    }
}

QString openFailure(const QString &path, int error)
{
    if (!error) {
        const QFileInfo info(path);
        error = info.isDir() ? EISDIR : info.exists() ? EACCES : ENOENT;
    }
    return reason(error);
}

bool writeAll(QFileDevice &file, const QByteArray &bytes, QString *why)
{
    // errno is read right after the call that failed, before anything else may change it.
    auto fail = [&](int error) {
        if (why)
            *why = reason(error);
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
