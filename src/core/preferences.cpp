#include "preferences.h"

#include <QRandomGenerator>
#include <QSettings>

#include <algorithm>

namespace {

namespace Key {
const QString oscListenEnabled = QStringLiteral("oscListenEnabled");
const QString oscListenPort = QStringLiteral("oscListenPort");
const QString oscSendEnabled = QStringLiteral("oscSendEnabled");
const QString oscSendHost = QStringLiteral("oscSendHost");
const QString oscSendPort = QStringLiteral("oscSendPort");
const QString oscSendStateChanges = QStringLiteral("oscSendStateChanges");
const QString splashDuration = QStringLiteral("splashDuration");
const QString alertOutputUID = QStringLiteral("alertOutputUID");
const QString webEnabled = QStringLiteral("webEnabled");
const QString webPort = QStringLiteral("webPort");
const QString webInterface = QStringLiteral("webInterface");
const QString webAccessCode = QStringLiteral("webAccessCode");
} // namespace Key

QVariant read(const QString &key, const QVariant &whenNeverStored)
{
    return QSettings().value(key, whenNeverStored);
}

void write(const QString &key, const QVariant &value)
{
    QSettings().setValue(key, value);
}

constexpr char codeAlphabet[] = "23456789ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr int codeLength = 8;

} // namespace

bool Preferences::oscListenEnabled() { return read(Key::oscListenEnabled, false).toBool(); }
int Preferences::oscListenPort() { return read(Key::oscListenPort, 53100).toInt(); }
bool Preferences::oscSendEnabled() { return read(Key::oscSendEnabled, false).toBool(); }
QString Preferences::oscSendHost() { return read(Key::oscSendHost, QStringLiteral("127.0.0.1")).toString(); }
int Preferences::oscSendPort() { return read(Key::oscSendPort, 53101).toInt(); }
bool Preferences::oscSendStateChanges() { return read(Key::oscSendStateChanges, false).toBool(); }
double Preferences::splashDuration() { return read(Key::splashDuration, 10.0).toDouble(); }
QString Preferences::alertOutputUID() { return read(Key::alertOutputUID, QString()).toString(); }

bool Preferences::webEnabled() { return read(Key::webEnabled, false).toBool(); }
int Preferences::webPort() { return read(Key::webPort, 8080).toInt(); }
QString Preferences::webInterface() { return read(Key::webInterface, QString()).toString(); }

QString Preferences::webAccessCode()
{
    QString code = read(Key::webAccessCode, QString()).toString();
    if (code.isEmpty()) {
        code = makeWebAccessCode();
        write(Key::webAccessCode, code);
    }
    return code;
}

QString Preferences::makeWebAccessCode()
{
    static_assert(sizeof(codeAlphabet) - 1 == 32);
    QString code;
    for (int i = 0; i < codeLength; ++i)
        code.append(QLatin1Char(codeAlphabet[QRandomGenerator::system()->bounded(32)]));
    return code;
}

bool Preferences::isWebAccessCode(const QString &code)
{
    const QLatin1StringView alphabet(codeAlphabet);
    return code.size() == codeLength
           && std::all_of(code.cbegin(), code.cend(), [&](QChar c) { return alphabet.contains(c); });
}

void Preferences::setOscListenEnabled(bool on) { write(Key::oscListenEnabled, on); }
void Preferences::setOscListenPort(int port) { write(Key::oscListenPort, port); }
void Preferences::setOscSendEnabled(bool on) { write(Key::oscSendEnabled, on); }
void Preferences::setOscSendHost(const QString &host) { write(Key::oscSendHost, host); }
void Preferences::setOscSendPort(int port) { write(Key::oscSendPort, port); }
void Preferences::setOscSendStateChanges(bool on) { write(Key::oscSendStateChanges, on); }
void Preferences::setSplashDuration(double seconds) { write(Key::splashDuration, seconds); }
void Preferences::setAlertOutputUID(const QString &uid) { write(Key::alertOutputUID, uid); }
void Preferences::setWebEnabled(bool on) { write(Key::webEnabled, on); }
void Preferences::setWebPort(int port) { write(Key::webPort, port); }
void Preferences::setWebInterface(const QString &address) { write(Key::webInterface, address); }
void Preferences::setWebAccessCode(const QString &code) { write(Key::webAccessCode, code); }

Preferences::OscSettings Preferences::storedOscSettings()
{
    const QSettings settings;
    OscSettings stored;
    stored.listenEnabled = settings.value(Key::oscListenEnabled, false).toBool();
    stored.listenPort = settings.value(Key::oscListenPort, 0).toInt();
    stored.sendEnabled = settings.value(Key::oscSendEnabled, false).toBool();
    stored.sendHost = settings.value(Key::oscSendHost, QStringLiteral("127.0.0.1")).toString();
    stored.sendPort = settings.value(Key::oscSendPort, 0).toInt();
    stored.sendStateChanges = settings.value(Key::oscSendStateChanges, false).toBool();
    return stored;
}

double Preferences::storedSplashDuration()
{
    return read(Key::splashDuration, 0.0).toDouble();
}

Preferences::WebSettings Preferences::storedWebSettings()
{
    WebSettings stored;
    {
        const QSettings settings;
        stored.enabled = settings.value(Key::webEnabled, false).toBool();
        stored.port = settings.value(Key::webPort, 0).toInt();
        stored.interfaceAddress = settings.value(Key::webInterface, QString()).toString();
    }
    stored.accessCode = webAccessCode();
    return stored;
}
