#pragma once

#include <QString>

// The user's persisted preferences (QSettings, in the platform's usual place).
//
// Two ways to read them. The settings window shows a documented default while a key was never
// stored (listen port 53100, send port 53101…). Every other reader gets the raw stored value,
// where a key never stored reads as false, 0 or empty: a port the user never edited disables
// its direction until it is stored.
class Preferences
{
public:
    // ---- As the settings window shows them ----
    static bool oscListenEnabled();  // false
    static int oscListenPort();      // 53100
    static bool oscSendEnabled();    // false
    static QString oscSendHost();    // "127.0.0.1"
    static int oscSendPort();        // 53101
    static double splashDuration();  // 10.0 seconds
    static QString alertOutputUID(); // "": the system output

    static void setOscListenEnabled(bool on);
    static void setOscListenPort(int port);
    static void setOscSendEnabled(bool on);
    static void setOscSendHost(const QString &host);
    static void setOscSendPort(int port);
    static void setSplashDuration(double seconds);
    static void setAlertOutputUID(const QString &uid);

    // ---- Raw, for the readers outside the settings window ----
    struct OscSettings {
        bool listenEnabled = false;
        int listenPort = 0;
        bool sendEnabled = false;
        QString sendHost = QStringLiteral("127.0.0.1");
        int sendPort = 0;

        bool operator==(const OscSettings &) const = default;
    };
    static OscSettings storedOscSettings();
    static double storedSplashDuration(); // 0 when never stored
};
