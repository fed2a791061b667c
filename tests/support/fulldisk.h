#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <unistd.h>

// A real file system of 1 MB, mounted (tmpfs) on a folder for the length of a test, that the
// test fills to the last byte: the full disk of a laptop at the venue. Mounting needs root,
// which the tests have in CI; FULL_DISK_OR_SKIP() skips the test otherwise.
class FullDisk
{
public:
    // Mounts it on `folder`, created when missing.
    explicit FullDisk(const QString &folder) : m_path(QDir(folder).absolutePath())
    {
        QDir().mkpath(m_path);
        QProcess mount;
        mount.start(QStringLiteral("mount"),
                    {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                     QStringLiteral("size=1m"), QStringLiteral("tmpfs"), m_path});
        mount.waitForFinished(-1);
        m_mounted = mount.exitStatus() == QProcess::NormalExit && mount.exitCode() == 0;
        if (!m_mounted)
            m_error = QStringLiteral("mount failed on %1: %2 %3")
                          .arg(m_path, mount.errorString(), QString::fromLocal8Bit(mount.readAllStandardError()));
    }
    ~FullDisk()
    {
        if (m_mounted && QProcess::execute(QStringLiteral("umount"), {m_path}) != 0)
            QProcess::execute(QStringLiteral("umount"), {QStringLiteral("-l"), m_path});
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

    bool mounted() const { return m_mounted; }
    QString error() const { return m_error; }

    // Writes a filler file until the disk refuses: not one byte is left.
    void fill() const
    {
        QFile filler(fillerPath());
        QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered));
        const QByteArray chunk(64 * 1024, 'x');
        while (filler.write(chunk) > 0) {
        }
        QCOMPARE(filler.error(), QFileDevice::ResourceError); // ENOSPC
    }
    // Gives back one page (4 KiB, the tmpfs's unit): room for one small file, not two.
    void leaveOnePage() const
    {
        QFile filler(fillerPath());
        QVERIFY(filler.resize(filler.size() - 4096));
    }
    // Removes the filler: the disk is nearly empty again.
    void makeRoom() const { QVERIFY(QFile::remove(fillerPath())); }

    // The files on the disk but the filler, sorted.
    QStringList files() const
    {
        QStringList names = QDir(m_path).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
        names.removeAll(fillerName);
        return names;
    }

private:
    static constexpr QLatin1StringView fillerName{"filler"};
    QString fillerPath() const { return m_path + u'/' + fillerName; }

    QString m_path;
    bool m_mounted = false;
    QString m_error;
};

// Fails the test when root could not mount the disk; skips it when not root.
#define FULL_DISK_OR_SKIP(disk)                                                                     \
    do {                                                                                            \
        if (!(disk).mounted()) {                                                                    \
            if (::geteuid() != 0)                                                                   \
                QSKIP("a full disk is a tmpfs mounted by the test, which needs root");              \
            QFAIL(qPrintable((disk).error()));                                                      \
        }                                                                                           \
    } while (false)
