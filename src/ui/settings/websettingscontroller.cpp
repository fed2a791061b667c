#include "websettingscontroller.h"

#include "preferences.h"
#include "webserver.h"

#include <QClipboard>
#include <QGuiApplication>

WebSettingsController::WebSettingsController(WebServer &server, QObject *parent)
    : QObject(parent), m_server(server)
{
    connect(&m_server, &WebServer::webStatusChanged, this, &WebSettingsController::statusChanged);
    refreshInterfaces();
}

bool WebSettingsController::webEnabled() const { return Preferences::webEnabled(); }
int WebSettingsController::webPort() const { return Preferences::webPort(); }
QString WebSettingsController::webInterface() const { return Preferences::webInterface(); }

void WebSettingsController::setWebEnabled(bool on)
{
    QString error = Preferences::store(Preferences::setWebEnabled, on);
    // The server serves only a stored port; the field shows 8080 before any is typed, and that
    // is the port an operator who turns the server on expects it to serve.
    if (on && error.isEmpty())
        error = Preferences::store(Preferences::setWebPort, Preferences::webPort());
    emit preferenceStored(error);
    emit preferencesChanged();
    emit statusChanged(); // the status line shows while the switch is on
}

void WebSettingsController::setWebPort(int port)
{
    if (Preferences::isPort(port))
        emit preferenceStored(Preferences::store(Preferences::setWebPort, port));
    emit preferencesChanged();
}

void WebSettingsController::setWebInterface(const QString &address)
{
    emit preferenceStored(Preferences::store(Preferences::setWebInterface, address));
    emit preferencesChanged();
    // A stored address the machine does not have is listed while chosen; when the list stays,
    // the chosen entry still moves.
    if (!refreshInterfaces())
        emit interfacesChanged();
}

int WebSettingsController::interfaceIndex() const
{
    const QString chosen = webInterface();
    for (qsizetype i = 0; i < m_interfaceChoices.size(); ++i)
        if (m_interfaceChoices[i].toMap().value(QStringLiteral("address")).toString() == chosen)
            return int(i);
    return -1;
}

bool WebSettingsController::refreshInterfaces()
{
    m_machine = WebAddresses::machineAddresses();
    const QString chosen = webInterface();
    auto choice = [](const QString &address, const QString &label) {
        return QVariantMap{{QStringLiteral("address"), address}, {QStringLiteral("label"), label}};
    };
    QVariantList choices{choice(QString(), QStringLiteral("Toutes les interfaces"))};
    bool chosenListed = chosen.isEmpty();
    for (const WebAddresses::InterfaceAddress &entry : std::as_const(m_machine)) {
        const QString address = entry.address.toString();
        choices << choice(address, QStringLiteral("%1 (%2)").arg(address, entry.interfaceName));
        chosenListed = chosenListed || address == chosen;
    }
    if (!chosenListed)
        choices << choice(chosen, QStringLiteral("%1 (absente de cette machine)").arg(chosen));
    if (choices == m_interfaceChoices)
        return false;
    m_interfaceChoices = std::move(choices);
    emit interfacesChanged();
    emit statusChanged(); // the pages' addresses follow the machine's
    return true;
}

QString WebSettingsController::accessCode() const { return Preferences::webAccessCode(); }

void WebSettingsController::newAccessCode()
{
    QString code;
    do
        code = Preferences::makeWebAccessCode();
    while (code == accessCode());
    emit preferenceStored(Preferences::store(Preferences::setWebAccessCode, code));
    m_server.reloadAccessCode();
    emit accessCodeChanged();
}

bool WebSettingsController::setAccessCode(const QString &typed)
{
    const QString code = typed.trimmed().toUpper();
    if (!Preferences::isWebAccessCode(code))
        return false;
    if (code != accessCode()) {
        emit preferenceStored(Preferences::store(Preferences::setWebAccessCode, code));
        m_server.reloadAccessCode();
        emit accessCodeChanged();
    }
    return true;
}

void WebSettingsController::copyToClipboard(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

void WebSettingsController::apply()
{
    m_server.applyWebSettings();
    refreshInterfaces();
    emit statusChanged(); // serving or not, and where, may have changed without a new text
}

bool WebSettingsController::serving() const { return m_server.serverPort() != 0; }
bool WebSettingsController::failed() const { return m_server.webStatus().has_value(); }

QString WebSettingsController::statusText() const
{
    if (const std::optional<QString> status = m_server.webStatus())
        return *status;
    if (serving())
        return QStringLiteral("Serveur web actif sur le port %1").arg(m_server.serverPort());
    return QStringLiteral("Serveur web arrêté : « Appliquer la configuration web » le démarre");
}

QVariantList WebSettingsController::pageHosts() const
{
    QVariantList hosts;
    if (!serving())
        return hosts;
    const quint16 port = m_server.serverPort();
    const QList<WebAddresses::Page> pages = WebAddresses::pages();
    for (const WebAddresses::InterfaceAddress &entry :
         WebAddresses::reachableAt(m_machine, m_server.serverAddress())) {
        QVariantList links;
        for (const WebAddresses::Page &page : pages)
            links << QVariantMap{{QStringLiteral("title"), page.title},
                                 {QStringLiteral("detail"), page.detail},
                                 {QStringLiteral("url"), WebAddresses::pageUrl(entry.address, port, page.path)}};
        hosts << QVariantMap{{QStringLiteral("interfaceName"), entry.interfaceName},
                             {QStringLiteral("address"), entry.address.toString()},
                             {QStringLiteral("pages"), links}};
    }
    return hosts;
}
