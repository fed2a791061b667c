#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

class QIODevice;

// Zip archives through minizip, the zip library that libxlsxwriter itself uses. (QuaZip cannot
// be in the same process: it exports its own modified copy of minizip's functions under the
// same names, and libxlsxwriter's calls land in them and crash.)

// A workbook's package: a zip archive read from a seekable device, its entries listed and read
// one at a time. An entry is inflated in chunks and refused as soon as it passes
// SheetLimits::maxFileBytes, whatever size the archive declares for it.
class ZipArchive
{
public:
    // The device may be open for reading or not yet open; the archive does not own it.
    explicit ZipArchive(QIODevice &device);
    ~ZipArchive();
    ZipArchive(const ZipArchive &) = delete;
    ZipArchive &operator=(const ZipArchive &) = delete;

    // Whether the device holds a zip archive whose directory could be read.
    bool isOpen() const { return m_zip != nullptr; }
    // The entries' names as the archive spells them, in its order.
    const QStringList &entryNames() const { return m_names; }
    // Whether an entry has this name, compared without case as package part names are.
    bool contains(const QString &name) const;

    enum class Status {
        Ok,
        Missing, // no entry of that name
        TooBig, // it inflates past SheetLimits::maxFileBytes
        Unreadable, // encrypted, of an unknown compression, truncated or corrupt
    };
    struct Entry {
        Status status = Status::Missing;
        QByteArray bytes; // the inflated entry when Ok, else empty
    };
    Entry read(const QString &name) const;

private:
    struct Place {
        quint64 directoryOffset;
        quint64 entryNumber;
    };

    void *m_zip = nullptr; // minizip's unzFile
    QStringList m_names;
    QHash<QString, Place> m_placeByFolded; // lower-case name -> where the entry is
};

// A zip archive of these entries, in this order, made in memory: deflated, or stored as they
// are. What the tests and the fuzzers build packages with.
using ZipEntries = QList<std::pair<QString, QByteArray>>;
QByteArray zipOf(const ZipEntries &entries, bool deflated = true);
