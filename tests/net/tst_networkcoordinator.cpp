#include "enginefixture.h"
#include "networkcoordinator.h"
#include "preferences.h"
#include "settingssandbox.h"

#include <QSignalSpy>

#include <algorithm>
#include <functional>
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
        (void)QTest::qWaitFor([&] {
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
    // Everything received until `done` holds (or 5 s have passed).
    void readUntil(const std::function<bool()> &done)
    {
        (void)QTest::qWaitFor([&] {
            waitFor(0);
            return done();
        }, 5000);
    }
    // The datagrams of the messages sent on each change of state, in order.
    QList<QByteArray> changes() const { return of({"/kairon/state", "/kairon/message"}); }
    // The datagrams sent to these addresses, in order.
    QList<QByteArray> of(std::initializer_list<const char *> addresses) const
    {
        QList<QByteArray> found;
        for (qsizetype i = 0; i < received.size(); ++i)
            if (std::any_of(addresses.begin(), addresses.end(), [&](const char *address) {
                    return received[i].address == QLatin1StringView(address);
                }))
                found << raw[i];
        return found;
    }
    int count(const char *address) const
    {
        return int(std::count_if(received.cbegin(), received.cend(), [&](const OSCMessage &m) {
            return m.address == QLatin1StringView(address);
        }));
    }
    bool hasRemaining(float value) const
    {
        return raw.contains(OSCCodec::encode(QStringLiteral("/kairon/remaining"), {value}));
    }
    QUdpSocket socket;
    QList<QByteArray> raw;
    QList<OSCMessage> received;
};

// "/kairon/state" with its seven arguments: running, paused, cue number, cue name, blackout,
// freeze, clock mode.
QByteArray stateMessage(bool running, bool paused, int cue, const char *name, bool blackout = false,
                        bool freeze = false, bool clockMode = false)
{
    return OSCCodec::encode(QStringLiteral("/kairon/state"),
                            {qint32(running), qint32(paused), qint32(cue), QString::fromUtf8(name),
                             qint32(blackout), qint32(freeze), qint32(clockMode)});
}

QByteArray messageMessage(const char *text, bool urgent)
{
    return OSCCodec::encode(QStringLiteral("/kairon/message"),
                            {QString::fromUtf8(text), qint32(urgent)});
}

QByteArray offsetMessage(float seconds)
{
    return OSCCodec::encode(QStringLiteral("/kairon/offset"), {seconds});
}

// The fixture's show given a planned start at 14:00 in Paris, the fixture's clock's start.
void startShowAtTwoPM(TimerEngine &engine)
{
    TimerSession edited = engine.session();
    edited.scheduledStart = QDateTime(QDate(2026, 11, 21), QTime(14, 0), QTimeZone("Europe/Paris"));
    engine.updateProjectInfo(edited);
}

// A 1 min cue then a 5 min one, planned from 14:00: the first runs from 14:00 for `run` and is
// left there, the show waiting for the next.
void leaveTheFirstCueAfter(EngineFixture &f, std::chrono::seconds run)
{
    f.engine.loadSession(showOf({durationCue("Ouverture", 60), durationCue("Débat", 300)}));
    startShowAtTwoPM(f.engine);
    f.engine.start(0);
    f.clock.jump(run);
    f.engine.stop();
}

void takeShowStartOff(TimerEngine &engine)
{
    TimerSession edited = engine.session();
    edited.scheduledStart.reset();
    engine.updateProjectInfo(edited);
}

void storeSendingTo(quint16 port, bool stateChanges)
{
    Preferences::setOscSendEnabled(true);
    Preferences::setOscSendPort(port);
    Preferences::setOscSendStateChanges(stateChanges);
}

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
        c.attach(&f.engine, f.clock);

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
        c.attach(&f.engine, f.clock);
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
        c.attach(&f.engine, f.clock);
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
        c.attach(&f.engine, f.clock);
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
            c.attach(&f.engine, f.clock);
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
        c.attach(&f.engine, f.clock);

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
        c.attach(&f.engine, f.clock); // sending never enabled
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
        c.attach(&f.engine, f.clock);
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

    // The bytes of both, written from the OSC 1.0 rules: the address and the type tags, each
    // padded with zeros to a multiple of four, then each integer big-endian and each padded string.
    void theMessagesOfAChangeAreWrittenAsOSCWants()
    {
        const QByteArray state = QByteArray::fromHex(
            "2f6b6169726f6e2f7374617465000000"  // "/kairon/state"
            "2c6969697369696900000000"          // ",iiisiii"
            "00000001" "00000000" "00000002"    // running, not paused, cue 2
            "42000000"                          // "B"
            "00000000" "00000001" "00000000");  // no blackout, frozen, no clock mode
        QCOMPARE(stateMessage(true, false, 2, "B", false, true, false), state);
        const OSCStateChange::ShowState shown{true, false, 2, QStringLiteral("B"), false, true, false};
        QCOMPARE(OSCCodec::encode(QStringLiteral("/kairon/state"), shown.arguments()), state);
        const QByteArray message = QByteArray::fromHex(
            "2f6b6169726f6e2f6d65737361676500"  // "/kairon/message"
            "2c736900"                          // ",si"
            "46696e00"                          // "Fin"
            "00000001");                        // urgent
        QCOMPARE(messageMessage("Fin", true), message);
        const OSCStateChange::OnAir onAir{QStringLiteral("Fin"), true};
        QCOMPARE(OSCCodec::encode(QStringLiteral("/kairon/message"), onAir.arguments()), message);
    }

    void theOffsetIsAFloatAsOSCWantsIt()
    {
        const QByteArray offset = QByteArray::fromHex(
            "2f6b6169726f6e2f6f66667365740000"  // "/kairon/offset"
            "2c660000"                          // ",f"
            "c2f10000");                        // -120.5, big-endian IEEE 754
        QCOMPARE(offsetMessage(-120.5f), offset);
    }

    // A 10 min cue planned at 14:00, begun at 14:01:30.
    void theOffsetTravelsWithTheWholeSecondsOfAShowWithAStartTime()
    {
        storeSendingTo(sendPort, false);
        Peer peer;
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        startShowAtTwoPM(f.engine);
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock);
        f.clock.advance(90s);
        QCOMPARE(f.clock.nextDeadline(), std::nullopt); // nothing armed outside the changes' mode
        f.engine.start(0); // the first whole second
        c.emitState(state(12.9));
        c.emitState(state(12.1)); // the same second: nothing
        c.emitState(state(11.99));
        takeShowStartOff(f.engine);
        c.emitState(state(10.5));
        const QList<OSCMessage> got = peer.waitFor(15);
        QCOMPARE(got.size(), 15);
        const auto second = [](float remaining, const char *cue) {
            return QList<QByteArray>{OSCCodec::encode(QStringLiteral("/kairon/remaining"), {remaining}),
                                     OSCCodec::encode(QStringLiteral("/kairon/running"), {qint32(1)}),
                                     OSCCodec::encode(QStringLiteral("/kairon/cue"), {QString::fromUtf8(cue)})};
        };
        QCOMPARE(peer.raw, second(600.0f, "A") + QList{offsetMessage(90.0f)} + second(12.9f, "Keynote")
                               + QList{offsetMessage(90.0f)} + second(11.99f, "Keynote")
                               + QList{offsetMessage(90.0f)} + second(10.5f, "Keynote"));
    }

    // A 1 min cue planned at 14:00, run from 14:00 and left at 14:03: the show waits for the
    // next cue, 120 s late and later each second, while the engine does not tick.
    void theOffsetGoesOutAtOnceOnEachChangeOfItsRoundedSecond()
    {
        storeSendingTo(sendPort, true);
        Peer peer;
        EngineFixture f;
        leaveTheFirstCueAfter(f, 180s);
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock); // the current state, the offset with it
        QCOMPARE(f.clock.nextDeadline(), f.clock.monotonicMs() + 500); // at 120.5 s

        // Two and a half seconds: at each half second, read then (the whole seconds of the
        // remaining time do not move, the clock stands).
        f.clock.advance(2500ms);
        // The next change: the whole seconds go out with the offset, after them; its rounded
        // second has not changed, so the changes of state add none.
        f.engine.toggleFreeze();
        const QList<QByteArray> expected{
            stateMessage(false, false, 1, "Ouverture"), messageMessage("", false), offsetMessage(120.0f),
            offsetMessage(120.5f), offsetMessage(121.5f), offsetMessage(122.5f),
            OSCCodec::encode(QStringLiteral("/kairon/remaining"), {-120.0f}),
            OSCCodec::encode(QStringLiteral("/kairon/running"), {qint32(0)}),
            OSCCodec::encode(QStringLiteral("/kairon/cue"), {QStringLiteral("Ouverture")}),
            offsetMessage(122.5f), stateMessage(false, false, 1, "Ouverture", false, true)};
        peer.readUntil([&] { return peer.raw.size() >= expected.size(); });
        QCOMPARE(peer.raw, expected);
        const auto sent = [&] { return peer.of({"/kairon/state", "/kairon/message", "/kairon/offset"}); };
        const QList<QByteArray> changes = sent();

        // The start taken off: nothing armed, nothing sent; set again: the offset at once.
        takeShowStartOff(f.engine);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(f.clock.nextDeadline(), std::nullopt);
        f.clock.advance(3s); // 14:03:05.5
        startShowAtTwoPM(f.engine);
        QCoreApplication::sendPostedEvents();
        peer.readUntil([&] { return sent().size() >= changes.size() + 1; });
        QCOMPARE(sent(), changes + QList{offsetMessage(125.5f)});
        QCOMPARE(f.clock.nextDeadline(), f.clock.monotonicMs() + 1000);
    }

    // Early: the first cue left 53 s before its planned end. Waiting brings the offset back up
    // towards zero; a negative half second rounds away from zero, so it changes just after it.
    void anEarlyOffsetGoesOutAsTheShowWaits()
    {
        storeSendingTo(sendPort, true);
        Peer peer;
        EngineFixture f;
        leaveTheFirstCueAfter(f, 7s);
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock);
        QCOMPARE(f.clock.nextDeadline(), f.clock.monotonicMs() + 501);
        f.clock.advance(1501ms);
        f.engine.toggleFreeze(); // the next change: everything before it has arrived with it
        const auto sent = [&] { return peer.of({"/kairon/offset"}); };
        peer.readUntil([&] { return peer.count("/kairon/state") >= 2; });
        QCOMPARE(sent(), (QList{offsetMessage(-53.0f), offsetMessage(-52.499f), offsetMessage(-51.499f),
                                offsetMessage(-51.499f)}));
    }

    void withTheSwitchOffTheOffsetWaitsForTheWholeSeconds()
    {
        storeSendingTo(sendPort, false);
        Peer peer;
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Ouverture", 60)}));
        startShowAtTwoPM(f.engine);
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock);
        f.clock.advance(5s);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(f.clock.nextDeadline(), std::nullopt);
        f.engine.start(0); // the first whole second, with the offset of 5 s
        peer.readUntil([&] { return peer.count("/kairon/offset") >= 1; });
        QCOMPARE(peer.of({"/kairon/offset"}), QList{offsetMessage(5.0f)});
        QCOMPARE(peer.received.size(), 4);
    }

    void everyChangeOfTheTransportAndTheShowControlsGoesOutAtOnce()
    {
        storeSendingTo(sendPort, true);
        Peer peer;
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Ouverture", 600), durationCue("Débat", 300)}));
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock); // the current state goes out once, so that the receiver starts from it
        QList<QByteArray> expected{stateMessage(false, false, 0, ""), messageMessage("", false)};

        // Each operation, then exactly the messages it should send, in order.
        const auto step = [&](const std::function<void()> &operation, const QList<QByteArray> &sent) {
            operation();
            expected << sent;
            peer.readUntil([&] { return peer.changes().size() >= expected.size(); });
            if (peer.changes() != expected)
                qWarning() << "received" << peer.changes() << "\nexpected" << expected;
            return peer.changes() == expected;
        };
        QVERIFY(step([&] { c.handleCommand(command("/kairon/play")); },
                     {stateMessage(true, false, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.pause(); }, {stateMessage(true, true, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.pause(); }, {stateMessage(true, false, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.next(); }, {stateMessage(true, false, 2, "Débat")}));
        QVERIFY(step([&] { f.engine.previous(); }, {stateMessage(true, false, 1, "Ouverture")}));
        QVERIFY(step([&] { c.handleCommand(command("/kairon/blackout")); },
                     {stateMessage(true, false, 1, "Ouverture", true)}));
        // The console sets this flag without the hook: it goes out once the turn is over.
        QVERIFY(step([&] { f.engine.setBlackout(false); }, {stateMessage(true, false, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.toggleFreeze(); },
                     {stateMessage(true, false, 1, "Ouverture", false, true)}));
        QVERIFY(step([&] { f.engine.toggleFreeze(); }, {stateMessage(true, false, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.setClockMode(true); },
                     {stateMessage(true, false, 1, "Ouverture", false, false, true)}));
        QVERIFY(step([&] { f.engine.setClockMode(false); }, {stateMessage(true, false, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.sendMessage(QStringLiteral("Merci de conclure"), true); },
                     {messageMessage("Merci de conclure", true)}));
        QVERIFY(step([&] { c.handleCommand(command("/kairon/message", QStringLiteral("Dernière minute"))); },
                     {messageMessage("Dernière minute", false)}));
        QVERIFY(step([&] { f.engine.sendMessage(std::nullopt, true); }, {messageMessage("", false)}));
        QVERIFY(step([&] { f.engine.pause(); }, {stateMessage(true, true, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.reset(); }, {stateMessage(true, false, 1, "Ouverture")}));
        QVERIFY(step([&] { f.engine.stop(); }, {stateMessage(false, false, 1, "Ouverture")}));
        // The same state again is no change: nothing goes out (the next step would see it).
        QVERIFY(step([&] {
            f.engine.stop();
            f.engine.setBlackout(false);
            f.engine.sendMessage(std::nullopt, false);
            QCoreApplication::sendPostedEvents();
        }, {}));
        // Renaming the active cue changes what the state calls it.
        Cue renamed = f.engine.session().cues[0];
        renamed.name = QStringLiteral("Accueil");
        QVERIFY(step([&] { f.engine.updateCue(renamed); }, {stateMessage(false, false, 1, "Accueil")}));
        // Moving it down the running order changes its number.
        QVERIFY(step([&] { f.engine.moveCue(0, 1); }, {stateMessage(false, false, 2, "Accueil")}));
        QCOMPARE(peer.count("/kairon/state") + peer.count("/kairon/message"), int(expected.size()));
    }

    void aTickThatOnlyMovesTheClockSendsNoChange()
    {
        storeSendingTo(sendPort, true);
        Peer peer;
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Ouverture", 5)}));
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock);
        f.engine.start();
        for (int i = 0; i < 80; ++i) { // eight seconds, into overtime
            f.clock.advance(100ms);
            f.engine.tick();
        }
        QCoreApplication::sendPostedEvents();
        f.engine.pause(); // the next change: everything sent before it has arrived with it
        const QList<QByteArray> expected{stateMessage(false, false, 0, ""), messageMessage("", false),
                                         stateMessage(true, false, 1, "Ouverture"),
                                         stateMessage(true, true, 1, "Ouverture")};
        peer.readUntil([&] { return peer.changes().size() >= expected.size(); });
        QCOMPARE(peer.changes(), expected);
        QCOMPARE(peer.count("/kairon/remaining"), 9); // 5 to -3: the seconds went out as before
    }

    void withTheSwitchOffNoChangeGoesOut()
    {
        storeSendingTo(sendPort, false);
        Peer peer;
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Ouverture", 600), durationCue("Débat", 300)}));
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock);
        QVERIFY(!c.sendsStateChanges());
        c.handleCommand(command("/kairon/play"));
        f.engine.pause();
        f.engine.next();
        c.handleCommand(command("/kairon/blackout"));
        f.engine.setClockMode(true);
        f.engine.toggleFreeze();
        f.engine.toggleFreeze();
        f.engine.sendMessage(QStringLiteral("Merci"), true);
        f.engine.stop();
        QCoreApplication::sendPostedEvents();
        f.engine.adjust(-100); // a new whole second, sent after all the rest
        peer.readUntil([&] { return peer.hasRemaining(200.0f); });
        QVERIFY(peer.hasRemaining(200.0f));
        QCOMPARE(peer.changes(), QList<QByteArray>{});
        QCOMPARE(peer.received.first().address, QStringLiteral("/kairon/remaining"));
    }

    void theSwitchTakesEffectWhenApplied()
    {
        storeSendingTo(sendPort, false);
        Peer peer;
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Ouverture", 600)}));
        NetworkCoordinator c;
        c.attach(&f.engine, f.clock);
        Preferences::setOscSendStateChanges(true);
        f.engine.start(); // stored but not applied: no change goes out
        QVERIFY(!c.sendsStateChanges());
        c.applyOSCSettings(); // applied: the current state at once, then each change
        QVERIFY(c.sendsStateChanges());
        f.engine.pause();
        const QList<QByteArray> expected{stateMessage(true, false, 1, "Ouverture"), messageMessage("", false),
                                         stateMessage(true, true, 1, "Ouverture")};
        peer.readUntil([&] { return peer.changes().size() >= expected.size(); });
        QCOMPARE(peer.changes(), expected);

        Preferences::setOscSendStateChanges(false);
        c.applyOSCSettings();
        f.engine.stop();
        f.engine.start();
        f.engine.adjust(-10); // a new whole second, sent after all the rest
        peer.readUntil([&] { return peer.hasRemaining(590.0f); });
        QVERIFY(peer.hasRemaining(590.0f));
        QCOMPARE(peer.changes(), expected);
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
        c.attach(&f.engine, f.clock);
        QVERIFY(status.wait(5000));
        QVERIFY(c.oscStatus()->startsWith(QStringLiteral("Port 53321 indisponible (")));
        QVERIFY(c.oscStatus()->endsWith(QStringLiteral("). Déjà utilisé ? (QLab = 53000)")));
        QCOMPARE(c.property("oscStatus").toString(), *c.oscStatus());
    }
};

QTEST_GUILESS_MAIN(TestNetworkCoordinator)
#include "tst_networkcoordinator.moc"
