#pragma once

#include "appflowstate.h"
#include "followsession.h"
#include "preferences.h"

#include <QObject>
#include <QQmlEngine>
#include <QString>

#include <functional>
#include <memory>

class AlertPlayer;
class Clock;
class ClockTimer;

// This machine as a backup, for the views: the console's banner while it follows a main or has
// lost it, "Prendre la main", and the settings' "Secours" tab (the stored preferences, applied
// by its button, and where the following stands).
//
// Following puts the main's show on the console: the operator's own show, if one is open, is
// saved and closed first (the hook given by the application); the project files are not
// written while following. The main lost, an alert sounds once on this machine's alert output.
class FollowController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")

    // Following a main, or having lost it: the console is read-only under the banner.
    Q_PROPERTY(bool following READ following NOTIFY roleChanged FINAL)
    Q_PROPERTY(bool lost READ lost NOTIFY roleChanged FINAL)
    // "Machine de secours — suit 192.168.1.20", "Régie principale injoignable depuis 00:05".
    Q_PROPERTY(QString bannerText READ bannerText NOTIFY bannerTextChanged FINAL)

    // The "Secours" tab: the stored preferences, and where the following stands.
    Q_PROPERTY(bool followEnabled READ followEnabled NOTIFY preferencesChanged FINAL)
    Q_PROPERTY(QString followHost READ followHost NOTIFY preferencesChanged FINAL)
    Q_PROPERTY(int followPort READ followPort NOTIFY preferencesChanged FINAL)
    Q_PROPERTY(QString followAccessCode READ followAccessCode NOTIFY preferencesChanged FINAL)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusChanged FINAL)
    Q_PROPERTY(bool statusIsError READ statusIsError NOTIFY statusChanged FINAL)

public:
    // All must outlive the controller.
    FollowController(FollowSession &session, AppFlowState &flow, Clock &clock, AlertPlayer &alerts,
                     QObject *parent = nullptr);
    ~FollowController() override;

    // Called once before the main's show first takes the console: saves and closes the show
    // this machine had open.
    void setBeforeFollowing(std::function<void()> hook) { m_beforeFollowing = std::move(hook); }

    bool following() const { return m_session.role() != FollowSession::Role::Main; }
    bool lost() const { return m_session.role() == FollowSession::Role::Lost; }
    QString bannerText() const;

    bool followEnabled() const { return m_stored.enabled; }
    QString followHost() const { return m_stored.host; }
    int followPort() const { return m_stored.port; }
    QString followAccessCode() const { return m_stored.accessCode; }
    QString statusText() const { return m_session.status(); }
    bool statusIsError() const { return m_session.statusIsError(); }

    // Follows the main the stored preferences name, or follows none (see apply()).
    void applyStored();
    // The tab's button: stores the four preferences, then follows that main, or, switched off,
    // makes this machine a main with what it shows. "" when stored, else why not (nothing is
    // changed then). A port outside 1–65535 or an empty address is refused.
    Q_INVOKABLE QString apply(bool enabled, const QString &host, int port, const QString &accessCode);
    // "Prendre la main": this machine becomes the main with the show and clock it shows, and
    // is no longer set to follow.
    Q_INVOKABLE void takeOver();

signals:
    void roleChanged();
    void bannerTextChanged();
    void preferencesChanged();
    void statusChanged();

private:
    void onRoleChanged();
    void onMirrored();
    void armBannerTick();

    FollowSession &m_session;
    AppFlowState &m_flow;
    Clock &m_clock;
    AlertPlayer &m_alerts;
    std::function<void()> m_beforeFollowing;
    std::unique_ptr<ClockTimer> m_bannerTick;
    Preferences::FollowSettings m_stored;
};
