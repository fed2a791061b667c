#include "preferences.h"

#include <QSettings>

namespace {

namespace Key {
const QString oscListenEnabled = QStringLiteral("oscListenEnabled");
const QString oscListenPort = QStringLiteral("oscListenPort");
const QString oscSendEnabled = QStringLiteral("oscSendEnabled");
const QString oscSendHost = QStringLiteral("oscSendHost");
const QString oscSendPort = QStringLiteral("oscSendPort");
const QString splashDuration = QStringLiteral("splashDuration");
const QString alertOutputUID = QStringLiteral("alertOutputUID");
} // namespace Key

QVariant read(const QString &key, const QVariant &whenNeverStored)
{
    return QSettings().value(key, whenNeverStored);
}

void write(const QString &key, const QVariant &value)
{
    QSettings().setValue(key, value);
}

} // namespace

bool Preferences::oscListenEnabled() { return read(Key::oscListenEnabled, false).toBool(); }
int Preferences::oscListenPort() { return read(Key::oscListenPort, 53100).toInt(); }
bool Preferences::oscSendEnabled() { return read(Key::oscSendEnabled, false).toBool(); }
QString Preferences::oscSendHost() { return read(Key::oscSendHost, QStringLiteral("127.0.0.1")).toString(); }
int Preferences::oscSendPort() { return read(Key::oscSendPort, 53101).toInt(); }
double Preferences::splashDuration() { return read(Key::splashDuration, 10.0).toDouble(); }
QString Preferences::alertOutputUID() { return read(Key::alertOutputUID, QString()).toString(); }

void Preferences::setOscListenEnabled(bool on) { write(Key::oscListenEnabled, on); }
void Preferences::setOscListenPort(int port) { write(Key::oscListenPort, port); }
void Preferences::setOscSendEnabled(bool on) { write(Key::oscSendEnabled, on); }
void Preferences::setOscSendHost(const QString &host) { write(Key::oscSendHost, host); }
void Preferences::setOscSendPort(int port) { write(Key::oscSendPort, port); }
void Preferences::setSplashDuration(double seconds) { write(Key::splashDuration, seconds); }
void Preferences::setAlertOutputUID(const QString &uid) { write(Key::alertOutputUID, uid); }

Preferences::OscSettings Preferences::storedOscSettings()
{
    const QSettings settings;
    OscSettings stored;
    stored.listenEnabled = settings.value(Key::oscListenEnabled, false).toBool();
    stored.listenPort = settings.value(Key::oscListenPort, 0).toInt();
    stored.sendEnabled = settings.value(Key::oscSendEnabled, false).toBool();
    stored.sendHost = settings.value(Key::oscSendHost, QStringLiteral("127.0.0.1")).toString();
    stored.sendPort = settings.value(Key::oscSendPort, 0).toInt();
    return stored;
}

double Preferences::storedSplashDuration()
{
    return read(Key::splashDuration, 0.0).toDouble();
}
