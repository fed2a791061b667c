#include "linkedrundown.h"

#include "sheetfile.h"
#include "sheetgrid.h"

#include <QFileInfo>

namespace LinkedRundown {

namespace {
constexpr std::pair<ImportField, const char *> fieldKeys[] = {
    {ImportField::Ignore, "ignore"},     {ImportField::Name, "name"},
    {ImportField::Speaker, "speaker"},   {ImportField::Duration, "duration"},
    {ImportField::EndTime, "endTime"},   {ImportField::StartTime, "startTime"},
    {ImportField::Colour, "colour"},     {ImportField::Notes, "notes"},
    {ImportField::AutoFollow, "autoFollow"}, {ImportField::Warning, "warning"},
    {ImportField::Danger, "danger"},
};
} // namespace

QString fieldKey(ImportField field)
{
    for (const auto &[known, key] : fieldKeys)
        if (known == field)
            return QString::fromLatin1(key);
    return {};
}

std::optional<ImportField> fieldForKey(const QString &key)
{
    for (const auto &[field, known] : fieldKeys)
        if (key == QLatin1StringView(known))
            return field;
    return std::nullopt;
}

LinkedSpreadsheet linkFor(const QString &path, const QString &sheet,
                          const QHash<int, ImportField> &fieldByColumn)
{
    LinkedSpreadsheet link;
    link.path = QFileInfo(path).absoluteFilePath();
    if (!sheet.isEmpty())
        link.sheet = sheet;
    for (auto it = fieldByColumn.cbegin(); it != fieldByColumn.cend(); ++it)
        link.columns.insert(sheetColumnName(it.key()), fieldKey(it.value()));
    return link;
}

QHash<int, ImportField> fieldsOf(const LinkedSpreadsheet &link)
{
    QHash<int, ImportField> fields;
    for (auto it = link.columns.cbegin(); it != link.columns.cend(); ++it) {
        const std::optional<int> column = sheetColumnOf(it.key());
        const std::optional<ImportField> field = fieldForKey(it.value());
        if (column && field)
            fields.insert(*column, *field);
    }
    return fields;
}

Reading read(const LinkedSpreadsheet &link, const ImportContext &context)
{
    const SheetReadResult sheet = SheetFile::read(link.path, link.sheet);
    if (!sheet.ok())
        return {sheet.error, {}};
    const ImportPreview preview = RundownImport::preview(sheet.table, context, fieldsOf(link));
    if (!preview.error.isEmpty())
        return {preview.error, {}};
    return {{}, preview.cues()};
}

} // namespace LinkedRundown
