#include "columnguess.h"

#include "rundownimport.h"
#include "sheetvalues.h"

#include <QHash>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>

namespace {

// No header is longer than this; longer texts are not even compared.
constexpr qsizetype longestHeader = 60;
// A header comes after a few title lines at most: the search stops here, so that a large
// sheet without one is refused at once rather than after comparing all its cells.
constexpr int headerSearchRows = 200;

const QHash<QString, ImportField> &fieldsByKey()
{
    static const QHash<QString, ImportField> fields = [] {
        const QList<std::pair<ImportField, QStringList>> names{
            {ImportField::Name, {"nom", "titre", "sequence", "cue", "name", "title", "intitule"}},
            {ImportField::Speaker,
             {"intervenant", "intervenants", "orateur", "orateurs", "presentateur",
              "presentateurs", "speaker", "speakers"}},
            {ImportField::Duration, {"duree", "duration"}},
            {ImportField::EndTime, {"fin", "heure de fin", "end", "end time"}},
            {ImportField::StartTime, {"debut", "heure", "heure de debut", "start", "start time"}},
            {ImportField::Colour, {"couleur", "color", "colour"}},
            {ImportField::Notes,
             {"notes", "note", "commentaires", "commentaire", "remarques", "remarque",
              "comments", "comment"}},
            {ImportField::AutoFollow,
             {"enchainement", "enchainer", "auto", "auto follow", "autofollow"}},
            {ImportField::Warning, {"alerte", "seuil d'alerte", "warning"}},
            {ImportField::Danger, {"danger", "seuil de danger"}},
        };
        QHash<QString, ImportField> byKey;
        for (const auto &[field, keys] : names) {
            for (const QString &key : keys)
                byKey.insert(key, field);
        }
        return byKey;
    }();
    return fields;
}

std::optional<ImportField> knownField(const QString &key)
{
    const auto found = fieldsByKey().constFind(key);
    if (found == fieldsByKey().constEnd())
        return std::nullopt;
    return *found;
}

// The text of a header cell as it is listed, or an empty text for none.
QString headerText(const QList<SheetCell> &row, int column)
{
    if (column >= row.size() || SheetValues::isBlank(row[column]))
        return {};
    return SheetValues::displayText(row[column]).trimmed();
}

// The columns [first, last] of each header cell merged over several columns: a cell with a
// value followed by covered cells.
QList<std::pair<int, int>> mergedSpans(const QList<SheetCell> &row)
{
    QList<std::pair<int, int>> spans;
    for (int column = 0; column < row.size(); ++column) {
        if (SheetValues::isBlank(row[column]))
            continue;
        int last = column;
        while (last + 1 < row.size() && row[last + 1].covered)
            ++last;
        if (last > column)
            spans.append({column, last});
        column = last;
    }
    return spans;
}

// The header texts row `index` gives its columns, with those of the next row under its merged
// cells when that row names a known column there; `twoLines` tells whether it did.
QMap<int, QString> headerTexts(const SheetTable &table, int index, bool &twoLines)
{
    const QList<SheetCell> &row = table.rows[index];
    QMap<int, QString> texts;
    for (int column = 0; column < row.size(); ++column) {
        const QString text = headerText(row, column);
        if (!text.isEmpty())
            texts.insert(column, text);
    }
    twoLines = false;
    if (index + 1 >= table.rows.size())
        return texts;
    const QList<SheetCell> &next = table.rows[index + 1];
    for (const auto &[first, last] : mergedSpans(row)) {
        bool namesKnown = false;
        for (int column = first; column <= last; ++column) {
            namesKnown = namesKnown
                         || RundownImport::fieldForHeader(headerText(next, column))
                                != ImportField::Ignore;
        }
        if (!namesKnown)
            continue;
        twoLines = true;
        for (int column = first; column <= last; ++column) {
            const QString text = headerText(next, column);
            if (text.isEmpty())
                texts.remove(column);
            else
                texts.insert(column, text);
        }
    }
    return texts;
}

} // namespace

namespace RundownImport {

ImportField fieldForHeader(const QString &header)
{
    static const QRegularExpression bracketed(QStringLiteral(R"(\([^)]*\)|\[[^\]]*\])"));
    static const QRegularExpression punctuation(QStringLiteral(R"([-_/]|[\s:.*]+$)"));
    static const QRegularExpression unit(QStringLiteral(
        R"(\s+(?:en\s+)?(?:min|mn|minutes?|s|sec|secondes?|h|heures?|hh:mm(?::ss)?|mm:ss|h:mm(?::ss)?)$)"));
    if (header.size() > longestHeader)
        return ImportField::Ignore;
    QString key = SheetValues::folded(header);
    key = key.remove(bracketed).replace(punctuation, QStringLiteral(" ")).simplified();
    if (const auto field = knownField(key))
        return *field;
    key = key.remove(unit);
    return knownField(key).value_or(ImportField::Ignore);
}

QString fieldLabel(ImportField field)
{
    switch (field) {
    case ImportField::Ignore: return QStringLiteral("Ignorer");
    case ImportField::Name: return QStringLiteral("Nom");
    case ImportField::Speaker: return QStringLiteral("Intervenant");
    case ImportField::Duration: return QStringLiteral("Durée");
    case ImportField::EndTime: return QStringLiteral("Heure de fin");
    case ImportField::StartTime: return QStringLiteral("Heure de début");
    case ImportField::Colour: return QStringLiteral("Couleur");
    case ImportField::Notes: return QStringLiteral("Notes");
    case ImportField::AutoFollow: return QStringLiteral("Enchaînement");
    case ImportField::Warning: return QStringLiteral("Seuil d’alerte");
    case ImportField::Danger: return QStringLiteral("Seuil de danger");
    }
    return {};
}

} // namespace RundownImport

namespace ColumnGuess {

SheetHeader findHeader(const SheetTable &table)
{
    const int searched = std::min(int(table.rows.size()), headerSearchRows);
    for (int index = 0; index < searched; ++index) {
        bool twoLines = false;
        const QMap<int, QString> texts = headerTexts(table, index, twoLines);
        QList<ImportColumn> columns;
        int known = 0;
        for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
            const ImportField field = RundownImport::fieldForHeader(it.value());
            known += field != ImportField::Ignore ? 1 : 0;
            columns.append(ImportColumn{it.key(), it.value(), field});
        }
        if (known >= 2)
            return SheetHeader{twoLines ? index + 1 : index, columns};
    }
    return {};
}

} // namespace ColumnGuess
