#include "followcontroller.h"

#include "alertplayer.h"
#include "clock.h"
#include "timerengine.h"

FollowController::FollowController(FollowSession &session, AppFlowState &flow, Clock &clock,
                                   AlertPlayer &alerts, QObject *parent)
    : QObject(parent), m_session(session), m_flow(flow), m_clock(clock), m_alerts(alerts),
      m_stored(Preferences::followSettings())
{
    m_bannerTick = clock.createTimer([this] {
        emit bannerTextChanged();
        armBannerTick();
    });
    connect(&session, &FollowSession::roleChanged, this, &FollowController::onRoleChanged);
    connect(&session, &FollowSession::statusChanged, this, &FollowController::statusChanged);
    connect(&session, &FollowSession::mirrored, this, &FollowController::onMirrored);
    connect(&session, &FollowSession::lost, this, [this] { m_alerts.play(AlertSound::zero()); });
    // However taken (the button, the keys, POST /api/takeover), this machine no longer follows
    // at its next launch either.
    connect(&session, &FollowSession::tookOver, this, [this] {
        Preferences::FollowSettings stored = Preferences::followSettings();
        if (stored.enabled) {
            stored.enabled = false;
            Preferences::setFollowSettings(stored);
        }
        m_stored = stored;
        emit preferencesChanged();
    });
    connect(&session, &FollowSession::aboutToFollow, this, [this] {
        if (m_beforeFollowing && m_flow.stage() == AppFlowState::Workspace)
            m_beforeFollowing();
    });
}

FollowController::~FollowController() = default;

QString FollowController::bannerText() const
{
    switch (m_session.role()) {
    case FollowSession::Role::Main:
        return {};
    case FollowSession::Role::Follower:
        return QStringLiteral("Machine de secours — suit %1").arg(m_session.host());
    case FollowSession::Role::Lost:
        break;
    }
    const qint64 gone = std::max<qint64>(0, m_clock.now().toMSecsSinceEpoch() - m_session.sinceMs());
    return QStringLiteral("Régie principale injoignable depuis %1")
        .arg(TimerEngine::format(double(gone / 1000), false));
}

void FollowController::onRoleChanged()
{
    emit roleChanged();
    emit bannerTextChanged();
    armBannerTick();
}

void FollowController::armBannerTick()
{
    if (!lost()) {
        m_bannerTick->stop();
        return;
    }
    // At each whole second of the time without the main.
    const qint64 gone = std::max<qint64>(0, m_clock.now().toMSecsSinceEpoch() - m_session.sinceMs());
    m_bannerTick->start(1000 - gone % 1000);
}

void FollowController::onMirrored()
{
    // The main's show takes the console, wherever the operator was.
    if (m_flow.stage() == AppFlowState::Splash)
        m_flow.setStageAfterSplash(AppFlowState::Workspace);
    else
        m_flow.setStage(AppFlowState::Workspace);
}

void FollowController::applyStored()
{
    m_stored = Preferences::followSettings();
    emit preferencesChanged();
    if (m_stored.enabled && !m_stored.host.trimmed().isEmpty() && Preferences::isPort(m_stored.port))
        m_session.follow(m_stored.host, m_stored.port, m_stored.accessCode);
    else if (m_session.isTrying() || following())
        m_session.takeOver();
}

QString FollowController::apply(bool enabled, const QString &host, int port, const QString &accessCode)
{
    if (enabled && host.trimmed().isEmpty())
        return QStringLiteral("Indiquer l'adresse de la régie principale");
    if (!Preferences::isPort(port))
        return QStringLiteral("Le port doit aller de 1 à 65535");
    QString error;
    if (!Preferences::setFollowSettings({enabled, host.trimmed(), port, accessCode.trimmed().toUpper()}, &error))
        return QStringLiteral("Échec d'enregistrement des réglages : %1").arg(error);
    applyStored();
    return {};
}

void FollowController::takeOver()
{
    if (following())
        m_session.takeOver();
}
