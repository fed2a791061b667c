// Any bytes through the .xlsx reader: a whole package, or the XML of a workbook's parts (the
// workbook, its relationships, the first sheet, the shared strings, the styles) separated by
// NUL bytes. What reads keeps the limits and the shape of a sheet; the last sheet, asked for by
// name, reads under the same rules.
#include "sheetfuzzcheck.h"
#include "xlsxreader.h"

#include <QBuffer>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QStringList parts{
        QStringLiteral("xl/workbook.xml"), QStringLiteral("xl/_rels/workbook.xml.rels"),
        QStringLiteral("xl/worksheets/sheet1.xml"), QStringLiteral("xl/sharedStrings.xml"),
        QStringLiteral("xl/styles.xml")};
    QBuffer package;
    package.setData(
        packageOf(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)), parts));

    const SheetReadResult first = XlsxReader::read(package, std::nullopt);
    checkSheetRead(first);
    if (first.sheetNames.size() > 1) {
        package.close();
        const SheetReadResult last = XlsxReader::read(package, first.sheetNames.last());
        checkSheetRead(last);
        // The same names, unless that sheet cannot be read at all.
        FUZZ_CHECK(last.sheetNames == first.sheetNames || last.sheetNames.isEmpty(),
                   first.sheetNames, last.sheetNames);
    }
    return 0;
}
