#include "sheetfile.h"

#include "csvreader.h"
#include "odsreader.h"
#include "sheetmessages.h"
#include "xlsxreader.h"
#include "ziparchive.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace {

const QByteArray zipSignature("PK\x03\x04", 4);
const QByteArray emptyZipSignature("PK\x05\x06", 4);
const QByteArray compoundFileSignature("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
const QString odsMimeType = QStringLiteral("application/vnd.oasis.opendocument.spreadsheet");

// Sector numbers from this one on are markers (end of chain, free...), not sectors.
constexpr quint32 firstMarker = 0xFFFFFFFA;
constexpr qint64 directoryEntryBytes = 128;
constexpr qint64 headerFatSectors = 109;

SheetReadResult failure(const QString &message)
{
    SheetReadResult result;
    result.error = message;
    return result;
}

// The names in an OLE compound file's directory (the storages and streams of an Excel 97–2003
// workbook, or of an encrypted Office package), read by following the directory's chain of
// sectors through the allocation table. What cannot be read ends the list.
class CompoundFile
{
public:
    explicit CompoundFile(const QByteArray &bytes) : m_bytes(bytes)
    {
        const std::optional<quint16> shift = read16(0x1E);
        if (shift && (*shift == 9 || *shift == 12))
            m_sectorBytes = qint64(1) << *shift;
    }

    QStringList directoryNames() const
    {
        if (m_sectorBytes == 0)
            return {};
        const qint64 sectorCount = m_bytes.size() / m_sectorBytes;

        QStringList names;
        std::optional<quint32> sector = read32(0x30);
        for (qint64 visited = 0; sector && *sector < firstMarker && visited < sectorCount;
             ++visited) {
            const qint64 start = offsetOf(*sector);
            if (start + m_sectorBytes > m_bytes.size())
                break;
            for (qint64 entry = start; entry < start + m_sectorBytes; entry += directoryEntryBytes)
                if (const std::optional<QString> name = entryName(entry))
                    names.append(*name);
            sector = nextSector(*sector);
        }
        return names;
    }

private:
    std::optional<quint16> read16(qint64 offset) const
    {
        if (offset < 0 || offset + 2 > m_bytes.size())
            return std::nullopt;
        return qFromLittleEndian<quint16>(m_bytes.constData() + offset);
    }

    std::optional<quint32> read32(qint64 offset) const
    {
        if (offset < 0 || offset + 4 > m_bytes.size())
            return std::nullopt;
        return qFromLittleEndian<quint32>(m_bytes.constData() + offset);
    }

    qint64 offsetOf(quint32 sector) const { return (qint64(sector) + 1) * m_sectorBytes; }

    // The sector holding part `index` of the allocation table: the header lists the first
    // 109, a chain of sectors the others.
    std::optional<quint32> fatSector(qint64 index) const
    {
        if (index < headerFatSectors)
            return read32(0x4C + index * 4);
        index -= headerFatSectors;
        const qint64 perSector = m_sectorBytes / 4 - 1; // the last one links to the next
        std::optional<quint32> sector = read32(0x44);
        for (qint64 hops = 0; sector && *sector < firstMarker; ++hops) {
            if (hops > m_bytes.size() / m_sectorBytes)
                return std::nullopt;
            if (index < perSector)
                return read32(offsetOf(*sector) + index * 4);
            index -= perSector;
            sector = read32(offsetOf(*sector) + perSector * 4);
        }
        return std::nullopt;
    }

    std::optional<quint32> nextSector(quint32 sector) const
    {
        const qint64 perSector = m_sectorBytes / 4;
        const std::optional<quint32> table = fatSector(sector / perSector);
        if (!table || *table >= firstMarker)
            return std::nullopt;
        return read32(offsetOf(*table) + (sector % perSector) * 4);
    }

    // A directory entry's name, UTF-16LE; nullopt for an unused entry.
    std::optional<QString> entryName(qint64 entry) const
    {
        const std::optional<quint16> nameBytes = read16(entry + 64);
        if (!nameBytes || *nameBytes < 2 || *nameBytes > 64 || m_bytes.at(entry + 66) == 0)
            return std::nullopt;
        QString name;
        for (qint64 at = entry; at < entry + *nameBytes - 2; at += 2)
            name += QChar(*read16(at));
        return name;
    }

    const QByteArray &m_bytes;
    qint64 m_sectorBytes = 0; // 512 or 4096; 0 when the header is not a compound file's
};

SheetReadResult readCompoundFile(const QByteArray &bytes)
{
    const QStringList names = CompoundFile(bytes).directoryNames();
    if (names.contains(QStringLiteral("EncryptionInfo")))
        return failure(SheetMessages::passwordProtected());
    if (names.contains(QStringLiteral("Workbook")) || names.contains(QStringLiteral("Book")))
        return failure(SheetMessages::oldExcelFormat());
    return failure(SheetMessages::notReadable()); // a Word or PowerPoint document, or broken
}

SheetReadResult readPackage(const QByteArray &bytes, const std::optional<QString> &sheet)
{
    QBuffer buffer;
    buffer.setData(bytes);
    enum class Kind { Xlsx, Ods, Other } kind = Kind::Other;
    {
        const ZipArchive zip(buffer);
        if (!zip.isOpen())
            return failure(SheetMessages::notReadable());
        if (zip.contains(QStringLiteral("xl/workbook.xml"))) {
            kind = Kind::Xlsx;
        } else if (zip.contains(QStringLiteral("content.xml"))) {
            kind = Kind::Ods;
        } else {
            const ZipArchive::Entry mimeType = zip.read(QStringLiteral("mimetype"));
            if (mimeType.status == ZipArchive::Status::Ok
                && mimeType.bytes.trimmed().startsWith(odsMimeType.toLatin1()))
                kind = Kind::Ods;
        }
    }
    if (buffer.isOpen())
        buffer.close();
    switch (kind) {
    case Kind::Xlsx:
        return XlsxReader::read(buffer, sheet);
    case Kind::Ods:
        return OdsReader::read(buffer, sheet);
    case Kind::Other:
        break;
    }
    return failure(SheetMessages::notReadable());
}

} // namespace

SheetReadResult SheetFile::read(const QString &path, const std::optional<QString> &sheet)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(SheetMessages::cannotRead(file.errorString()));
    if (!file.isSequential() && file.size() > SheetLimits::maxFileBytes)
        return failure(SheetMessages::fileTooBig());
    const QByteArray bytes =
        file.isSequential() ? file.read(SheetLimits::maxFileBytes + 1) : file.readAll();
    if (file.error() != QFileDevice::NoError)
        return failure(SheetMessages::cannotRead(file.errorString()));
    return readBytes(bytes, path, sheet);
}

SheetReadResult SheetFile::readBytes(const QByteArray &bytes, const QString &fileName,
                                     const std::optional<QString> &sheet)
{
    if (bytes.size() > SheetLimits::maxFileBytes)
        return failure(SheetMessages::fileTooBig());
    if (bytes.startsWith(zipSignature) || bytes.startsWith(emptyZipSignature))
        return readPackage(bytes, sheet);
    if (bytes.startsWith(compoundFileSignature))
        return readCompoundFile(bytes);
    // A text export has one sheet, whatever sheet was asked for.
    SheetReadResult text = CsvReader::read(bytes, QFileInfo(fileName).completeBaseName());
    if (!text.ok()) {
        // As for a workbook: no table, and no sheet named in what is not a spreadsheet.
        text.table = SheetTable();
        if (text.error == SheetMessages::notReadable())
            text.sheetNames.clear();
    }
    return text;
}
