#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

// Gives the test a fresh, empty home folder: Documents, the Trash and the settings all land in
// it, and nothing of the machine's own is read or written.
class TempHome
{
public:
    TempHome()
    {
        m_previous = qgetenv("HOME");
        qputenv("HOME", m_dir.path().toUtf8());
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qunsetenv(name);
    }
    ~TempHome() { qputenv("HOME", m_previous); }

    QString path() const { return m_dir.path(); }

    // Puts a plain file where a folder is expected, so that the folder cannot be made.
    void blockWithAFile(const QString &relative) const
    {
        const QString at = file(relative);
        QDir().mkpath(QFileInfo(at).absolutePath());
        QFile blocker(at);
        blocker.open(QIODevice::WriteOnly);
        blocker.write("in the way");
    }
    QString file(const QString &relative) const { return QDir(m_dir.path()).filePath(relative); }

private:
    QTemporaryDir m_dir;
    QByteArray m_previous;
};
