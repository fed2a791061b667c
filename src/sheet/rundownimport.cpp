#include "rundownimport.h"

#include "sheetvalues.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

// The columns of each meaning, left to right.
using FieldColumns = QHash<ImportField, QList<int>>;

const SheetCell &cellAt(const QList<SheetCell> &row, int column)
{
    static const SheetCell empty;
    return column >= 0 && column < row.size() ? row[column] : empty;
}

// The cell of the leftmost column of `field`; an empty cell when there is none.
const SheetCell &fieldCell(const QList<SheetCell> &row, const FieldColumns &columns,
                           ImportField field)
{
    const QList<int> found = columns.value(field);
    return cellAt(row, found.isEmpty() ? -1 : found.first());
}

// The cell’s value as quoted in a message: « env. 10 min ».
QString quoted(const SheetCell &cell)
{
    return QStringLiteral("« %1 »").arg(SheetValues::displayText(cell).trimmed());
}

bool isBlankRow(const QList<SheetCell> &row)
{
    return std::all_of(row.cbegin(), row.cend(), SheetValues::isBlank);
}

// A sum under the cues: the name starts with the word "Total", or the row's first value is
// that word alone.
bool isTotalRow(const QList<SheetCell> &row, const SheetCell &name)
{
    static const QRegularExpression startsWithTotal(QStringLiteral(R"(^total\b)"));
    static const QRegularExpression totalAlone(QStringLiteral(R"(^total\s*:?$)"));
    if (name.kind == SheetCell::Kind::Text
        && startsWithTotal.match(SheetValues::folded(name.text)).hasMatch())
        return true;
    const auto first = std::find_if_not(row.cbegin(), row.cend(), SheetValues::isBlank);
    return first != row.cend() && first->kind == SheetCell::Kind::Text
           && totalAlone.match(SheetValues::folded(first->text)).hasMatch();
}

// A section title between the cues: the row's only value, in a cell merged across columns.
bool isSectionTitle(const QList<SheetCell> &row)
{
    const auto first = std::find_if_not(row.cbegin(), row.cend(), SheetValues::isBlank);
    if (first == row.cend() || first + 1 == row.cend() || !(first + 1)->covered)
        return false;
    return std::all_of(first + 1, row.cend(), SheetValues::isBlank);
}

// `time` on the context's day in its zone. A time the zone skips at a daylight saving change
// is read with the offset in force before it, which places it after the gap, as a clock set
// forward shows it.
QDateTime placed(const ImportContext &context, QTime time)
{
    const QTimeZone zone = context.zone.isValid() ? context.zone : QTimeZone::utc();
    const QDateTime local(context.day, time, zone);
    if (local.isValid() || !context.day.isValid())
        return local;
    const QDateTime asUtc(context.day, time, QTimeZone::utc());
    const int offsetBefore = zone.offsetFromUtc(asUtc.addDays(-1));
    return asUtc.addSecs(-offsetBefore).toTimeZone(zone);
}

// One row below the header read into a cue, or left out with its reason.
class RowReader
{
public:
    RowReader(const QList<SheetCell> &row, const FieldColumns &columns)
        : m_row(row), m_columns(columns)
    {
    }

    // `cueNumber` is the place the cue would have among the cues, for a row without a name.
    ImportRow read(int line, const ImportContext &context, int cueNumber);

private:
    const SheetCell &cell(ImportField field) const
    {
        return fieldCell(m_row, m_columns, field);
    }
    QString text(ImportField field) const
    {
        return SheetValues::displayText(cell(field)).trimmed();
    }
    void readThreshold(ImportField field, double &threshold, const QString &label);
    QString notes() const;

    const QList<SheetCell> &m_row;
    const FieldColumns &m_columns;
    QStringList m_notes; // what of a kept row was not taken
};

ImportRow RowReader::read(int line, const ImportContext &context, int cueNumber)
{
    ImportRow result{line, text(ImportField::Name), std::nullopt, {}};
    for (qsizetype i = 0; i < m_row.size() && result.label.isEmpty(); ++i)
        result.label = SheetValues::displayText(m_row[i]).trimmed();
    const SheetCell &name = cell(ImportField::Name);
    if (isTotalRow(m_row, name)) {
        result.problem = QStringLiteral("Ligne de total");
        result.notACue = true;
        return result;
    }
    if (isSectionTitle(m_row)) {
        result.problem = QStringLiteral("Ligne de titre");
        result.notACue = true;
        return result;
    }

    const SheetCell &durationCell = cell(ImportField::Duration);
    std::optional<double> duration;
    if (!SheetValues::isBlank(durationCell)) {
        if (SheetValues::isBefore1900(durationCell)) {
            result.problem = QStringLiteral("Date antérieure à 1900 : ") + quoted(durationCell);
            return result;
        }
        duration = SheetValues::durationSeconds(durationCell);
        if (!duration) {
            result.problem = QStringLiteral("Durée illisible : ") + quoted(durationCell);
            return result;
        }
    }
    const SheetCell &endCell = cell(ImportField::EndTime);
    std::optional<QTime> endTime;
    if (!SheetValues::isBlank(endCell)) {
        if (SheetValues::isBefore1900(endCell)) {
            result.problem = QStringLiteral("Date antérieure à 1900 : ") + quoted(endCell);
            return result;
        }
        endTime = SheetValues::timeOfDay(endCell);
        if (!endTime) {
            result.problem = QStringLiteral("Heure de fin illisible : ") + quoted(endCell);
            return result;
        }
    }
    if (!duration && !endTime) {
        result.problem = QStringLiteral("Durée manquante");
        return result;
    }

    Cue cue;
    cue.name = text(ImportField::Name);
    if (cue.name.isEmpty())
        cue.name = QStringLiteral("Cue %1").arg(cueNumber);
    cue.speaker = text(ImportField::Speaker);
    if (duration)
        cue.duration = *duration;
    if (endTime) {
        cue.mode = TimerMode::HardOut;
        cue.hardOutTime = placed(context, *endTime);
    }
    cue.notes = notes();

    const SheetCell &colour = cell(ImportField::Colour);
    if (!SheetValues::isBlank(colour)) {
        cue.colorHex = SheetValues::colourHex(colour);
        if (!cue.colorHex)
            m_notes.append(QStringLiteral("Couleur inconnue : ") + quoted(colour));
    }
    readThreshold(ImportField::Warning, cue.warningThreshold,
                  QStringLiteral("Seuil d’alerte illisible : "));
    readThreshold(ImportField::Danger, cue.dangerThreshold,
                  QStringLiteral("Seuil de danger illisible : "));
    const SheetCell &follow = cell(ImportField::AutoFollow);
    if (const std::optional<bool> autoFollow = SheetValues::boolean(follow))
        cue.autoFollow = *autoFollow;
    else
        m_notes.append(QStringLiteral("Enchaînement illisible : ") + quoted(follow));

    result.cue = cue;
    result.problem = m_notes.join(QStringLiteral(" ; "));
    return result;
}

void RowReader::readThreshold(ImportField field, double &threshold, const QString &label)
{
    const SheetCell &value = cell(field);
    if (SheetValues::isBlank(value))
        return;
    if (const std::optional<double> seconds = SheetValues::durationSeconds(value))
        threshold = *seconds;
    else
        m_notes.append(label + quoted(value));
}

QString RowReader::notes() const
{
    QStringList texts;
    for (const int column : m_columns.value(ImportField::Notes)) {
        const QString text = SheetValues::displayText(cellAt(m_row, column)).trimmed();
        if (!text.isEmpty())
            texts.append(text);
    }
    return texts.join(u'\n');
}

// The header's columns with the caller's choices applied; a column without a header text
// that is given a meaning joins the list, in its place.
QList<ImportColumn> chosenColumns(QList<ImportColumn> columns,
                                  const QHash<int, ImportField> &fieldByColumn)
{
    for (auto it = fieldByColumn.cbegin(); it != fieldByColumn.cend(); ++it) {
        const auto listed = std::find_if(columns.begin(), columns.end(), [&](const auto &c) {
            return c.column == it.key();
        });
        if (listed != columns.end())
            listed->field = it.value();
        else if (it.key() >= 0 && it.value() != ImportField::Ignore)
            columns.append(ImportColumn{it.key(), QString(), it.value()});
    }
    std::sort(columns.begin(), columns.end(),
              [](const auto &a, const auto &b) { return a.column < b.column; });
    return columns;
}

} // namespace

int ImportPreview::cueCount() const
{
    return int(std::count_if(rows.cbegin(), rows.cend(), [](const ImportRow &row) {
        return row.cue.has_value();
    }));
}

int ImportPreview::ignoredCount() const
{
    return int(rows.size()) - cueCount();
}

QString ImportPreview::summary() const
{
    const int cues = cueCount();
    const int ignored = ignoredCount();
    QString text = cues == 0   ? QStringLiteral("Aucun cue")
                   : cues == 1 ? QStringLiteral("1 cue")
                               : QStringLiteral("%1 cues").arg(cues);
    if (ignored == 1)
        text += QStringLiteral(", 1 ligne ignorée");
    else if (ignored > 1)
        text += QStringLiteral(", %1 lignes ignorées").arg(ignored);
    return text;
}

QList<Cue> ImportPreview::cues() const
{
    QList<Cue> list;
    for (const ImportRow &row : rows) {
        if (row.cue)
            list.append(*row.cue);
    }
    return list;
}

namespace RundownImport {

ImportPreview preview(const SheetTable &table, const ImportContext &context,
                      const QHash<int, ImportField> &fieldByColumn)
{
    ImportPreview preview;
    const SheetHeader header = ColumnGuess::findHeader(table);
    if (header.lastRow < 0) {
        preview.error = QStringLiteral("Aucune ligne d’en-tête reconnue : la feuille doit nommer "
                                       "ses colonnes (Nom, Durée…).");
        return preview;
    }
    preview.headerLine = header.lastRow + 1;
    preview.columns = chosenColumns(header.columns, fieldByColumn);

    FieldColumns columns;
    for (const ImportColumn &column : preview.columns)
        columns[column.field].append(column.column);
    if (!columns.contains(ImportField::Name)
        || (!columns.contains(ImportField::Duration) && !columns.contains(ImportField::EndTime))) {
        preview.error = QStringLiteral(
            "Il faut au moins une colonne Nom et une colonne Durée ou Heure de fin.");
        return preview;
    }

    int cueCount = 0;
    for (int index = header.lastRow + 1; index < table.rows.size(); ++index) {
        const QList<SheetCell> &row = table.rows[index];
        if (isBlankRow(row))
            continue;
        ImportRow imported = RowReader(row, columns).read(index + 1, context, cueCount + 1);
        cueCount += imported.cue ? 1 : 0;
        preview.rows.append(std::move(imported));
    }
    return preview;
}

} // namespace RundownImport
