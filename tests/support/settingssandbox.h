#pragma once

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

// Points the application's QSettings at a fresh temporary folder, so that a test starts with
// no preference stored and leaves nothing behind.
class SettingsSandbox
{
public:
    SettingsSandbox()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("KaironTests"));
        QCoreApplication::setApplicationName(QStringLiteral("Kairon"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir.path());
        QSettings().clear();
    }
    QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
};
