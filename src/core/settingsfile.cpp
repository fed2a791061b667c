#include "settingsfile.h"

#include "diskwrite.h"
#include "initext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDevice>
#include <QFileInfo>
#include <QStorageInfo>

#include <cerrno>

namespace {

// Why the last write of this thread failed; QSettings gives its writer no way to say it.
thread_local QString lastWriteFailure;

bool readIni(QIODevice &device, QSettings::SettingsMap &map)
{
    map = IniText::read(device.readAll());
    return true;
}

// Returning false keeps QSettings from committing its QSaveFile: the temporary goes.
bool writeIni(QIODevice &device, const QSettings::SettingsMap &map)
{
    auto *file = qobject_cast<QFileDevice *>(&device);
    Q_ASSERT(file);
    return DiskWrite::writeAll(*file, IniText::write(map), &lastWriteFailure);
}

// When QSettings stopped before its writer (its lock file or its temporary could not be made),
// the volume tells the likely reason.
QString reasonWithoutWrite(const QString &path)
{
    const QString folder = QFileInfo(path).absolutePath();
    const QStorageInfo volume(folder);
    if (volume.isValid() && volume.isReadOnly())
        return DiskWrite::reason(EROFS);
    if (volume.isValid() && volume.bytesAvailable() == 0)
        return DiskWrite::reason(ENOSPC);
    return DiskWrite::reason(QFileInfo(folder).isWritable() ? 0 : EACCES);
}

} // namespace

SettingsFile::SettingsFile()
    : QSettings(format(), QSettings::UserScope, QCoreApplication::organizationName(),
                QCoreApplication::applicationName())
{
}

QSettings::Format SettingsFile::format()
{
    // ".conf", as the native format on Linux: the same file as QSettings().
    static const QSettings::Format registered =
        registerFormat(QStringLiteral("conf"), readIni, writeIni);
    return registered;
}

bool SettingsFile::save(QString *error)
{
    lastWriteFailure.clear();
    sync();
    if (status() == QSettings::NoError)
        return true;
    const QString reason = lastWriteFailure.isEmpty() ? reasonWithoutWrite(fileName()) : lastWriteFailure;
    if (error)
        *error = QStringLiteral("impossible d'écrire « %1 » (%2)")
                     .arg(QDir::toNativeSeparators(fileName()), reason);
    return false;
}
