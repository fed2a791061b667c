#include "settingscontroller.h"

#include "audiodevicemanager.h"
#include "networkcoordinator.h"
#include "preferences.h"
#include "sessionstore.h"
#include "timerengine.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

SettingsController::SettingsController(TimerEngine &engine, NetworkCoordinator &network,
                                       WebServer &web, SessionStore &store, QObject *parent)
    : QObject(parent), m_engine(engine), m_network(network), m_store(store), m_web(web, this)
{
    connect(&m_network, &NetworkCoordinator::oscStatusChanged, this,
            &SettingsController::oscStatusChanged);
    connect(&m_deviceWatcher, &AudioDeviceWatcher::audioDevicesChanged, this,
            &SettingsController::refreshAlertOutputs);
    connect(&m_web, &WebSettingsController::preferenceStored, this, &SettingsController::reportStored);
}

void SettingsController::reportStored(const QString &error)
{
    const QString text =
        error.isEmpty() ? QString() : QStringLiteral("Échec d'enregistrement des réglages : ") + error;
    if (text == m_preferencesError)
        return;
    m_preferencesError = text;
    emit preferencesErrorChanged();
}

bool SettingsController::oscListenEnabled() const { return Preferences::oscListenEnabled(); }
int SettingsController::oscListenPort() const { return Preferences::oscListenPort(); }
bool SettingsController::oscSendEnabled() const { return Preferences::oscSendEnabled(); }
QString SettingsController::oscSendHost() const { return Preferences::oscSendHost(); }
int SettingsController::oscSendPort() const { return Preferences::oscSendPort(); }
bool SettingsController::oscSendStateChanges() const { return Preferences::oscSendStateChanges(); }

int SettingsController::splashSeconds() const
{
    const double stored = Preferences::splashDuration();
    return std::isfinite(stored) ? std::clamp(static_cast<int>(std::lround(stored)), 1, 10) : 10;
}

void SettingsController::setOscListenEnabled(bool on)
{
    reportStored(Preferences::store(Preferences::setOscListenEnabled, on));
    emit oscPreferencesChanged();
    emit oscStatusChanged(); // the status line shows only while listening is on
}

void SettingsController::setOscListenPort(int port)
{
    if (Preferences::isPort(port))
        reportStored(Preferences::store(Preferences::setOscListenPort, port));
    emit oscPreferencesChanged();
    emit oscStatusChanged(); // the status line names the port
}

void SettingsController::setOscSendEnabled(bool on)
{
    reportStored(Preferences::store(Preferences::setOscSendEnabled, on));
    emit oscPreferencesChanged();
}

void SettingsController::setOscSendHost(const QString &host)
{
    reportStored(Preferences::store(Preferences::setOscSendHost, host));
    emit oscPreferencesChanged();
}

void SettingsController::setOscSendPort(int port)
{
    if (Preferences::isPort(port))
        reportStored(Preferences::store(Preferences::setOscSendPort, port));
    emit oscPreferencesChanged();
}

void SettingsController::setOscSendStateChanges(bool on)
{
    reportStored(Preferences::store(Preferences::setOscSendStateChanges, on));
    emit oscPreferencesChanged();
}

void SettingsController::setSplashSeconds(int seconds)
{
    reportStored(Preferences::store(Preferences::setSplashDuration, std::clamp(seconds, 1, 10)));
    emit splashSecondsChanged();
}

QString SettingsController::alertOutputUID() const { return Preferences::alertOutputUID(); }

void SettingsController::setAlertOutputUID(const QString &uid)
{
    reportStored(Preferences::store(Preferences::setAlertOutputUID, uid));
    emit alertOutputChanged();
}

int SettingsController::alertOutputIndex() const
{
    const QString uid = alertOutputUID();
    for (qsizetype i = 0; i < m_alertOutputs.size(); ++i)
        if (m_alertOutputs[i].toMap().value(QStringLiteral("uid")).toString() == uid)
            return static_cast<int>(i);
    return -1;
}

void SettingsController::refreshAlertOutputs()
{
    QVariantList outputs{QVariantMap{{QStringLiteral("uid"), QString()},
                                     {QStringLiteral("name"), AudioDeviceManager::systemOutputLabel()}}};
    for (const AudioOutputDevice &device : AudioDeviceManager::outputDevices())
        outputs << QVariantMap{{QStringLiteral("uid"), device.uid}, {QStringLiteral("name"), device.name}};
    if (outputs == m_alertOutputs)
        return;
    m_alertOutputs = std::move(outputs);
    emit alertOutputsChanged();
    emit alertOutputChanged();
}

bool SettingsController::oscStatusOk() const { return !m_network.oscStatus().has_value(); }

QString SettingsController::oscStatusText() const
{
    if (const std::optional<QString> status = m_network.oscStatus())
        return *status;
    return QStringLiteral("Écoute OSC active sur le port ") + QString::number(oscListenPort());
}

void SettingsController::setSessionName(const QString &name)
{
    if (name == m_sessionName)
        return;
    m_sessionName = name;
    emit sessionNameChanged();
}

void SettingsController::windowShown()
{
    refreshAlertOutputs();
    m_deviceWatcher.startListeningForChanges();
    m_web.refreshInterfaces();
}

void SettingsController::applyOSCSettings() { m_network.applyOSCSettings(); }

void SettingsController::renameSession()
{
    if (m_sessionName.isEmpty())
        return;
    TimerSession renamed = m_engine.session();
    renamed.name = m_sessionName;
    m_engine.updateProjectInfo(renamed);
}

void SettingsController::saveProject()
{
    QString error;
    const std::optional<QString> path = m_store.save(m_engine.session(), &error);
    m_saveResult = path ? QStringLiteral("Projet sauvegardé : ") + QFileInfo(*path).fileName()
                        : QStringLiteral("Erreur : ") + error;
    emit saveResultChanged();
}
