#pragma once

#include "webaddresses.h"

#include <QObject>
#include <QQmlEngine>
#include <QVariantList>

class WebServer;

// What the settings' "Web" tab reads and changes: the stored web preferences (shown with their
// defaults while never stored, written as soon as they are changed), the machine's interfaces,
// the access code, the server's status and, while it serves, the pages' addresses. Editing the
// switch, the port or the interface changes nothing on the network until apply(); a new access
// code takes effect at once, since it moves nothing and the old one should stop working now.
class WebSettingsController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the settings controller")

    Q_PROPERTY(bool webEnabled READ webEnabled WRITE setWebEnabled NOTIFY preferencesChanged FINAL)
    Q_PROPERTY(int webPort READ webPort WRITE setWebPort NOTIFY preferencesChanged FINAL)
    // The address chosen in the interface menu; "" for every interface.
    Q_PROPERTY(QString webInterface READ webInterface WRITE setWebInterface
                   NOTIFY preferencesChanged FINAL)
    // The menu's entries, each { address, label }: every interface first, then each IPv4 address
    // of the machine by interface; a stored address the machine no longer has stays listed.
    Q_PROPERTY(QVariantList interfaceChoices READ interfaceChoices NOTIFY interfacesChanged FINAL)
    Q_PROPERTY(int interfaceIndex READ interfaceIndex NOTIFY interfacesChanged FINAL)
    Q_PROPERTY(QString accessCode READ accessCode NOTIFY accessCodeChanged FINAL)

    // The status line: shown while the switch is on or the server still serves.
    Q_PROPERTY(bool statusShown READ statusShown NOTIFY statusChanged FINAL)
    Q_PROPERTY(bool serving READ serving NOTIFY statusChanged FINAL)
    // The server's error ("Port 8080 indisponible (…)"), if the last start failed.
    Q_PROPERTY(bool failed READ failed NOTIFY statusChanged FINAL)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusChanged FINAL)
    // While serving, one entry per address the pages can be opened at, each
    // { interfaceName, address, pages: [{ title, detail, url }] }.
    Q_PROPERTY(QVariantList pageHosts READ pageHosts NOTIFY statusChanged FINAL)

public:
    explicit WebSettingsController(WebServer &server, QObject *parent = nullptr);

    bool webEnabled() const;
    int webPort() const;
    QString webInterface() const;
    void setWebEnabled(bool on);
    void setWebPort(int port); // a port outside 1–65535 is not stored
    void setWebInterface(const QString &address);

    QVariantList interfaceChoices() const { return m_interfaceChoices; }
    int interfaceIndex() const;
    QString accessCode() const;

    bool statusShown() const { return webEnabled() || serving(); }
    bool serving() const;
    bool failed() const;
    QString statusText() const;
    QVariantList pageHosts() const;

    // Reads the machine's interfaces afresh (the window shows, a cable is plugged in…).
    Q_INVOKABLE bool refreshInterfaces(); // whether the list changed
    // Starts, moves or stops the server with the stored preferences.
    Q_INVOKABLE void apply();
    // A fresh random access code, stored and in force at once.
    Q_INVOKABLE void newAccessCode();
    // Stores a typed code, capitals or not, when it is a whole code; false and nothing stored
    // otherwise.
    Q_INVOKABLE bool setAccessCode(const QString &typed);
    // Puts a page's address on the clipboard, to paste it in a message to the crew.
    Q_INVOKABLE void copyToClipboard(const QString &text);

signals:
    void preferencesChanged();
    void interfacesChanged();
    void accessCodeChanged();
    void statusChanged();
    // After each write of a preference: "" when it was stored, else why not.
    void preferenceStored(const QString &error);

private:
    WebServer &m_server;
    QList<WebAddresses::InterfaceAddress> m_machine;
    QVariantList m_interfaceChoices;
};
