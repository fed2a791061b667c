#include "reportfiles.h"

#include "userfolders.h"

#include <QDir>

namespace ReportFiles {

QString fileName(const QString &prefix, const TimerSession &session, const QDateTime &now,
                 const QTimeZone &zone, const QString &extension)
{
    // Only "/" is replaced: the name keeps its colons.
    return prefix + u'_' + UserFolders::fileNameSafe(session.name, false) + u'_'
           + now.toTimeZone(zone).toString(QStringLiteral("yyyy-MM-dd_HH-mm")) + u'.' + extension;
}

std::optional<QString> pathFor(const QString &fileName, ExportError *error)
{
    const QString folder = UserFolders::reports();
    QString reason;
    if (!UserFolders::ensure(folder, &reason)) {
        if (error)
            *error = ExportError{QStringLiteral("Kairon"), 2, reason};
        return std::nullopt;
    }
    // The reports folder is never listed: its leftovers go when the next export is written.
    UserFolders::removeWriteLeftovers(folder, {QStringLiteral("csv"), QStringLiteral("pdf")},
                                      QDateTime::currentDateTimeUtc());
    return QDir(folder).filePath(fileName);
}

} // namespace ReportFiles
