#pragma once

#include "audiodevicewatcher.h"
#include "websettingscontroller.h"

#include <QObject>
#include <QQmlEngine>
#include <QVariantList>

class NetworkCoordinator;
class SessionStore;
class TimerEngine;
class WebServer;

// What the settings window reads and changes: the stored preferences (shown with their
// documented defaults while never stored, written as soon as they are changed), the machine's
// audio outputs for the alerts, the OSC listener's status, and two quick project actions on the
// open show. Editing the OSC fields changes nothing on the network until applyOSCSettings().
// The web server's settings have a controller of their own, `web`.
class SettingsController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")

    Q_PROPERTY(bool oscListenEnabled READ oscListenEnabled WRITE setOscListenEnabled
                   NOTIFY oscPreferencesChanged FINAL)
    Q_PROPERTY(int oscListenPort READ oscListenPort WRITE setOscListenPort
                   NOTIFY oscPreferencesChanged FINAL)
    Q_PROPERTY(bool oscSendEnabled READ oscSendEnabled WRITE setOscSendEnabled
                   NOTIFY oscPreferencesChanged FINAL)
    Q_PROPERTY(QString oscSendHost READ oscSendHost WRITE setOscSendHost
                   NOTIFY oscPreferencesChanged FINAL)
    Q_PROPERTY(int oscSendPort READ oscSendPort WRITE setOscSendPort
                   NOTIFY oscPreferencesChanged FINAL)
    Q_PROPERTY(bool oscSendStateChanges READ oscSendStateChanges WRITE setOscSendStateChanges
                   NOTIFY oscPreferencesChanged FINAL)
    // Whole seconds, 1 to 10.
    Q_PROPERTY(int splashSeconds READ splashSeconds WRITE setSplashSeconds
                   NOTIFY splashSecondsChanged FINAL)

    // The alert output menu: first the system output (uid ""), then each output by name.
    Q_PROPERTY(QVariantList alertOutputs READ alertOutputs NOTIFY alertOutputsChanged FINAL)
    Q_PROPERTY(QString alertOutputUID READ alertOutputUID WRITE setAlertOutputUID
                   NOTIFY alertOutputChanged FINAL)
    // The entry of the stored output in alertOutputs; -1 while that output is not connected.
    Q_PROPERTY(int alertOutputIndex READ alertOutputIndex NOTIFY alertOutputChanged FINAL)

    // The status line under the OSC settings.
    Q_PROPERTY(bool oscStatusOk READ oscStatusOk NOTIFY oscStatusChanged FINAL)
    Q_PROPERTY(QString oscStatusText READ oscStatusText NOTIFY oscStatusChanged FINAL)

    // Why the last change of a preference could not be stored ("Échec d'enregistrement des
    // réglages : impossible d'écrire « … » (plus d'espace libre sur le disque)"); empty once
    // one is stored again. The window shows it at its foot, whatever the tab.
    Q_PROPERTY(QString preferencesError READ preferencesError NOTIFY preferencesErrorChanged FINAL)

    // The "Session" tab: the name typed (starts empty) and the last save's outcome.
    Q_PROPERTY(QString sessionName READ sessionName WRITE setSessionName
                   NOTIFY sessionNameChanged FINAL)
    Q_PROPERTY(QString saveResult READ saveResult NOTIFY saveResultChanged FINAL)

    // The "Web" tab.
    Q_PROPERTY(WebSettingsController *web READ web CONSTANT FINAL)

public:
    SettingsController(TimerEngine &engine, NetworkCoordinator &network, WebServer &web,
                       SessionStore &store, QObject *parent = nullptr);

    bool oscListenEnabled() const;
    int oscListenPort() const;
    bool oscSendEnabled() const;
    QString oscSendHost() const;
    int oscSendPort() const;
    bool oscSendStateChanges() const;
    int splashSeconds() const;
    void setOscListenEnabled(bool on);
    void setOscListenPort(int port); // a port outside 1–65535 is not stored
    void setOscSendEnabled(bool on);
    void setOscSendHost(const QString &host);
    void setOscSendPort(int port);
    void setOscSendStateChanges(bool on);
    void setSplashSeconds(int seconds); // held within 1–10

    QVariantList alertOutputs() const { return m_alertOutputs; }
    QString alertOutputUID() const;
    void setAlertOutputUID(const QString &uid);
    int alertOutputIndex() const;

    bool oscStatusOk() const;
    QString oscStatusText() const;

    QString preferencesError() const { return m_preferencesError; }
    QString sessionName() const { return m_sessionName; }
    void setSessionName(const QString &name);
    QString saveResult() const { return m_saveResult; }
    WebSettingsController *web() { return &m_web; }

    // The window calls it each time it shows: the outputs and the network interfaces are read
    // afresh and, the first time, the outputs' changes are followed from then on.
    Q_INVOKABLE void windowShown();
    // Reads the stored OSC preferences afresh and (re)configures the network with them.
    Q_INVOKABLE void applyOSCSettings();
    // Gives the open show the typed name, exactly as typed; an empty name does nothing.
    Q_INVOKABLE void renameSession();
    // Saves the open show into the project library and says how it went in saveResult.
    Q_INVOKABLE void saveProject();

signals:
    void oscPreferencesChanged();
    void splashSecondsChanged();
    void alertOutputsChanged();
    void alertOutputChanged();
    void oscStatusChanged();
    void preferencesErrorChanged();
    void sessionNameChanged();
    void saveResultChanged();

private:
    void refreshAlertOutputs();
    // Takes the outcome of a write of the preferences: "" when stored, else why not.
    void reportStored(const QString &error);

    TimerEngine &m_engine;
    NetworkCoordinator &m_network;
    SessionStore &m_store;
    AudioDeviceWatcher m_deviceWatcher;
    WebSettingsController m_web;
    QVariantList m_alertOutputs;
    QString m_preferencesError;
    QString m_sessionName;
    QString m_saveResult;
};
