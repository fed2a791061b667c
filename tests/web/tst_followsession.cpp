// A backup machine's session against a real main's server on 127.0.0.1: each machine has its
// own engine and its own hand-moved clock, the follower's three seconds behind the main's.
#include "enginefixture.h"
#include "followsession.h"
#include "ports.h"
#include "projectdocument.h"
#include "settingssandbox.h"
#include "webfixture.h"

#include <QHttpServer>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QHttpServerResponse>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

// The follower: its own engine on its own clock, three seconds behind the main's.
struct Follower {
    explicit Follower(const ManualClock &main)
        : clock(main.now().addMSecs(-3000), main.timeZone())
    {
    }
    ManualClock clock;
    RecordingAlertPlayer sound{clock};
    TimerEngine engine{clock, sound};
    FollowSession session{engine, clock};
};

// A main and its follower, both clocks moved together.
struct Pair {
    Pair() { main.f.engine.loadSession(show()); }
    static TimerSession show()
    {
        TimerSession session = showOf({durationCue(QStringLiteral("Ouverture"), 600),
                                       durationCue(QStringLiteral("Débat"), 90, 30, 10)});
        session.name = QStringLiteral("Soirée");
        return session;
    }
    void follow(const QString &code = QStringLiteral("CODE2345"))
    {
        follower.session.follow(QStringLiteral("127.0.0.1"), main.server.serverPort(), code);
    }
    void advance(std::chrono::milliseconds step)
    {
        main.f.clock.advance(step);
        follower.clock.advance(step);
    }
    // Moves both clocks a step at a time, letting the network be read between steps, until
    // `done` holds (20 s of both clocks at most). A ping sent within a step and answered after
    // it seems to have taken up to the step: the estimate of the main's clock is then only
    // good to half of it.
    bool advanceUntil(const std::function<bool()> &done)
    {
        for (int i = 0; i < 200; ++i) {
            QTest::qWait(5);
            if (done())
                return true;
            advance(100ms);
        }
        return done();
    }
    // Waits until the follower shows what the main does now: the same live state, its instants
    // put on the follower's clock.
    bool mirrored()
    {
        return QTest::qWaitFor([this] {
            LiveState expected = main.f.engine.liveState();
            expected.capturedAtMs -= 3000;
            for (std::optional<qint64> *instant : {&expected.pausedSinceMs, &expected.doorsTargetMs,
                                                   &expected.hardOutTargetMs})
                if (*instant)
                    **instant -= 3000;
            return follower.engine.liveState().sameAs(expected, 0.001)
                && follower.engine.session().cues == main.f.engine.session().cues
                && follower.engine.sessionName() == main.f.engine.sessionName()
                && follower.engine.blinkActive() == main.f.engine.blinkActive();
        });
    }
    ServingFixture main;
    Follower follower{main.f.clock};
};

// An HTTP server on 127.0.0.1 that answers GET /api/show as told.
struct FakeMain {
    explicit FakeMain(std::function<QHttpServerResponse()> answer)
    {
        server.route(QStringLiteral("/api/show"), [answer] { return answer(); });
        port = server.listen(QHostAddress::LocalHost);
    }
    QHttpServer server;
    quint16 port = 0;
};

// An HTTP request to 127.0.0.1 and its answer: the status, then the body.
std::pair<int, QByteArray> request(const QByteArray &method, quint16 port, const QString &path,
                                   const QByteArray &code = {})
{
    QNetworkAccessManager network;
    network.setProxy(QNetworkProxy::NoProxy);
    QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port).arg(path)));
    if (!code.isEmpty())
        request.setRawHeader("Authorization", "Bearer " + code);
    std::unique_ptr<QNetworkReply> reply(network.sendCustomRequest(request, method));
    (void)QTest::qWaitFor([&] { return reply->isFinished(); }, 5000);
    return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll()};
}

} // namespace

class TestFollowSession : public QObject
{
    Q_OBJECT

    std::unique_ptr<SettingsSandbox> m_settings;

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void theFollowerCountsFromTheMainsInstantsOnItsOwnClock()
    {
        Pair pair;
        pair.main.f.engine.start(0);
        pair.advance(10'300ms);
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Main);
        pair.follow();
        QVERIFY(pair.mirrored());
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Follower);
        QCOMPARE(FollowSession::roleName(pair.follower.session.role()), QStringLiteral("follower"));
        QCOMPARE(pair.follower.session.status(), QStringLiteral("Suit 127.0.0.1:%1").arg(pair.main.server.serverPort()));
        QCOMPARE(pair.follower.session.clockOffsetMs(), std::optional<double>(3000));
        QVERIFY(pair.follower.engine.isFollowing());
        QCOMPARE(pair.follower.engine.sessionName(), QStringLiteral("Soirée"));
        QCOMPARE(pair.follower.engine.activeCueIndex(), std::optional<int>(0));
        QVERIFY(pair.follower.engine.isRunning());
        QCOMPARE(pair.follower.engine.readClock().remaining, pair.main.f.engine.readClock().remaining);
        // Counting on, each by its own ticker: the same remaining time at each tick.
        for (int i = 0; i < 30; ++i) {
            pair.advance(100ms);
            QCOMPARE(pair.follower.engine.remaining(), pair.main.f.engine.remaining());
        }
        QCOMPARE(pair.main.f.engine.readClock().remaining, 600 - 13.3);
        QCOMPARE(pair.main.server.followerCount(), 1);
    }

    void everyChangeOfTheMainIsMirrored()
    {
        Pair pair;
        pair.follow();
        QVERIFY(pair.mirrored());
        TimerEngine &main = pair.main.f.engine;
        const QList<std::pair<const char *, std::function<void()>>> changes{
            {"start", [&] { main.start(0); }},
            {"pause", [&] { main.pause(); }},
            {"resume", [&] { main.pause(); }},
            {"adjust", [&] { main.adjust(30); }},
            {"message", [&] { main.sendMessage(QStringLiteral("Il reste 5 minutes"), true); }},
            {"blackout", [&] { main.setBlackout(true); main.notifyStateChange(); }},
            {"freeze", [&] { main.toggleFreeze(); }},
            {"clock mode", [&] { main.setClockMode(true); main.notifyStateChange(); }},
            {"blink", [&] { main.triggerBlink(TimerEngine::blinkSeconds); }},
            {"doors", [&] { main.startDoorsAt(QTime(14, 30)); }},
            {"next", [&] { main.next(); }},
            {"lock", [&] { main.setShowLocked(true); main.notifyStateChange(); }},
            {"a cue renamed", [&] {
                 Cue cue = main.session().cues.at(0);
                 cue.name = QStringLiteral("Accueil");
                 main.setShowLocked(false);
                 main.updateCue(cue);
             }},
            {"the project renamed", [&] {
                 TimerSession edited = main.session();
                 edited.name = QStringLiteral("Gala");
                 main.updateProjectInfo(edited);
             }},
            {"a cue added", [&] { main.addCue(); }},
            {"stop", [&] { main.stop(); }},
        };
        for (const auto &[name, change] : changes) {
            change();
            pair.advance(200ms);
            QVERIFY2(pair.mirrored(), name);
        }
        QCOMPARE(pair.follower.engine.session().cues.size(), 3);
        QCOMPARE(pair.follower.engine.sessionName(), QStringLiteral("Gala"));
        QCOMPARE(pair.follower.engine.currentMessage(), std::optional<QString>(QStringLiteral("Il reste 5 minutes")));
        QVERIFY(pair.follower.engine.blackout() && pair.follower.engine.clockMode() && pair.follower.engine.freeze());
        QCOMPARE(pair.follower.engine.doorsTarget(), main.doorsTarget()->addMSecs(-3000));
        QCOMPARE(pair.follower.engine.completedCueLog().size(), 2);
    }

    void aFollowerWhoseQuartzRanFastIsBroughtBackToTheMainsClock()
    {
        Pair pair;
        pair.main.f.engine.start(0);
        pair.follow();
        QVERIFY(pair.mirrored());
        pair.follower.clock.advance(30ms); // 30 ms more than the main's
        QCOMPARE(pair.follower.engine.readClock().remaining, pair.main.f.engine.readClock().remaining - 0.030);
        // The next ping leaves half a second after the first, at the end of this step: its round
        // trip takes no time on these clocks, and says the new offset.
        pair.advance(470ms);
        QTRY_COMPARE(pair.follower.session.clockOffsetMs(), std::optional<double>(2970));
        QCOMPARE(pair.follower.engine.readClock().remaining, pair.main.f.engine.readClock().remaining);
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Follower);
    }

    void whileFollowingNothingButTheMainMovesTheShow()
    {
        Pair pair;
        pair.main.f.engine.start(0);
        pair.follow();
        QVERIFY(pair.mirrored());
        TimerEngine &engine = pair.follower.engine;
        engine.pause();
        engine.next();
        engine.addCue();
        engine.deleteCue(0);
        engine.sendMessage(QStringLiteral("Bonjour"), false);
        engine.setBlackout(true);
        engine.setSelectedCueIndex(1);
        engine.loadSession(showOf({}));
        QVERIFY(engine.isRunning() && !engine.isPaused());
        QCOMPARE(engine.session().cues.size(), 2);
        QCOMPARE(engine.selectedCueIndex(), std::optional<int>(0));
        QVERIFY(!engine.currentMessage() && !engine.blackout());
        // Its own clock still runs the cue.
        pair.advance(1000ms);
        QCOMPARE(engine.remaining(), pair.main.f.engine.remaining());
    }

    void silenceMakesTheMainLostAndTheShowRunsOn()
    {
        Pair pair;
        pair.main.f.engine.start(0);
        pair.follow();
        QVERIFY(pair.mirrored());
        QSignalSpy lost(&pair.follower.session, &FollowSession::lost);
        // Nothing is read from the network while the clock moves: no pong comes.
        pair.follower.clock.advance(1499ms);
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Follower);
        pair.follower.clock.advance(1ms);
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Lost);
        QCOMPARE(lost.size(), 1);
        QCOMPARE(pair.follower.session.sinceMs(), pair.follower.clock.now().toMSecsSinceEpoch());
        QCOMPARE(pair.follower.session.status(),
                 QStringLiteral("Régie principale injoignable à 127.0.0.1:%1 (aucune réponse depuis 1,5 s) : "
                                "nouvel essai chaque seconde")
                     .arg(pair.main.server.serverPort()));
        QVERIFY(pair.follower.engine.isFollowing());
        QVERIFY(pair.follower.engine.isRunning());
        QCOMPARE(pair.follower.engine.readClock().remaining, 600 - 1.5);

        // The main answers again a second later: followed again, the clock left as it runs.
        QSignalSpy reapplied(&pair.follower.engine, &TimerEngine::completedCueLogChanged);
        pair.main.f.clock.advance(1500ms);
        pair.advance(1000ms);
        QTRY_COMPARE(pair.follower.session.role(), FollowSession::Role::Follower);
        QVERIFY(pair.mirrored());
        QCOMPARE(reapplied.size(), 0);
        QCOMPARE(pair.follower.engine.readClock().remaining, 600 - 2.5);
    }

    void aMainThatGoesAwayIsLostAtOnceAndFollowedAgainWhereItStands()
    {
        Pair pair;
        pair.main.f.engine.start(0);
        pair.follow();
        QVERIFY(pair.mirrored());
        Preferences::setWebEnabled(false);
        pair.main.server.applyWebSettings();
        QTRY_COMPARE(pair.follower.session.role(), FollowSession::Role::Lost);
        // The main paused meanwhile; once it serves again the follower takes that.
        pair.advance(2000ms);
        pair.main.f.engine.pause();
        Preferences::setWebEnabled(true);
        pair.main.server.applyWebSettings();
        QVERIFY(pair.advanceUntil([&] { return pair.follower.session.role() == FollowSession::Role::Follower; }));
        // A standing clock, whatever the estimate of the main's clock made while both moved.
        QVERIFY(pair.follower.engine.isPaused());
        QCOMPARE(pair.follower.engine.readClock().remaining, 600 - 2.0);
    }

    void takingOverKeepsTheShowAndTheClockAndUnlocksTheCommands()
    {
        Pair pair;
        pair.main.f.engine.start(0);
        pair.main.f.engine.sendMessage(QStringLiteral("Merci"), false);
        pair.advance(4200ms);
        pair.follow();
        QVERIFY(pair.mirrored());
        QSignalSpy tookOver(&pair.follower.session, &FollowSession::tookOver);
        QSignalSpy runState(&pair.follower.engine, &TimerEngine::runStateChanged);
        const double before = pair.follower.engine.readClock().remaining;
        pair.follower.session.takeOver();
        QCOMPARE(tookOver.size(), 1);
        QCOMPARE(runState.size(), 0);
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Main);
        QVERIFY(!pair.follower.session.isTrying());
        QVERIFY(!pair.follower.engine.isFollowing());
        QCOMPARE(pair.follower.engine.readClock().remaining, before);
        QCOMPARE(pair.follower.engine.currentMessage(), std::optional<QString>(QStringLiteral("Merci")));
        QTRY_COMPARE(pair.main.server.followerCount(), 0);
        pair.follower.engine.pause();
        QVERIFY(pair.follower.engine.isPaused());
        // The main is left as it was.
        pair.advance(1000ms);
        QVERIFY(pair.main.f.engine.isRunning() && !pair.main.f.engine.isPaused());
        QCOMPARE(pair.main.f.engine.readClock().remaining, 600 - 5.2);
    }

    void theRoutesOfTheMainAndOfTheBackup()
    {
        Pair pair;
        const quint16 mainPort = pair.main.server.serverPort();
        // GET /api/show: the project document, with the code only.
        QCOMPARE(request("GET", mainPort, QStringLiteral("/api/show")),
                 std::make_pair(401, QByteArray("{\"error\":\"Code d'accès manquant ou incorrect\"}")));
        const auto [status, body] = request("GET", mainPort, QStringLiteral("/api/show"), "CODE2345");
        QCOMPARE(status, 200);
        QCOMPARE(body, *ProjectDocument::encode(pair.main.f.engine.session()));
        QCOMPARE(request("POST", mainPort, QStringLiteral("/api/show"), "CODE2345").first, 405);

        // The backup's own server, on a port of its own, with its own code.
        storeWebSettings(freeTcpPort());
        Preferences::setWebAccessCode(QStringLiteral("BACK2345"));
        WebServer backup(pair.follower.engine, pair.follower.clock);
        backup.setFollowSession(&pair.follower.session);
        backup.applyWebSettings();
        const quint16 port = backup.serverPort();
        const auto role = [&] {
            const QJsonObject state = QJsonDocument::fromJson(request("GET", port, QStringLiteral("/api/state")).second).object();
            return state.value(QStringLiteral("follow")).toObject();
        };
        QCOMPARE(role(), (QJsonObject{{"role", "main"}, {"host", QJsonValue()},
                                      {"since", double(pair.follower.clock.now().toMSecsSinceEpoch())}}));
        pair.follower.session.follow(QStringLiteral("127.0.0.1"), mainPort, QStringLiteral("CODE2345"));
        QVERIFY(pair.mirrored());
        QCOMPARE(role(), (QJsonObject{{"role", "follower"}, {"host", "127.0.0.1"},
                                      {"since", double(pair.follower.clock.now().toMSecsSinceEpoch())}}));
        QCOMPARE(request("POST", port, QStringLiteral("/api/play"), "BACK2345"),
                 std::make_pair(409, QByteArray("{\"error\":\"Machine de secours : elle suit la régie principale et n'obéit qu'à elle "
                                                 "(« Prendre la main » pour la commander)\"}")));
        QVERIFY(!pair.follower.engine.isRunning());
        QCOMPARE(request("POST", port, QStringLiteral("/api/takeover"), "CODE2345").first, 401);
        QVERIFY(pair.follower.engine.isFollowing());
        pair.follower.clock.advance(250ms);
        const auto [taken, state] = request("POST", port, QStringLiteral("/api/takeover"), "BACK2345");
        QCOMPARE(taken, 200);
        QCOMPARE(QJsonDocument::fromJson(state).object().value(QStringLiteral("follow")).toObject(),
                 (QJsonObject{{"role", "main"}, {"host", QJsonValue()},
                              {"since", double(pair.follower.clock.now().toMSecsSinceEpoch())}}));
        QCOMPARE(request("POST", port, QStringLiteral("/api/play"), "BACK2345").first, 200);
        QVERIFY(pair.follower.engine.isRunning());
        QVERIFY(!pair.main.f.engine.isRunning());
    }

    void aWrongCodeIsRefusedAndNothingIsFollowed()
    {
        Pair pair;
        pair.follow(QStringLiteral("WRONG234"));
        QTRY_VERIFY(!pair.follower.session.isTrying());
        QCOMPARE(pair.follower.session.status(),
                 QStringLiteral("Refusé par la régie principale : Code d'accès manquant ou incorrect"));
        QVERIFY(pair.follower.session.statusIsError());
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Main);
        QVERIFY(!pair.follower.engine.isFollowing());
        QVERIFY(pair.follower.engine.session().cues.isEmpty());
    }

    void serversThatAreNotAKaironMainOfThisVersionAreRefused_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("protocol");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("reason");
        QTest::newRow("a web site") << 200 << QByteArray() << QByteArray("<html>Bonjour</html>")
                                    << QStringLiteral("127.0.0.1:%1 ne répond pas comme une régie Kairon");
        QTest::newRow("a Kairon without backups")
            << 404 << QByteArray() << QByteArray(R"({"error":"Chemin inconnu : /api/show"})")
            << QStringLiteral("La régie principale a une version de Kairon sans machine de secours : installer la "
                              "même version sur les deux machines");
        QTest::newRow("a newer Kairon")
            << 200 << QByteArray("2") << QByteArray("{}")
            << QStringLiteral("La régie principale a une version plus récente de Kairon (protocole de secours 2, ici "
                              "1) : installer la même version sur les deux machines");
        QTest::newRow("an older Kairon")
            << 200 << QByteArray("0") << QByteArray("{}")
            << QStringLiteral("La régie principale a une version plus ancienne de Kairon (protocole de secours 0, "
                              "ici 1) : installer la même version sur les deux machines");
        QTest::newRow("a broken show") << 200 << QByteArray("1") << QByteArray("{\"cues\": 3}")
                                       << QStringLiteral("Projet de la régie principale illisible : {error}");
    }

    void serversThatAreNotAKaironMainOfThisVersionAreRefused()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, protocol);
        QFETCH(QByteArray, body);
        QFETCH(QString, reason);
        FakeMain fake([&] {
            QHttpServerResponse response("application/json", body, QHttpServerResponse::StatusCode(status));
            if (!protocol.isEmpty())
                response.setHeader(FollowFeed::protocolHeader, protocol);
            return response;
        });
        QVERIFY(fake.port != 0);
        EngineFixture f;
        FollowSession session(f.engine, f.clock);
        session.follow(QStringLiteral("127.0.0.1"), fake.port, QStringLiteral("CODE2345"));
        QTRY_VERIFY(!session.isTrying());
        QString error;
        ProjectDocument::decode(body, f.clock.now(), &error);
        QCOMPARE(session.status(), QString(reason).replace(QStringLiteral("%1"), QString::number(fake.port))
                                       .replace(QStringLiteral("{error}"), error));
        QCOMPARE(session.role(), FollowSession::Role::Main);
        QVERIFY(!f.engine.isFollowing());
    }

    void anUnreachableMainIsTriedAgainEachSecondUntilItServes()
    {
        Pair pair;
        const quint16 port = pair.main.server.serverPort();
        Preferences::setWebEnabled(false);
        pair.main.server.applyWebSettings();
        pair.follower.session.follow(QStringLiteral("127.0.0.1"), port, QStringLiteral("CODE2345"));
        QTRY_VERIFY(pair.follower.session.statusIsError());
        QCOMPARE(pair.follower.session.status(),
                 QStringLiteral("Régie principale injoignable à 127.0.0.1:%1 (Connection refused) : nouvel essai "
                                "chaque seconde")
                     .arg(port));
        QVERIFY(pair.follower.session.isTrying());
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Main);
        Preferences::setWebEnabled(true);
        pair.main.server.applyWebSettings();
        QCOMPARE(pair.main.server.serverPort(), port);
        pair.advance(1000ms);
        QVERIFY(pair.mirrored());
        QCOMPARE(pair.follower.session.role(), FollowSession::Role::Follower);
    }
};

QTEST_GUILESS_MAIN(TestFollowSession)
#include "tst_followsession.moc"
