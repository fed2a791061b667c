#include "reportexporter.h"

#include "formatters.h"
#include "internetdate.h"
#include "userfolders.h"


#include <cmath>

namespace ReportExporter {
namespace {

// The values come from the engine and are finite; anything else reads as zero rather than
// stopping the program in the middle of a show.
qint64 truncated(double seconds)
{
    return std::isfinite(seconds) && std::fabs(seconds) < 9.2e18 ? qint64(seconds) : 0;
}

} // namespace

QString escape(const QString &text)
{
    if (!text.contains(u';') && !text.contains(u'"') && !text.contains(u'\n') && !text.contains(u'\r'))
        return text;
    QString quoted = text;
    quoted.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QString fmt(double seconds)
{
    const qint64 s = std::isfinite(seconds) && std::fabs(seconds) < 9.2e18 ? std::llround(seconds) : 0;
    const qint64 magnitude = s < 0 ? -s : s;
    return QString::asprintf("%s%02lld:%02lld:%02lld", s < 0 ? "-" : "", magnitude / 3600,
                             (magnitude % 3600) / 60, magnitude % 60);
}

QString wholeSeconds(double seconds)
{
    return QString::number(truncated(seconds));
}

QString fileName(const TimerSession &session, const QDateTime &now, const QTimeZone &zone)
{
    return ReportFiles::fileName(QStringLiteral("Rapport"), session, now, zone, QStringLiteral("csv"));
}

QString reportText(const TimerSession &session, const QList<CueLogEntry> &log,
                   double totalOvertime, const QDateTime &now, const QLocale &locale,
                   const QTimeZone &zone)
{
    QString text = QStringLiteral("RAPPORT DE SESSION — Kairon / Orv Audiovisual\n");
    text += QStringLiteral("Projet;") + escape(session.name) + u'\n';
    auto optionalLine = [&](const char *label, const std::optional<QString> &value) {
        if (value && !value->isEmpty())
            text += QString::fromUtf8(label) + escape(*value) + u'\n';
    };
    optionalLine("Client;", session.client);
    optionalLine("Salle;", session.venue);
    optionalLine("Opérateur;", session.operatorName);
    if (session.eventDate)
        text += QStringLiteral("Date événement;")
                + locale.toString(session.eventDate->toTimeZone(zone).date(), QLocale::LongFormat)
                + u'\n';
    text += u'\n';
    text += QStringLiteral("Cue;Prévu (s);Prévu;Réel (s);Réel;Dépassement (s);Dépassement\n");
    for (const CueLogEntry &entry : log) {
        text += escape(entry.cue) + u';' + wholeSeconds(entry.planned) + u';' + fmt(entry.planned)
                + u';' + wholeSeconds(entry.actual) + u';' + fmt(entry.actual) + u';'
                + wholeSeconds(entry.overtime) + u';' + fmt(entry.overtime) + u'\n';
    }
    text += u'\n';
    text += QStringLiteral("TOTAL DÉPASSEMENT;;;;;") + wholeSeconds(totalOvertime) + u';'
            + fmt(totalOvertime) + u'\n';
    text += QStringLiteral("Généré par Kairon — Orv Audiovisual;") + InternetDate::format(now) + u'\n';
    return text;
}

std::optional<QString> exportCSV(const TimerSession &session, const QList<CueLogEntry> &log,
                                 double totalOvertime, ExportError *error)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const std::optional<QString> target = ReportFiles::pathFor(fileName(session, now, Fmt::timeZone()), error);
    if (!target)
        return std::nullopt;
    const QString &path = *target;
    const QByteArray bytes =
        reportText(session, log, totalOvertime, now, Fmt::locale(), Fmt::timeZone()).toUtf8();
    QString reason;
    if (!UserFolders::writeAtomically(path, bytes, &reason)) {
        if (error)
            *error = ExportError{QStringLiteral("Kairon"), 3, reason};
        return std::nullopt;
    }
    return path;
}

} // namespace ReportExporter
