#pragma once

#include <QRect>
#include <QString>

#include <optional>

// The user's persisted preferences (QSettings, in the platform's usual place, written through
// SettingsFile so that a disk that refuses them is noticed).
//
// Two ways to read them. The settings window shows a documented default while a key was never
// stored (listen port 53100, send port 53101…). Every other reader gets the raw stored value,
// where a key never stored reads as false, 0 or empty: a port the user never edited disables
// its direction until it is stored.
class Preferences
{
public:
    // Whether a stored port can be used: 1 to 65535 (0, never stored, cannot).
    static bool isPort(int port) { return port >= 1 && port <= 65535; }

    // ---- As the settings window shows them ----
    static bool oscListenEnabled();  // false
    static int oscListenPort();      // 53100
    static bool oscSendEnabled();    // false
    static QString oscSendHost();    // "127.0.0.1"
    static int oscSendPort();        // 53101
    // Whether every change of the transport and of the show controls also goes out at once.
    static bool oscSendStateChanges(); // false
    static double splashDuration();  // 10.0 seconds
    static QString alertOutputUID(); // "": the system output
    static bool webEnabled();        // false
    static int webPort();            // 8080
    static QString webInterface();   // "": every interface
    // Made at random and stored the first time it is read, so the settings window and the
    // server always agree on it.
    static QString webAccessCode();

    // Each setter stores its value at once. False, with "impossible d'écrire « file » (reason)"
    // in `error`, when the disk refused it; the file then keeps the previous values.
    static bool setOscListenEnabled(bool on, QString *error = nullptr);
    static bool setOscListenPort(int port, QString *error = nullptr);
    static bool setOscSendEnabled(bool on, QString *error = nullptr);
    static bool setOscSendHost(const QString &host, QString *error = nullptr);
    static bool setOscSendPort(int port, QString *error = nullptr);
    static bool setOscSendStateChanges(bool on, QString *error = nullptr);
    static bool setSplashDuration(double seconds, QString *error = nullptr);
    static bool setAlertOutputUID(const QString &uid, QString *error = nullptr);
    static bool setWebEnabled(bool on, QString *error = nullptr);
    static bool setWebPort(int port, QString *error = nullptr);
    static bool setWebInterface(const QString &address, QString *error = nullptr);
    static bool setWebAccessCode(const QString &code, QString *error = nullptr);
    // Calls one of them and gives its outcome: "" when the value was stored, else why not.
    template <typename Arg, typename Value>
    static QString store(bool (*setter)(Arg, QString *), const Value &value)
    {
        QString error;
        setter(value, &error);
        return error;
    }

    // A fresh access code: eight characters from an alphabet without the look-alikes 0/O and
    // 1/I, easy to read aloud and to type on a phone (32^8, about 10^12 codes).
    static QString makeWebAccessCode();
    // Whether `code` could have been made so: eight characters of that alphabet, capitals only.
    static bool isWebAccessCode(const QString &code);

    // ---- Raw, for the readers outside the settings window ----
    struct OscSettings {
        bool listenEnabled = false;
        int listenPort = 0;
        bool sendEnabled = false;
        QString sendHost = QStringLiteral("127.0.0.1");
        int sendPort = 0;
        bool sendStateChanges = false;

        bool operator==(const OscSettings &) const = default;
    };
    static OscSettings storedOscSettings();

    struct WebSettings {
        bool enabled = false;
        int port = 0;
        QString interfaceAddress; // empty: every interface
        QString accessCode;       // made and stored when it was never stored

        bool operator==(const WebSettings &) const = default;
    };
    static WebSettings storedWebSettings();
    static double storedSplashDuration(); // 0 when never stored

    // ---- Following a main machine, as a backup ----
    // Keys `followEnabled`, `followHost`, `followPort` (8080 while never stored) and
    // `followAccessCode`.
    struct FollowSettings {
        bool enabled = false;
        QString host;
        int port = 8080;
        QString accessCode;

        bool operator==(const FollowSettings &) const = default;
    };
    static FollowSettings followSettings();
    // Stores the four at once; false, with why in `error`, when the disk refused them.
    static bool setFollowSettings(const FollowSettings &settings, QString *error = nullptr);

    // ---- The display each output window was last sent to, full screen ----
    // `output` is the window's identifier, "stage" or "confidence"; the keys are
    // `<output>DisplayName` and `<output>DisplayGeometry` ("1280x720+1920+0").
    struct OutputDisplay {
        QString name;
        QRect geometry;

        bool operator==(const OutputDisplay &) const = default;
    };
    // None when never stored, or when neither a name nor a readable geometry was.
    static std::optional<OutputDisplay> outputDisplay(const QString &output);
    static bool setOutputDisplay(const QString &output, const OutputDisplay &display,
                                 QString *error = nullptr);
};
