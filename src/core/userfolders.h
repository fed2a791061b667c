#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

// The user's folders Kairon keeps its files in, under the Documents folder of the platform.
namespace UserFolders {

// Documents/Kairon/Projets and Documents/Kairon/Reports. Empty when the platform reports no
// Documents folder at all.
QString projects();
QString reports();

// Creates `path` with every missing parent. False, with a French reason in `error`, when it
// cannot be made (a file stands in the way, the disk refuses).
bool ensure(const QString &path, QString *error = nullptr);

// Writes `bytes` to `path` atomically: a temporary file beside it, put in place only once the
// disk has taken every byte, so that the previous file survives any failure (a full disk
// included) and no temporary is left. False, with "impossible d'écrire « path » (reason)" in
// `error`, the reason in French ("plus d'espace libre sur le disque"…), when it cannot be done.
bool writeAtomically(const QString &path, const QByteArray &bytes, QString *error = nullptr);

// Removes from `folder` what interrupted atomic writes left behind: files named like a temporary
// copy of one of ours ("<name>.<extension>.XXXXXX", six letters or digits) for each of
// `extensions`, last modified more than a minute before `now`, so that a save still under way
// in another process is never touched.
void removeWriteLeftovers(const QString &folder, const QStringList &extensions, const QDateTime &now);

// A file name made of free text: every "/" becomes "-" (and every ":" too when asked), so that
// the text names one file in one folder.
QString fileNameSafe(QString text, bool replaceColons);

} // namespace UserFolders
