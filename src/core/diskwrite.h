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
// d'espace libre sur le disque", EACCES: "accès refusé"…), never the system's own text, which
// is English on most machines: "erreur système n° N" for an errno without a sentence of its
// own, "erreur inconnue" for none.
QString reason(int error);
// The French reason why the file at `path` did not open, from the errno its open() left; when
// Qt refused it without asking the system (errno 0), from what is at that path.
QString openFailure(const QString &path, int error);

// Writes all of `bytes` into `file`, open for writing and empty, and pushes them to the disk.
// False, with the French reason in `reason`, when the disk refused any of it.
bool writeAll(QFileDevice &file, const QByteArray &bytes, QString *reason);

} // namespace DiskWrite
