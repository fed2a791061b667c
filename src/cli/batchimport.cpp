#include "batchimport.h"

#include "linkedrundown.h"
#include "projectdocument.h"
#include "rundownimport.h"
#include "sheetfile.h"
#include "userfolders.h"

#include <QFileInfo>

#include <cstdio>

namespace BatchImport {

int run(const CommandLine &commandLine)
{
    QTextStream out(stdout);
    QTextStream err(stderr);
    return run(commandLine, QDateTime::currentDateTimeUtc(), QTimeZone::systemTimeZone(), out, err);
}

int run(const CommandLine &commandLine, const QDateTime &now, const QTimeZone &zone,
        QTextStream &out, QTextStream &err)
{
    const QString &file = commandLine.importFile;
    const auto failure = [&err](const QString &where, const QString &what) {
        err << "kairon : " << where << " : " << what << '\n';
        err.flush();
        return 1;
    };
    const std::optional<QString> sheet =
        commandLine.sheet.isEmpty() ? std::nullopt : std::optional(commandLine.sheet);
    const SheetReadResult read = SheetFile::read(file, sheet);
    if (!read.ok())
        return failure(file, read.error);
    const ImportPreview preview =
        RundownImport::preview(read.table, ImportContext{now.toTimeZone(zone).date(), zone});
    if (!preview.error.isEmpty())
        return failure(file, preview.error);

    int problems = 0;
    for (const ImportRow &row : preview.rows) {
        if (!row.problem.isEmpty() && !row.notACue) {
            ++problems;
            failure(QStringLiteral("%1, ligne %2").arg(file).arg(row.line), row.problem);
        }
    }
    if (problems)
        return failure(file, problems == 1 ? QStringLiteral("1 problème, aucun projet écrit.")
                                           : QStringLiteral("%1 problèmes, aucun projet écrit.").arg(problems));
    if (preview.cueCount() == 0)
        return failure(file, QStringLiteral("aucun cue à importer, aucun projet écrit."));

    TimerSession session(now);
    session.name = QFileInfo(file).completeBaseName();
    session.cues = preview.cues();
    session.linkedSpreadsheet = LinkedRundown::linkFor(file, read.table.sheetName, {});
    QString error;
    const std::optional<QByteArray> bytes = ProjectDocument::encode(session, &error);
    if (!bytes)
        return failure(commandLine.output, error);
    if (!UserFolders::writeAtomically(commandLine.output, *bytes, &error))
        return failure(commandLine.output, error);
    out << (preview.cueCount() == 1 ? QStringLiteral("1 cue importé")
                                    : QStringLiteral("%1 cues importés").arg(preview.cueCount()))
        << " de « " << file << " » (feuille « " << read.table.sheetName << " ») dans « "
        << commandLine.output << " ».\n";
    out.flush();
    return 0;
}

} // namespace BatchImport
