#include "preferences.h"

#include "settingsfile.h"

#include <QRandomGenerator>
#include <QRegularExpression>

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
const QString followEnabled = QStringLiteral("followEnabled");
const QString followHost = QStringLiteral("followHost");
const QString followPort = QStringLiteral("followPort");
const QString followAccessCode = QStringLiteral("followAccessCode");
} // namespace Key

QVariant read(const QString &key, const QVariant &whenNeverStored)
{
    return SettingsFile().value(key, whenNeverStored);
}

bool write(const QString &key, const QVariant &value, QString *error)
{
    SettingsFile settings;
    settings.setValue(key, value);
    return settings.save(error);
}

// A display's place as X writes it: "1280x720+1920+0", "1920x1080-1920+0".
QString geometryText(const QRect &rect)
{
    return QString::asprintf("%dx%d%+d%+d", rect.width(), rect.height(), rect.x(), rect.y());
}

QRect geometryFrom(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,6})x(\\d{1,6})([+-]\\d{1,6})([+-]\\d{1,6})$"));
    const QRegularExpressionMatch match = pattern.match(text.trimmed());
    if (!match.hasMatch())
        return {};
    return QRect(match.captured(3).toInt(), match.captured(4).toInt(), match.captured(1).toInt(),
                 match.captured(2).toInt());
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
        write(Key::webAccessCode, code, nullptr);
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

bool Preferences::setOscListenEnabled(bool on, QString *error)
{
    return write(Key::oscListenEnabled, on, error);
}

bool Preferences::setOscListenPort(int port, QString *error)
{
    return write(Key::oscListenPort, port, error);
}

bool Preferences::setOscSendEnabled(bool on, QString *error)
{
    return write(Key::oscSendEnabled, on, error);
}

bool Preferences::setOscSendHost(const QString &host, QString *error)
{
    return write(Key::oscSendHost, host, error);
}

bool Preferences::setOscSendPort(int port, QString *error)
{
    return write(Key::oscSendPort, port, error);
}

bool Preferences::setOscSendStateChanges(bool on, QString *error)
{
    return write(Key::oscSendStateChanges, on, error);
}

bool Preferences::setSplashDuration(double seconds, QString *error)
{
    return write(Key::splashDuration, seconds, error);
}

bool Preferences::setAlertOutputUID(const QString &uid, QString *error)
{
    return write(Key::alertOutputUID, uid, error);
}

bool Preferences::setWebEnabled(bool on, QString *error)
{
    return write(Key::webEnabled, on, error);
}

bool Preferences::setWebPort(int port, QString *error)
{
    return write(Key::webPort, port, error);
}

bool Preferences::setWebInterface(const QString &address, QString *error)
{
    return write(Key::webInterface, address, error);
}

bool Preferences::setWebAccessCode(const QString &code, QString *error)
{
    return write(Key::webAccessCode, code, error);
}

Preferences::OscSettings Preferences::storedOscSettings()
{
    const SettingsFile settings;
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
        const SettingsFile settings;
        stored.enabled = settings.value(Key::webEnabled, false).toBool();
        stored.port = settings.value(Key::webPort, 0).toInt();
        stored.interfaceAddress = settings.value(Key::webInterface, QString()).toString();
    }
    stored.accessCode = webAccessCode();
    return stored;
}

Preferences::FollowSettings Preferences::followSettings()
{
    const SettingsFile settings;
    return {settings.value(Key::followEnabled, false).toBool(), settings.value(Key::followHost).toString(),
            settings.value(Key::followPort, 8080).toInt(), settings.value(Key::followAccessCode).toString()};
}

bool Preferences::setFollowSettings(const FollowSettings &follow, QString *error)
{
    SettingsFile settings;
    settings.setValue(Key::followEnabled, follow.enabled);
    settings.setValue(Key::followHost, follow.host);
    settings.setValue(Key::followPort, follow.port);
    settings.setValue(Key::followAccessCode, follow.accessCode);
    return settings.save(error);
}

std::optional<Preferences::OutputDisplay> Preferences::outputDisplay(const QString &output)
{
    const SettingsFile settings;
    OutputDisplay display{settings.value(output + QStringLiteral("DisplayName")).toString(),
                          geometryFrom(settings.value(output + QStringLiteral("DisplayGeometry")).toString())};
    if (display.name.isEmpty() && !display.geometry.isValid())
        return std::nullopt;
    return display;
}

bool Preferences::setOutputDisplay(const QString &output, const OutputDisplay &display,
                                   QString *error)
{
    SettingsFile settings;
    settings.setValue(output + QStringLiteral("DisplayName"), display.name);
    settings.setValue(output + QStringLiteral("DisplayGeometry"), geometryText(display.geometry));
    return settings.save(error);
}
