#include "rundownmerge.h"

#include <QTime>

namespace {

QString folded(const QString &name)
{
    return name.trimmed().toCaseFolded();
}

std::optional<QTime> endOf(const Cue &cue, const QTimeZone &zone)
{
    if (!cue.hardOutTime)
        return std::nullopt;
    const QTime time = cue.hardOutTime->toTimeZone(zone).time();
    return QTime(time.hour(), time.minute());
}

// The planned fields of `sheet` that differ from `show`'s, as the preview names them.
QStringList differences(const Cue &show, const Cue &sheet, const QTimeZone &zone)
{
    QStringList fields;
    const auto note = [&fields](bool differs, const char *field) {
        if (differs)
            fields.append(QString::fromUtf8(field));
    };
    note(show.name != sheet.name, "nom");
    note(show.speaker != sheet.speaker, "intervenant");
    note(show.duration != sheet.duration, "durée");
    note(show.mode != sheet.mode || endOf(show, zone) != endOf(sheet, zone), "fin");
    note(show.warningThreshold != sheet.warningThreshold, "alerte");
    note(show.dangerThreshold != sheet.dangerThreshold, "danger");
    note(show.autoFollow != sheet.autoFollow, "enchaînement");
    note(show.colorHex != sheet.colorHex, "couleur");
    note(show.notes != sheet.notes, "notes");
    return fields;
}

// The show's cue with the sheet's planned fields: its identity and its log stay.
Cue updated(const Cue &show, const Cue &sheet, const QTimeZone &zone)
{
    Cue cue = sheet;
    cue.id = show.id;
    cue.actualElapsed = show.actualElapsed;
    cue.overtime = show.overtime;
    // The same end time of day keeps the show's own date.
    if (show.hardOutTime && endOf(show, zone) == endOf(sheet, zone))
        cue.hardOutTime = show.hardOutTime;
    return cue;
}

QString count(int n, const char *participle, bool withNoun)
{
    QString text = QString::number(n) + u' ';
    if (withNoun)
        text += n == 1 ? QStringLiteral("cue ") : QStringLiteral("cues ");
    text += QString::fromUtf8(participle);
    if (n > 1)
        text += u's';
    return text;
}

} // namespace

QString RundownMerge::counts() const
{
    QStringList parts;
    for (const auto &[n, participle] : {std::pair{changed, "modifié"}, std::pair{added, "ajouté"},
                                        std::pair{removed, "supprimé"}}) {
        if (n > 0)
            parts.append(count(n, participle, parts.isEmpty()));
    }
    return parts.join(QStringLiteral(", "));
}

namespace RundownMerging {

RundownMerge merge(const QList<Cue> &show, const QList<Cue> &sheet, const QTimeZone &zone)
{
    RundownMerge merge;
    QList<bool> matched(show.size(), false);
    for (const Cue &row : sheet) {
        qsizetype found = -1;
        for (qsizetype i = 0; i < show.size() && found < 0; ++i)
            if (!matched[i] && folded(show[i].name) == folded(row.name))
                found = i;
        if (found < 0) {
            merge.cues.append(row);
            merge.changes.append({RundownMerge::Change::Added, row.name, {}});
            ++merge.added;
            continue;
        }
        matched[found] = true;
        const QStringList fields = differences(show[found], row, zone);
        merge.cues.append(fields.isEmpty() ? show[found] : updated(show[found], row, zone));
        if (!fields.isEmpty()) {
            merge.changes.append({RundownMerge::Change::Changed, row.name, fields});
            ++merge.changed;
        }
    }
    for (qsizetype i = 0; i < show.size(); ++i) {
        if (!matched[i]) {
            merge.changes.append({RundownMerge::Change::Removed, show[i].name, {}});
            ++merge.removed;
        }
    }
    return merge;
}

} // namespace RundownMerging
