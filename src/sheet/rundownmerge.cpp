#include "rundownmerge.h"

#include <QTime>

#include <algorithm>
#include <vector>

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

// The show's cue with the sheet's planned fields: its identity, its log, and what no sheet
// carries (its fixed start, its triggers) stay.
Cue updated(const Cue &show, const Cue &sheet, const QTimeZone &zone)
{
    Cue cue = sheet;
    cue.id = show.id;
    cue.actualElapsed = show.actualElapsed;
    cue.overtime = show.overtime;
    cue.fixedStart = show.fixedStart;
    cue.triggers = show.triggers;
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

// The positions of `values` that are not on one longest increasing run of them: the fewest
// to move so that the rest stand in order.
std::vector<bool> offLongestRun(const QList<qsizetype> &values)
{
    QList<qsizetype> tails;        // tails[k]: position ending the best run of length k + 1
    QList<qsizetype> before(values.size(), -1);
    for (qsizetype i = 0; i < values.size(); ++i) {
        const auto at = std::lower_bound(tails.begin(), tails.end(), values[i],
                                         [&values](qsizetype tail, qsizetype v) { return values[tail] < v; });
        if (at != tails.begin())
            before[i] = *(at - 1);
        if (at == tails.end())
            tails.append(i);
        else
            *at = i;
    }
    std::vector<bool> off(values.size(), true);
    for (qsizetype i = tails.isEmpty() ? -1 : tails.last(); i >= 0; i = before[i])
        off[i] = false;
    return off;
}

} // namespace

QString RundownMerge::counts() const
{
    QStringList parts;
    for (const auto &[n, participle] : {std::pair{changed, "modifié"}, std::pair{added, "ajouté"},
                                        std::pair{removed, "supprimé"},
                                        std::pair{moved, "déplacé"}}) {
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
    QList<qsizetype> matchOf(sheet.size(), -1); // the show cue each row stays, or -1
    for (qsizetype row = 0; row < sheet.size(); ++row) {
        for (qsizetype i = 0; i < show.size() && matchOf[row] < 0; ++i)
            if (!matched[i] && folded(show[i].name) == folded(sheet[row].name))
                matchOf[row] = i;
        if (matchOf[row] >= 0)
            matched[matchOf[row]] = true;
    }
    QList<qsizetype> kept;
    for (const qsizetype i : matchOf)
        if (i >= 0)
            kept.append(i);
    const std::vector<bool> movedKept = offLongestRun(kept);

    qsizetype keptIndex = 0;
    for (qsizetype row = 0; row < sheet.size(); ++row) {
        const Cue &cue = sheet[row];
        if (matchOf[row] < 0) {
            merge.cues.append(cue);
            merge.changes.append({RundownMerge::Change::Added, cue.name, {}});
            ++merge.added;
            continue;
        }
        const Cue &was = show[matchOf[row]];
        QStringList fields = differences(was, cue, zone);
        merge.cues.append(fields.isEmpty() ? was : updated(was, cue, zone));
        const bool moved = movedKept[keptIndex++];
        if (!fields.isEmpty()) {
            if (moved)
                fields.append(QStringLiteral("place"));
            merge.changes.append({RundownMerge::Change::Changed, cue.name, fields});
            ++merge.changed;
        } else if (moved) {
            merge.changes.append({RundownMerge::Change::Moved, cue.name, {}});
            ++merge.moved;
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
