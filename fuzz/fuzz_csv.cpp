// Any bytes through the CSV reader, then the sheet it gives through the import preview. A sheet
// read holds the limits every reader keeps and is trimmed as SheetTable says; a refused file
// gives no table. Every row after the header is either a cue or left out, and every cue's
// duration and thresholds are real, non-negative numbers of seconds.
#include "csvreader.h"
#include "fuzzcheck.h"
#include "rundownimport.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

void checkTable(const SheetReadResult &result)
{
    FUZZ_CHECK(result.sheetNames == QStringList{QStringLiteral("fuzz")}, result.sheetNames);
    if (!result.ok()) {
        FUZZ_CHECK(result.table.rows.isEmpty(), result.error, result.table.rows.size());
        return;
    }
    const QList<QList<SheetCell>> &rows = result.table.rows;
    FUZZ_CHECK(rows.size() <= SheetLimits::maxRows, rows.size());
    FUZZ_CHECK(rows.isEmpty() || !rows.last().isEmpty(), rows.size());
    qint64 totalChars = 0;
    for (const QList<SheetCell> &row : rows) {
        FUZZ_CHECK(row.size() <= SheetLimits::maxColumns, row.size());
        FUZZ_CHECK(row.isEmpty() || row.last().kind != SheetCell::Kind::Empty, row.size());
        for (const SheetCell &cell : row) {
            FUZZ_CHECK(!cell.covered);
            FUZZ_CHECK(cell.kind == SheetCell::Kind::Empty || cell.kind == SheetCell::Kind::Text,
                       int(cell.kind));
            FUZZ_CHECK(cell.kind == SheetCell::Kind::Empty || !cell.text.isEmpty());
            FUZZ_CHECK(cell.kind == SheetCell::Kind::Text || cell.text.isEmpty(), cell.text);
            FUZZ_CHECK(cell.text.size() <= SheetLimits::maxCellChars, cell.text.size());
            totalChars += cell.text.size();
        }
    }
    FUZZ_CHECK(totalChars <= SheetLimits::maxTextChars, totalChars);
}

bool isSeconds(double value)
{
    return std::isfinite(value) && value >= 0;
}

void checkPreview(const ImportPreview &preview)
{
    FUZZ_CHECK(preview.cueCount() + preview.ignoredCount() == preview.rows.size(),
               preview.cueCount(), preview.ignoredCount(), preview.rows.size());
    FUZZ_CHECK(preview.cues().size() == preview.cueCount());
    FUZZ_CHECK(!preview.summary().isEmpty());
    if (!preview.error.isEmpty())
        FUZZ_CHECK(preview.rows.isEmpty(), preview.error, preview.rows.size());
    int previousLine = preview.headerLine;
    for (const ImportRow &row : preview.rows) {
        FUZZ_CHECK(row.line > previousLine, row.line, previousLine);
        previousLine = row.line;
        FUZZ_CHECK(row.cue || !row.problem.isEmpty(), row.line);
    }
    for (const Cue &cue : preview.cues()) {
        FUZZ_CHECK(isSeconds(cue.duration), cue.name, cue.duration);
        FUZZ_CHECK(isSeconds(cue.warningThreshold), cue.name, cue.warningThreshold);
        FUZZ_CHECK(isSeconds(cue.dangerThreshold), cue.name, cue.dangerThreshold);
        FUZZ_CHECK(!cue.name.isEmpty());
        FUZZ_CHECK((cue.mode == TimerMode::HardOut) == cue.hardOutTime.has_value(), cue.name);
        FUZZ_CHECK(!cue.hardOutTime || cue.hardOutTime->isValid(), cue.name);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const ImportContext context{QDate(2026, 3, 29), QTimeZone("Europe/Paris")};
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const SheetReadResult result = CsvReader::read(bytes, QStringLiteral("fuzz"));
    checkTable(result);
    if (!result.ok())
        return 0;
    checkPreview(RundownImport::preview(result.table, context));
    // The same sheet with its first columns chosen by hand, as the import window allows.
    checkPreview(RundownImport::preview(result.table, context,
                                        {{0, ImportField::Name}, {1, ImportField::Duration},
                                         {2, ImportField::EndTime}, {3, ImportField::Colour},
                                         {4, ImportField::Warning}, {5, ImportField::AutoFollow}}));
    return 0;
}
