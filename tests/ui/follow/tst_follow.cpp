// A backup machine through its real windows: the console following a main served on 127.0.0.1
// (an engine of its own on a hand-moved clock), read-only under its banner; the main lost, the
// banner red and counting and the alert heard; Ctrl+Shift+T; the settings' "Secours" tab typed
// into and applied. Run on 1150 × 750 and 1920 × 1080 windows, and again at twice the scale.
#include "pixels.h"
#include "uuidtext.h"
#include "../settings/settingsfixture.h"
#include "theme.h"
#include "../../web/webfixture.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

namespace {

// The windows of the backup, and a main it can follow.
struct FollowFixture : SettingsFixture {
    explicit FollowFixture(QSize size)
    {
        TimerSession show = showOf({durationCue(QStringLiteral("Ouverture"), 600), durationCue(QStringLiteral("Débat"), 900)});
        show.name = QStringLiteral("Soirée des lumières");
        mainEngine.loadSession(show);
        storeWebSettings(freeTcpPort());
        mainServer.applyWebSettings();
        operatorWindow->resize(size);
        flow.setStage(AppFlowState::Sessions);
    }
    // Both clocks move together.
    void advance(std::chrono::milliseconds step)
    {
        mainClock.advance(step);
        clock.advance(step);
    }
    void followMain()
    {
        QCOMPARE(follow.apply(true, QStringLiteral("127.0.0.1"), mainServer.serverPort(), QStringLiteral("code2345")),
                 QString());
        QTRY_COMPARE(flow.stage(), AppFlowState::Workspace);
        QTRY_VERIFY(bannerShown());
    }
    bool bannerShown() const
    {
        const QQuickItem *banner = item("followBanner");
        return banner && banner->isVisible() && banner->height() == 48;
    }
    QString bannerText() const { return item("followBannerText")->property("text").toString(); }
    QColor bannerColour() const
    {
        const QImage image = operatorWindow->grabWindow();
        const QQuickItem *banner = item("followBanner");
        const qreal scale = operatorWindow->effectiveDevicePixelRatio();
        const QRectF rect = banner->mapRectToScene(QRectF(0, 0, 200, banner->height()));
        return dominantColour(image, QRect((rect.topLeft() * scale).toPoint(), (rect.size() * scale).toSize()), Qt::white);
    }
    QString shotName(const char *name) const
    {
        const QSize size = operatorWindow->size() * operatorWindow->effectiveDevicePixelRatio();
        return QStringLiteral("follow-%1-%2x%3").arg(QLatin1StringView(name)).arg(size.width()).arg(size.height());
    }
    void keepShot(const char *name) { keepScreenshot(operatorWindow->grabWindow(), shotName(name)); }

    ManualClock mainClock{clock.now(), clock.timeZone()};
    RecordingAlertPlayer mainSound{mainClock};
    TimerEngine mainEngine{mainClock, mainSound};
    WebServer mainServer{mainEngine, mainClock};
};

} // namespace

class TestFollow : public QObject
{
    Q_OBJECT

private slots:
    void theConsoleShowsTheMainsShowReadOnlyUnderItsBanner_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("1150x750") << QSize(1150, 750);
        QTest::newRow("1920x1080") << QSize(1920, 1080);
    }

    void theConsoleShowsTheMainsShowReadOnlyUnderItsBanner()
    {
        QFETCH(QSize, size);
        FollowFixture f(size);
        f.mainEngine.start(0);
        f.mainEngine.sendMessage(QStringLiteral("Merci de conclure"), false);
        f.advance(61'300ms);
        QVERIFY(!f.bannerShown());
        f.followMain();
        QCOMPARE(f.bannerText(), QStringLiteral("Machine de secours — suit 127.0.0.1"));
        QCOMPARE(f.item("takeOverButton")->property("text").toString(), QStringLiteral("Prendre la main (Ctrl+Shift+T)"));
        QTRY_COMPARE(f.bannerColour(), QColor(0x2B, 0x3A, 0x4F)); // once the console has faded in
        QCOMPARE(f.engine.sessionName(), QStringLiteral("Soirée des lumières"));
        QCOMPARE(f.engine.remaining(), f.mainEngine.readClock().remaining);
        QCOMPARE(f.item("consoleTime")->property("text").toString(), QStringLiteral("08:58"));
        for (const char *readOnly : {"transport", "messagePanel", "addCue", "backToProjects", "saveProject",
                                     "showLock", "doorsButton", "projectInfoButton"})
            QVERIFY2(!f.item(readOnly)->isEnabled(), readOnly);
        // The list still scrolls; its rows show the cues and act on nothing.
        QVERIFY(f.item("cueList")->isEnabled());
        for (const char *hidden : {"cueEdit1", "cueDelete1", "cueUp1", "cueDown1"})
            QVERIFY2(!f.item(hidden)->isVisible(), hidden);
        QTest::mouseDClick(f.operatorWindow, Qt::LeftButton, {},
                           f.item("cueRow1")->mapToScene(QPointF(40, 20)).toPoint());
        QCOMPARE(f.engine.selectedCueIndex(), std::optional<int>(0));
        QCOMPARE(f.engine.activeCueIndex(), std::optional<int>(0));
        QVERIFY(f.item("openSettings")->isEnabled());
        // The show's keys reach nothing: the main runs the show.
        f.operatorWindow->requestActivate();
        QTest::keyClick(f.operatorWindow, Qt::Key_Space);
        QTest::keyClick(f.operatorWindow, Qt::Key_B, Qt::ControlModifier);
        QVERIFY(f.engine.isRunning() && !f.engine.isPaused() && !f.engine.blackout());
        QVERIFY(!f.mainEngine.isPaused());
        f.keepShot("following");
    }

    void theLostMainTurnsTheBannerRedAndCtrlShiftTTakesOver_data() { theConsoleShowsTheMainsShowReadOnlyUnderItsBanner_data(); }

    void theLostMainTurnsTheBannerRedAndCtrlShiftTTakesOver()
    {
        QFETCH(QSize, size);
        FollowFixture f(size);
        f.mainEngine.start(1);
        f.advance(30'000ms);
        f.followMain();
        QSignalSpy lost(&f.followSession, &FollowSession::lost);
        const int port = f.mainServer.serverPort();
        Preferences::setWebEnabled(false);
        f.mainServer.applyWebSettings();
        QTRY_VERIFY(f.follow.lost());
        QCOMPARE(lost.size(), 1);
        QCOMPARE(f.sound.names(), QStringList{QStringLiteral("Basso")});
        QCOMPARE(f.bannerText(), QStringLiteral("Régie principale injoignable depuis 00:00"));
        QTRY_COMPARE(f.bannerColour(), toQColor(AppTheme::stateDanger));
        // The show runs on by itself; the banner counts the time without the main.
        f.clock.advance(4'999ms);
        QCOMPARE(f.bannerText(), QStringLiteral("Régie principale injoignable depuis 00:04"));
        f.clock.advance(1ms);
        QCOMPARE(f.bannerText(), QStringLiteral("Régie principale injoignable depuis 00:05"));
        QCOMPARE(f.engine.readClock().remaining, 900 - 35.0);
        QCOMPARE(f.item("consoleTime")->property("text").toString(), QStringLiteral("14:25"));
        QVERIFY(!f.item("transport")->isEnabled());
        // The main's show is never written into this machine's library while it follows.
        const QString file = QDir(f.store.folder()).filePath(UuidText::canonical(f.engine.session().id) + ".orvprjct");
        QVERIFY(!QFile::exists(file));
        f.keepShot("lost");

        f.operatorWindow->requestActivate();
        QTest::keyClick(f.operatorWindow, Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(!f.follow.following());
        QVERIFY(!f.engine.isFollowing());
        QTRY_VERIFY(!f.bannerShown());
        QCOMPARE(f.engine.readClock().remaining, 900 - 35.0);
        QVERIFY(f.engine.isRunning() && !f.engine.isPaused());
        QVERIFY(f.item("transport")->isEnabled());
        QVERIFY(f.item("addCue")->isEnabled());
        QVERIFY(f.item("cueEdit1")->isVisible());
        QCOMPARE(Preferences::followSettings(),
                 (Preferences::FollowSettings{false, QStringLiteral("127.0.0.1"), port, QStringLiteral("CODE2345")}));
        QVERIFY(!Preferences::followSettings().enabled);
        QCOMPARE(f.sound.names(), QStringList{QStringLiteral("Basso")}); // nothing more
        f.keepShot("taken-over");
        QTest::keyClick(f.operatorWindow, Qt::Key_Space);
        QVERIFY(f.engine.isPaused());
        // Its show now, saved like any show it runs.
        f.clock.advance(1000ms);
        QTRY_VERIFY(QFile::exists(file));
    }

    void theSecoursTabAppliesItsFieldsAndSaysWhyNot()
    {
        FollowFixture f(QSize(1150, 750));
        f.openTab(3);
        QVERIFY(f.shown("followSwitch"));
        QCOMPARE(f.text("followPort"), QStringLiteral("8080"));
        QVERIFY(!f.shown("followStatus"));
        keepScreenshot(f.shot(), QStringLiteral("settings-follow-empty"));

        f.click("followSwitch");
        f.click("applyFollow");
        QCOMPARE(f.text("followStatusText"), QStringLiteral("Indiquer l'adresse de la régie principale"));
        QVERIFY(!Preferences::followSettings().enabled);

        const QString port = QString::number(f.mainServer.serverPort());
        f.type("followHost", QStringLiteral("127.0.0.1"));
        f.type("followPort", port);
        f.type("followAccessCode", QStringLiteral("wrong234"));
        f.click("applyFollow");
        QCOMPARE(Preferences::followSettings(),
                 (Preferences::FollowSettings{true, QStringLiteral("127.0.0.1"), port.toInt(), QStringLiteral("WRONG234")}));
        QTRY_COMPARE(f.text("followStatusText"),
                     QStringLiteral("Refusé par la régie principale : Code d'accès manquant ou incorrect"));
        QCOMPARE(f.at("followStatusIcon")->property("symbol").toString(), QStringLiteral("exclamationmark.triangle.fill"));
        QVERIFY(!f.engine.isFollowing());
        keepScreenshot(f.shot(), QStringLiteral("settings-follow-refused"));

        f.type("followAccessCode", QStringLiteral("CODE2345"));
        f.click("applyFollow");
        QTRY_COMPARE(f.text("followStatusText"), QStringLiteral("Suit 127.0.0.1:%1").arg(port));
        QCOMPARE(f.at("followStatusIcon")->property("symbol").toString(), QStringLiteral("checkmark.circle.fill"));
        QVERIFY(f.engine.isFollowing());
        keepScreenshot(f.shot(), QStringLiteral("settings-follow-following"));

        // Switched off and applied: this machine keeps the show and becomes a main.
        f.click("followSwitch");
        f.click("applyFollow");
        QVERIFY(!f.engine.isFollowing());
        QVERIFY(!f.shown("followStatus"));
        QCOMPARE(f.engine.sessionName(), QStringLiteral("Soirée des lumières"));
        QVERIFY(!Preferences::followSettings().enabled);
    }
};

QTEST_MAIN(TestFollow)
#include "tst_follow.moc"
