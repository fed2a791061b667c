#include "enginefixture.h"
#include "networkcoordinator.h"
#include "preferences.h"
#include "settingssandbox.h"

#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

using namespace std::chrono_literals;

namespace {

constexpr quint16 listenPort = 53321, sendPort = 53322;

OSCMessage command(const char *address, std::optional<QString> text = std::nullopt,
                   std::optional<qint32> number = std::nullopt)
{
    return OSCMessage{QString::fromUtf8(address), text, number};
}

// What the coordinator sends, decoded.
struct Peer {
    Peer() { socket.bind(QHostAddress::LocalHost, sendPort); }
    QList<OSCMessage> waitFor(int count)
    {
        QTest::qWaitFor([&] {
            while (socket.hasPendingDatagrams()) {
                QByteArray d(socket.pendingDatagramSize(), Qt::Uninitialized);
                socket.readDatagram(d.data(), d.size());
                raw << d;
                received << *OSCCodec::decode(d);
            }
            return received.size() >= count;
        }, 5000);
        return received;
    }
    QUdpSocket socket;
    QList<QByteArray> raw;
    QList<OSCMessage> received;
};

TimerStateSnapshot state(double remaining, bool running = true, const char *cue = "Keynote")
{
    TimerStateSnapshot s;
    s.remaining = remaining;
    s.running = running;
    s.cueName = QString::fromUtf8(cue);
    return s;
}

} // namespace

class TestNetworkCoordinator : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsSandbox> m_settings;

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void theTenCommandsDriveTheEngine()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600), durationCue("B", 300), durationCue("C", 60)}));
        NetworkCoordinator c;
        c.attach(&f.engine);

        c.handleCommand(command("/kairon/play"));
        QVERIFY(f.engine.isRunning());
        QCOMPARE(f.engine.activeCueIndex(), 0);
        c.handleCommand(command("/kairon/pause"));
        QVERIFY(f.engine.isPaused());
        c.handleCommand(command("/kairon/pause"));
        QVERIFY(!f.engine.isPaused());
        c.handleCommand(command("/kairon/next"));
        QCOMPARE(f.engine.activeCueIndex(), 1);
        c.handleCommand(command("/kairon/prev"));
        QCOMPARE(f.engine.activeCueIndex(), 0);
        c.handleCommand(command("/kairon/adjust", std::nullopt, -60));
        QCOMPARE(f.engine.plannedDuration(), 540.0);
        QCOMPARE(f.engine.remaining(), 540.0);
        c.handleCommand(command("/kairon/reset"));
        QCOMPARE(f.engine.remaining(), 600.0);
        c.handleCommand(command("/kairon/blink"));
        QVERIFY(f.engine.blinkActive());
        f.clock.advance(3s);
        EngineFixture::runPostedJobs();
        QVERIFY(!f.engine.blinkActive()); // a three-second blink
        c.handleCommand(command("/kairon/message", QStringLiteral("Merci de conclure")));
        QCOMPARE(f.engine.currentMessage(), QStringLiteral("Merci de conclure"));
        QVERIFY(!f.engine.messageUrgent());
        c.handleCommand(command("/kairon/blackout"));
        QVERIFY(f.engine.blackout());
        c.handleCommand(command("/kairon/stop"));
        QVERIFY(!f.engine.isRunning());
        QCOMPARE(f.sound.names(), QStringList{"Glass"}); // the blink
    }

    void argumentsThatDoNotFitAreIgnored()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        f.engine.start();
        NetworkCoordinator c;
        c.attach(&f.engine);
        c.handleCommand(command("/kairon/adjust")); // a float argument arrives as none
        c.handleCommand(command("/kairon/adjust", QStringLiteral("-30")));
        QCOMPARE(f.engine.plannedDuration(), 600.0);
        c.handleCommand(command("/kairon/message", std::nullopt, 5));
        QVERIFY(!f.engine.currentMessage());
        c.handleCommand(command("/kairon/message", QString()));
        QCOMPARE(f.engine.currentMessage(), QString());
        c.handleCommand(command("/kairon/Play"));
        c.handleCommand(command("/kairon/stop/"));
        c.handleCommand(command("/kairon"));
        QVERIFY(f.engine.isRunning());
    }

    void blackoutTogglesAndNotifiesAtOnce()
    {
        EngineFixture f;
        NetworkCoordinator c;
        c.attach(&f.engine);
        int hooks = 0;
        f.engine.setOnStateChange([&](const TimerStateSnapshot &s) {
            ++hooks;
            QCOMPARE(s.blackout, f.engine.blackout());
        });
        c.handleCommand(command("/kairon/blackout"));
        c.handleCommand(command("/kairon/blackout"));
        QVERIFY(!f.engine.blackout());
        QCOMPARE(hooks, 2);
    }

    void commandsAreHandledOnALaterTurnOfTheLoop()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        NetworkCoordinator c;
        c.attach(&f.engine);
        c.osc().onCommand(command("/kairon/play"));
        QVERIFY(!f.engine.isRunning());
        QCoreApplication::sendPostedEvents();
        QVERIFY(f.engine.isRunning());
    }

    void aCommandForAGoneEngineIsDropped()
    {
        NetworkCoordinator c;
        {
            EngineFixture f;
            c.attach(&f.engine);
        }
        c.handleCommand(command("/kairon/play"));
    }

    void stateGoesOutOncePerWholeSecond()
    {
        Preferences::setOscSendEnabled(true);
        Preferences::setOscSendPort(sendPort);
        Peer peer;
        EngineFixture f;
        NetworkCoordinator c;
        c.attach(&f.engine);

        c.emitState(state(12.9)); // the first is always sent
        c.emitState(state(12.1));
        c.emitState(state(11.99));
        c.emitState(state(-0.2));
        c.emitState(state(-0.9));
        c.emitState(state(-1.0, false, "B")); // same second as -0.2: the change waits
        c.emitState(state(-1.5, false, "B"));
        const QList<OSCMessage> got = peer.waitFor(12);
        QCOMPARE(got.size(), 12);
        QCOMPARE(peer.raw[0], OSCCodec::encode(QStringLiteral("/kairon/remaining"), {12.9f}));
        QCOMPARE(peer.raw[1], OSCCodec::encode(QStringLiteral("/kairon/running"), {qint32(1)}));
        QCOMPARE(peer.raw[2], OSCCodec::encode(QStringLiteral("/kairon/cue"), {QStringLiteral("Keynote")}));
        QCOMPARE(peer.raw[3], OSCCodec::encode(QStringLiteral("/kairon/remaining"), {11.99f}));
        QCOMPARE(peer.raw[6], OSCCodec::encode(QStringLiteral("/kairon/remaining"), {-0.2f}));
        QCOMPARE(peer.raw[9], OSCCodec::encode(QStringLiteral("/kairon/remaining"), {-1.5f}));
        QCOMPARE(peer.raw[10], OSCCodec::encode(QStringLiteral("/kairon/running"), {qint32(0)}));
        QCOMPARE(peer.raw[11], OSCCodec::encode(QStringLiteral("/kairon/cue"), {QStringLiteral("B")}));
    }

    void theThrottleMovesOnEvenWhileSendingIsOff()
    {
        Peer peer;
        EngineFixture f;
        NetworkCoordinator c;
        c.attach(&f.engine); // sending never enabled
        c.emitState(state(30.5));
        Preferences::setOscSendEnabled(true);
        Preferences::setOscSendPort(sendPort);
        c.applyOSCSettings();
        c.emitState(state(30.2)); // same second as the last one, although it was not sent
        c.emitState(state(29.9));
        const QList<OSCMessage> got = peer.waitFor(3);
        QCOMPARE(got.size(), 3);
        QCOMPARE(peer.raw[0], OSCCodec::encode(QStringLiteral("/kairon/remaining"), {29.9f}));
    }

    void listeningFollowsTheStoredPreferencesOnly()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        NetworkCoordinator c;
        QSignalSpy status(&c, &NetworkCoordinator::oscStatusChanged);
        Preferences::setOscListenEnabled(true);
        Preferences::setOscListenPort(listenPort);
        c.attach(&f.engine);
        QVERIFY(status.wait(5000));
        QVERIFY(!c.property("oscStatus").isValid());
        QUdpSocket peer;
        peer.writeDatagram(OSCCodec::encode(QStringLiteral("/kairon/play"), {}), QHostAddress::LocalHost, listenPort);
        QTRY_VERIFY(f.engine.isRunning());

        // Listening on, port never stored: applying stops the listener instead of using 53100.
        QSettings().remove(QStringLiteral("oscListenPort"));
        c.applyOSCSettings();
        QTRY_VERIFY(QUdpSocket().bind(QHostAddress::Any, listenPort, QAbstractSocket::DontShareAddress));
        QVERIFY(QUdpSocket().bind(QHostAddress::Any, 53100, QAbstractSocket::DontShareAddress));
    }

    void aTakenPortShowsInTheStatus()
    {
        QUdpSocket other;
        QVERIFY(other.bind(QHostAddress::Any, listenPort, QAbstractSocket::DontShareAddress));
        EngineFixture f;
        NetworkCoordinator c;
        QSignalSpy status(&c, &NetworkCoordinator::oscStatusChanged);
        Preferences::setOscListenEnabled(true);
        Preferences::setOscListenPort(listenPort);
        c.attach(&f.engine);
        QVERIFY(status.wait(5000));
        QVERIFY(c.oscStatus()->startsWith(QStringLiteral("Port 53321 indisponible (")));
        QVERIFY(c.oscStatus()->endsWith(QStringLiteral("). Déjà utilisé ? (QLab = 53000)")));
        QCOMPARE(c.property("oscStatus").toString(), *c.oscStatus());
    }
};

QTEST_GUILESS_MAIN(TestNetworkCoordinator)
#include "tst_networkcoordinator.moc"
