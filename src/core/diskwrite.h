#pragma once

#include <QByteArray>
#include <QString>

class QFileDevice;

// Writing a file so that a refusal of the disk is never missed. Qt buffers what is written
// and a QSaveFile commits even when pushing its buffer to the disk failed (a full disk then
// leaves an empty file in place of the old one): every write here is pushed, synced and its
// size checked before anyone may put the file in place.
namespace DiskWrite {

// The French reason for a failed file operation, from the errno it left (ENOSPC: "plus
// d'espace libre sur le disque", EACCES: "accès refusé"…); `qtText`, Qt's own errorString(),
// for any other, or when errno is 0.
QString reason(int error, const QString &qtText);

// Writes all of `bytes` into `file`, open for writing and empty, and pushes them to the disk.
// False, with the French reason in `reason`, when the disk refused any of it.
bool writeAll(QFileDevice &file, const QByteArray &bytes, QString *reason);

} // namespace DiskWrite
