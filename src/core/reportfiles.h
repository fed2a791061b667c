#pragma once

#include "timersession.h"

#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <optional>

// Why an export failed: a domain and a code for the program, a French description for the
// operator, fit to follow the caller's prefix ("Erreur export : …") and never empty.
struct ExportError {
    QString domain = QStringLiteral("Kairon");
    int code = 0;
    QString description;
};

// The files the exports write into Documents/Kairon/Reports.
namespace ReportFiles {

// "<prefix>_<the show's name, '/' made '-'>_<yyyy-MM-dd_HH-mm>.<extension>", the time of day in
// `zone`: two exports within the same minute write the same file.
QString fileName(const QString &prefix, const TimerSession &session, const QDateTime &now,
                 const QTimeZone &zone, const QString &extension);

// Where such a file goes, the folder created with its parents; nothing, with the error
// (code 2), when the folder cannot be made.
std::optional<QString> pathFor(const QString &fileName, ExportError *error);

} // namespace ReportFiles
