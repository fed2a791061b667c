// Any bytes through the .ods reader: a whole package, or a content.xml (then, after a NUL
// byte, a META-INF/manifest.xml) zipped here. What reads keeps the limits and the shape of a
// sheet; the last sheet, asked for by name, reads under the same rules.
#include "odsreader.h"
#include "sheetfuzzcheck.h"

#include <QBuffer>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QStringList parts{QStringLiteral("content.xml"),
                                   QStringLiteral("META-INF/manifest.xml")};
    QBuffer package;
    package.setData(
        packageOf(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)), parts));

    const SheetReadResult first = OdsReader::read(package, std::nullopt);
    checkSheetRead(first);
    if (first.sheetNames.size() > 1) {
        package.close();
        const SheetReadResult last = OdsReader::read(package, first.sheetNames.last());
        checkSheetRead(last);
        // The same names, unless that sheet cannot be read at all.
        FUZZ_CHECK(last.sheetNames == first.sheetNames || last.sheetNames.isEmpty(),
                   first.sheetNames, last.sheetNames);
    }
    return 0;
}
