#include "ziparchive.h"

#include "sheettable.h"

#include <QBuffer>
#include <QIODevice>

#include <unzip.h>
#include <zip.h>

#include <algorithm>

namespace {

// The size of one inflating step: small enough that the limit is overshot by little memory.
constexpr int chunkBytes = 64 * 1024;

// minizip's file operations over a QIODevice, which `opaque` points to; the "file name" minizip
// passes along is not used. The device is not minizip's to close.
QIODevice *deviceOf(voidpf stream)
{
    return static_cast<QIODevice *>(stream);
}

voidpf openDevice(voidpf opaque, const void *, int mode)
{
    QIODevice *device = deviceOf(opaque);
    const QIODevice::OpenMode wanted =
        (mode & ZLIB_FILEFUNC_MODE_CREATE) ? QIODevice::ReadWrite : QIODevice::ReadOnly;
    if (!device->isOpen() && !device->open(wanted))
        return nullptr;
    return device;
}

uLong readDevice(voidpf, voidpf stream, void *buffer, uLong size)
{
    return uLong(std::max<qint64>(0, deviceOf(stream)->read(static_cast<char *>(buffer), qint64(size))));
}

uLong writeDevice(voidpf, voidpf stream, const void *buffer, uLong size)
{
    return uLong(std::max<qint64>(0, deviceOf(stream)->write(static_cast<const char *>(buffer), qint64(size))));
}

ZPOS64_T tellDevice(voidpf, voidpf stream)
{
    return ZPOS64_T(deviceOf(stream)->pos());
}

long seekDevice(voidpf, voidpf stream, ZPOS64_T offset, int origin)
{
    QIODevice *device = deviceOf(stream);
    qint64 target = qint64(offset);
    if (origin == ZLIB_FILEFUNC_SEEK_CUR)
        target += device->pos();
    else if (origin == ZLIB_FILEFUNC_SEEK_END)
        target += device->size();
    return device->seek(target) ? 0 : -1;
}

int closeDevice(voidpf, voidpf)
{
    return 0;
}

int deviceError(voidpf, voidpf)
{
    return 0;
}

zlib_filefunc64_def operationsOn(QIODevice &device)
{
    zlib_filefunc64_def operations{};
    operations.zopen64_file = openDevice;
    operations.zread_file = readDevice;
    operations.zwrite_file = writeDevice;
    operations.ztell64_file = tellDevice;
    operations.zseek64_file = seekDevice;
    operations.zclose_file = closeDevice;
    operations.zerror_file = deviceError;
    operations.opaque = &device;
    return operations;
}

// General purpose flag bit 11: the name is UTF-8; otherwise it is taken as Latin-1.
constexpr uLong utf8NameFlag = 1u << 11;

} // namespace

ZipArchive::ZipArchive(QIODevice &device)
{
    zlib_filefunc64_def operations = operationsOn(device);
    unzFile zip = unzOpen2_64("", &operations);
    if (!zip)
        return;
    for (int status = unzGoToFirstFile(zip); status == UNZ_OK; status = unzGoToNextFile(zip)) {
        unz_file_info64 info;
        char name[1024];
        unz_file_pos position;
        if (unzGetCurrentFileInfo64(zip, &info, name, sizeof name, nullptr, 0, nullptr, 0) != UNZ_OK
            || unzGetFilePos(zip, &position) != UNZ_OK) {
            unzClose(zip);
            m_names.clear();
            m_placeByFolded.clear();
            return;
        }
        const qsizetype length = qsizetype(std::min<uLong>(info.size_filename, sizeof name - 1));
        const QString text = (info.flag & utf8NameFlag) ? QString::fromUtf8(name, length)
                                                        : QString::fromLatin1(name, length);
        m_names.append(text);
        // A later duplicate shadows the first.
        m_placeByFolded.insert(text.toLower(), Place{position.pos_in_zip_directory, position.num_of_file});
    }
    m_zip = zip;
}

ZipArchive::~ZipArchive()
{
    if (m_zip)
        unzClose(m_zip);
}

bool ZipArchive::contains(const QString &name) const
{
    return m_placeByFolded.contains(name.toLower());
}

ZipArchive::Entry ZipArchive::read(const QString &name) const
{
    Entry entry;
    const auto found = m_placeByFolded.constFind(name.toLower());
    if (!m_zip || found == m_placeByFolded.cend())
        return entry;
    entry.status = Status::Unreadable;
    unz_file_pos position{uLong(found->directoryOffset), uLong(found->entryNumber)};
    if (unzGoToFilePos(m_zip, &position) != UNZ_OK || unzOpenCurrentFile(m_zip) != UNZ_OK)
        return entry;
    QByteArray bytes;
    QByteArray chunk(chunkBytes, Qt::Uninitialized);
    for (;;) {
        const int read = unzReadCurrentFile(m_zip, chunk.data(), unsigned(chunkBytes));
        if (read < 0) {
            unzCloseCurrentFile(m_zip);
            return entry;
        }
        if (read == 0)
            break;
        if (bytes.size() + read > SheetLimits::maxFileBytes) {
            unzCloseCurrentFile(m_zip);
            entry.status = Status::TooBig;
            return entry;
        }
        bytes.append(chunk.constData(), read);
    }
    // Closing after the whole entry was read checks its CRC.
    if (unzCloseCurrentFile(m_zip) != UNZ_OK)
        return entry;
    entry.status = Status::Ok;
    entry.bytes = std::move(bytes);
    return entry;
}

QByteArray zipOf(const ZipEntries &entries, bool deflated)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    zlib_filefunc64_def operations = operationsOn(buffer);
    zipFile zip = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &operations);
    if (!zip)
        return {};
    bool written = true;
    for (const auto &[name, bytes] : entries) {
        zip_fileinfo info{};
        const QByteArray encodedName = name.toUtf8();
        written = written
                  && zipOpenNewFileInZip4_64(zip, encodedName.constData(), &info, nullptr, 0, nullptr, 0,
                                             nullptr, deflated ? Z_DEFLATED : 0,
                                             deflated ? Z_DEFAULT_COMPRESSION : 0, 0, -MAX_WBITS,
                                             DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0, 0,
                                             utf8NameFlag, 0) == ZIP_OK
                  && zipWriteInFileInZip(zip, bytes.constData(), unsigned(bytes.size())) == ZIP_OK
                  && zipCloseFileInZip(zip) == ZIP_OK;
    }
    written = zipClose(zip, nullptr) == ZIP_OK && written;
    return written ? buffer.data() : QByteArray();
}
