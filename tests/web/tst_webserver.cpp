#include "codeguard.h"
#include "enginefixture.h"
#include "formatters.h"
#include "ports.h"
#include "preferences.h"
#include "settingssandbox.h"
#include "webcommand.h"
#include "webdocuments.h"
#include "webfixture.h"
#include "webserver.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QWebSocket>

using namespace std::chrono_literals;

class TestWebServer : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsSandbox> m_settings;
    QNetworkAccessManager m_network;

    QNetworkReply *post(quint16 port, const char *command, const QByteArray &body,
                        const QByteArray &code)
    {
        QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1/api/%2")
                                         .arg(port)
                                         .arg(QLatin1StringView(command))));
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        if (!code.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + code);
        return m_network.post(request, body);
    }

    // A GET, or any other method, on the test server; waits for the whole answer.
    std::unique_ptr<QNetworkReply> fetch(quint16 port, const QString &path,
                                         const QByteArray &method = "GET")
    {
        const QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port).arg(path)));
        std::unique_ptr<QNetworkReply> reply(m_network.sendCustomRequest(request, method));
        if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 5000))
            qWarning() << "no answer for" << path;
        return reply;
    }

    static int statusOf(QNetworkReply *reply)
    {
        return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    }

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void theShownSecondChangesWhenTheClockCrossesAWholeSecond_data()
    {
        QTest::addColumn<double>("remaining");
        QTest::addColumn<qint64>("ms");
        QTest::newRow("half way through 8") << 8.5 << qint64(500);
        QTest::newRow("just after a change") << 7.999 << qint64(999);
        QTest::newRow("overtime under a second shows -00:00 until -1") << -0.4 << qint64(600);
        QTest::newRow("deep overtime") << -61.25 << qint64(750);
        QTest::newRow("exactly on a whole overtime second") << -2.0 << qint64(1000);
    }
    void theShownSecondChangesWhenTheClockCrossesAWholeSecond()
    {
        QFETCH(double, remaining);
        QFETCH(qint64, ms);
        QCOMPARE(msUntilShownSecondChanges(remaining), ms);
    }

    void theAccessCodeIsMadeOnceAndKept()
    {
        const QString first = Preferences::webAccessCode();
        QCOMPARE(first.size(), 8);
        for (QChar c : first)
            QVERIFY(QStringLiteral("23456789ABCDEFGHJKLMNPQRSTUVWXYZ").contains(c));
        QCOMPARE(Preferences::webAccessCode(), first);
        QCOMPARE(Preferences::storedWebSettings().accessCode, first);
    }

    void aWebServerNeverStoredStaysOff()
    {
        EngineFixture f;
        WebServer server(f.engine, f.clock);
        server.applyWebSettings();
        QCOMPARE(server.serverPort(), quint16(0));
        QVERIFY(!server.webStatus());
        QCOMPARE(Preferences::webPort(), 8080); // as the settings window shows it
        QCOMPARE(Preferences::storedWebSettings().port, 0);
    }

    void aTakenPortIsReportedInFrench()
    {
        QTcpServer taken;
        QVERIFY(taken.listen(QHostAddress::LocalHost));
        storeWebSettings(taken.serverPort());
        EngineFixture f;
        WebServer server(f.engine, f.clock);
        QSignalSpy status(&server, &WebServer::webStatusChanged);
        server.applyWebSettings();
        QCOMPARE(status.size(), 1);
        QVERIFY(server.webStatus());
        QVERIFY2(server.webStatus()->startsWith(
                     QStringLiteral("Port %1 indisponible (").arg(taken.serverPort())),
                 qPrintable(*server.webStatus()));
    }

    void theStateCarriesTheTargetsOfTheManualClock()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600), durationCue("B", 300)}));
        f.engine.start();
        f.clock.advance(1500ms);
        f.engine.tick();
        const QJsonObject doc = webStateDocument(f.engine, f.clock);
        const qint64 now = f.clock.now().toMSecsSinceEpoch();
        QCOMPARE(doc.value(u"serverTimeMs").toDouble(), double(now));
        QCOMPARE(doc.value(u"remaining").toDouble(), 598.5);
        QCOMPARE(doc.value(u"nextSecondAtMs").toDouble(), double(now + 500));
        QCOMPARE(doc.value(u"activeCueIndex").toInt(), 0);
        QCOMPARE(doc.value(u"cues").toArray().size(), 2);
        QCOMPARE(doc.value(u"cues").toArray()[0].toObject().value(u"active").toBool(), true);
        f.engine.pause();
        QVERIFY(webStateDocument(f.engine, f.clock).value(u"nextSecondAtMs").isNull());
    }

    void theStateIsReadWhenItIsMadeNotAtTheLastTick()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        f.engine.start();
        f.clock.advance(1000ms);
        f.engine.tick();
        f.clock.stall(250ms); // no tick since
        QJsonObject doc = webStateDocument(f.engine, f.clock);
        qint64 now = f.clock.now().toMSecsSinceEpoch();
        QCOMPARE(doc.value(u"remaining").toDouble(), 598.75);
        QCOMPARE(doc.value(u"liveRemaining").toDouble(), 598.75);
        QCOMPARE(doc.value(u"elapsed").toDouble(), 1.25);
        QCOMPARE(doc.value(u"plannedDuration").toDouble(), 600.0);
        QCOMPARE(doc.value(u"nextSecondAtMs").toDouble(), double(now + 750));
        QCOMPARE(doc.value(u"liveNextSecondAtMs").toDouble(), double(now + 750));

        // Frozen: the stage's digits stand, the cue clock (the confidence display's) runs on.
        f.engine.toggleFreeze();
        f.clock.stall(500ms);
        doc = webStateDocument(f.engine, f.clock);
        now = f.clock.now().toMSecsSinceEpoch();
        QCOMPARE(doc.value(u"remaining").toDouble(), 599.0); // the last published value, held
        QVERIFY(doc.value(u"nextSecondAtMs").isNull());
        QCOMPARE(doc.value(u"liveRemaining").toDouble(), 598.25);
        QCOMPARE(doc.value(u"liveNextSecondAtMs").toDouble(), double(now + 250));

        f.engine.pause();
        doc = webStateDocument(f.engine, f.clock);
        QVERIFY(doc.value(u"nextSecondAtMs").isNull());
        QVERIFY(doc.value(u"liveNextSecondAtMs").isNull());
    }

    void theStateCarriesWhatThePagesDrawWith()
    {
        EngineFixture f;
        Fmt::setTimeZone(QTimeZone("Europe/Paris"));
        Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
        Cue blue = durationCue("Bleu", 300, 60, 10);
        blue.colorHex = QStringLiteral(" #3b82f6 ");
        Cue broken = durationCue("Cassé", 300);
        broken.colorHex = QStringLiteral("#12345");
        f.engine.loadSession(showOf({blue, broken}));
        const QJsonObject doc = webStateDocument(f.engine, f.clock);
        const QJsonArray cues = doc.value(u"cues").toArray();
        QCOMPARE(cues[0].toObject().value(u"warningThreshold").toDouble(), 60.0);
        QCOMPARE(cues[0].toObject().value(u"dangerThreshold").toDouble(), 10.0);
        QCOMPARE(cues[0].toObject().value(u"color").toString(), QStringLiteral("#3B82F6"));
        QCOMPARE(cues[1].toObject().value(u"colorHex").toString(), QStringLiteral("#12345"));
        QVERIFY(cues[1].toObject().value(u"color").isNull());
        // 21 November 2026 in Paris: winter time, an hour ahead of UTC.
        QCOMPARE(doc.value(u"timeZone").toString(), QStringLiteral("Europe/Paris"));
        QCOMPARE(doc.value(u"utcOffsetSeconds").toInt(), 3600);
        QCOMPARE(doc.value(u"locale").toString(), QStringLiteral("fr"));
        Fmt::setTimeZone(QTimeZone::systemTimeZone());
        Fmt::setLocale(QLocale::system());
    }

    void aShowWithoutAStartTimeHasNoSchedule()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600), durationCue("B", 300)}));
        f.engine.start();
        const QJsonObject live = webLiveDocument(f.engine, f.clock);
        QVERIFY(live.contains(u"schedule"));
        QVERIFY(live.value(u"schedule").isNull());
        const QJsonObject doc = webStateDocument(f.engine, f.clock);
        QVERIFY(doc.contains(u"schedule"));
        QVERIFY(doc.value(u"schedule").isNull());
        QStringList keys = doc.value(u"cues").toArray()[1].toObject().keys();
        keys.sort();
        QCOMPARE(keys, (QStringList{"active", "color", "colorHex", "dangerThreshold", "duration", "name",
                                    "speaker", "warningThreshold"}));
    }

    // A 10 min, B 5 min and C 15 min from 14:00: planned at 14:00, 14:10 and 14:15, to end at
    // 14:30. The schedule is read at the wall clock's nearest whole second.
    void theScheduleSaysHowTheShowRunsAgainstItsTimetable()
    {
        EngineFixture f; // 14:00:00 in Paris
        TimerSession show = showOf({durationCue("A", 600), durationCue("B", 300), durationCue("C", 900)});
        show.scheduledStart = parisTime(14, 0);
        f.engine.loadSession(show);
        const QJsonValue none(QJsonValue::Null);
        const auto cueTimes = [](double planned, const QJsonValue &expected) {
            return QJsonObject{{"plannedStartMs", planned}, {"expectedStartMs", expected}};
        };
        // The state document's schedule, the live document's (the same without the cues), and
        // each row of the cues carrying its own times.
        const auto checkSchedule = [&](const QJsonObject &expected) {
            const QJsonObject doc = webStateDocument(f.engine, f.clock);
            QCOMPARE(doc.value(u"schedule").toObject(), expected);
            QJsonObject live = expected;
            live.remove(u"cues");
            QCOMPARE(webLiveDocument(f.engine, f.clock).value(u"schedule").toObject(), live);
            const QJsonArray rows = doc.value(u"cues").toArray();
            const QJsonArray times = expected.value(u"cues").toArray();
            QCOMPARE(rows.size(), times.size());
            for (qsizetype i = 0; i < rows.size(); ++i) {
                const QJsonObject row = rows[i].toObject();
                QCOMPARE(row.value(u"plannedStartMs"), times[i].toObject().value(u"plannedStartMs"));
                QCOMPARE(row.value(u"expectedStartMs"), times[i].toObject().value(u"expectedStartMs"));
                QCOMPARE(row.value(u"name").toString(), show.cues[i].name);
            }
        };

        // At its start, nothing begun: on time, every cue still to come where it is planned.
        checkSchedule({{"showStartMs", parisMs(14, 0)}, {"offsetSeconds", 0}, {"projectedEndMs", parisMs(14, 30)},
                       {"text", "Programme : à l'heure"}, {"color", "#B8B8C0"},
                       {"cues", QJsonArray{cueTimes(parisMs(14, 0), parisMs(14, 0)),
                                           cueTimes(parisMs(14, 10), parisMs(14, 10)),
                                           cueTimes(parisMs(14, 15), parisMs(14, 15))}}});
        if (QTest::currentTestFailed())
            return;

        // A begun at 14:04:30.4: 270.4 s late, the cues after it later by as much; the projected
        // end is cut to its whole second.
        f.clock.advance(270400ms);
        f.engine.start(0);
        checkSchedule({{"showStartMs", parisMs(14, 0)}, {"offsetSeconds", 270},
                       {"projectedEndMs", parisMs(14, 34, 30)},
                       {"text", "Programme : +5 min de retard"}, {"color", "#F1C40F"},
                       {"cues", QJsonArray{cueTimes(parisMs(14, 0), none),
                                           cueTimes(parisMs(14, 10), parisMs(14, 14, 30, 400)),
                                           cueTimes(parisMs(14, 15), parisMs(14, 19, 30, 400))}}});
        if (QTest::currentTestFailed())
            return;

        // Two minutes taken off A: the cues after it come as much earlier, the offset stays.
        f.clock.advance(30s);
        f.engine.adjust(-120);
        checkSchedule({{"showStartMs", parisMs(14, 0)}, {"offsetSeconds", 270},
                       {"projectedEndMs", parisMs(14, 32, 30)},
                       {"text", "Programme : +5 min de retard"}, {"color", "#F1C40F"},
                       {"cues", QJsonArray{cueTimes(parisMs(14, 0), none),
                                           cueTimes(parisMs(14, 10), parisMs(14, 12, 30, 400)),
                                           cueTimes(parisMs(14, 15), parisMs(14, 17, 30, 400))}}});
        if (QTest::currentTestFailed())
            return;

        // A left after a minute, at 14:05:30.4, read at 14:05:30: 269.6 s early. B may go at
        // once, the show then as early.
        f.clock.advance(30s);
        f.engine.stop();
        checkSchedule({{"showStartMs", parisMs(14, 0)}, {"offsetSeconds", -270},
                       {"projectedEndMs", parisMs(14, 25, 30)},
                       {"text", "Programme : 5 min d'avance"}, {"color", "#2ECC71"},
                       {"cues", QJsonArray{cueTimes(parisMs(14, 0), none),
                                           cueTimes(parisMs(14, 10), parisMs(14, 5, 30)),
                                           cueTimes(parisMs(14, 15), parisMs(14, 10, 30))}}});
        if (QTest::currentTestFailed())
            return;

        // Still waiting at 14:16:40.4, read at 14:16:40: B 400 s past its planned start, and
        // expected now.
        f.clock.advance(670s);
        checkSchedule({{"showStartMs", parisMs(14, 0)}, {"offsetSeconds", 400},
                       {"projectedEndMs", parisMs(14, 36, 40)},
                       {"text", "Programme : +7 min de retard"}, {"color", "#E74C3C"},
                       {"cues", QJsonArray{cueTimes(parisMs(14, 0), none),
                                           cueTimes(parisMs(14, 10), parisMs(14, 16, 40)),
                                           cueTimes(parisMs(14, 15), parisMs(14, 21, 40))}}});
        if (QTest::currentTestFailed())
            return;

        // The start taken off: nothing of the timetable is left.
        setShowStart(f.engine, std::nullopt);
        const QJsonObject doc = webStateDocument(f.engine, f.clock);
        QVERIFY(doc.value(u"schedule").isNull());
        QVERIFY(!doc.value(u"cues").toArray()[1].toObject().contains(u"plannedStartMs"));
        QVERIFY(!doc.value(u"cues").toArray()[1].toObject().contains(u"expectedStartMs"));
    }

    void theScheduleIsReadAgainAtEachHalfSecondOfTheWallClock_data()
    {
        QTest::addColumn<qint64>("nowMs");
        QTest::addColumn<qint64>("ms");
        QTest::newRow("on a whole second") << qint64(1'700'000'000'000) << qint64(500);
        QTest::newRow("just before the half") << qint64(1'700'000'000'499) << qint64(1);
        QTest::newRow("on the half") << qint64(1'700'000'000'500) << qint64(1000);
        QTest::newRow("just after the half") << qint64(1'700'000'000'501) << qint64(999);
        QTest::newRow("just before a whole second") << qint64(1'700'000'000'999) << qint64(501);
    }
    void theScheduleIsReadAgainAtEachHalfSecondOfTheWallClock()
    {
        QFETCH(qint64, nowMs);
        QFETCH(qint64, ms);
        QCOMPARE(msUntilScheduleReadingChanges(nowMs), ms);
    }

    void freezeClockModeAndDoorsAreCommands()
    {
        EngineFixture f; // 14:00 in Paris
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        QString error;
        auto apply = [&](const char *name, const QJsonObject &body = {}) {
            const std::optional<WebCommand> command =
                WebCommand::decode(QString::fromLatin1(name), body, &error);
            QVERIFY2(command, qPrintable(error));
            applyWebCommand(f.engine, *command);
        };
        apply("freeze");
        QVERIFY(f.engine.freeze());
        apply("freeze");
        QVERIFY(!f.engine.freeze());
        const qsizetype hooks = f.snapshots.size();
        apply("clockmode");
        QVERIFY(f.engine.clockMode());
        QCOMPARE(f.snapshots.size(), hooks + 1); // OSC output hears of it
        QVERIFY(f.snapshots.last().clockMode);
        apply("doors", {{QStringLiteral("at"), QStringLiteral("14:30")}});
        QCOMPARE(f.engine.doorsTarget(),
                 QDateTime(QDate(2026, 11, 21), QTime(14, 30), QTimeZone("Europe/Paris")));
        apply("doors", {{QStringLiteral("at"), QJsonValue::Null}});
        QVERIFY(!f.engine.doorsActive());

        for (const QJsonObject &body : {QJsonObject{}, QJsonObject{{QStringLiteral("at"), QStringLiteral("25:00")}},
                                        QJsonObject{{QStringLiteral("at"), 1430}}}) {
            QVERIFY(!WebCommand::decode(QStringLiteral("doors"), body, &error));
            QCOMPARE(error, QStringLiteral("« at » doit être une heure « HH:mm » ou null"));
        }
    }

    void thePagesAreServedWithTheirTypesAndUnknownPathsGetTheJson404()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        const quint16 port = server.serverPort();
        const struct {
            const char *path;
            const char *type;
            const char *caching;
        } served[] = {
            {"/", "text/html; charset=utf-8", "no-cache"},
            {"/stage", "text/html; charset=utf-8", "no-cache"},
            {"/confidence", "text/html; charset=utf-8", "no-cache"},
            {"/overlay", "text/html; charset=utf-8", "no-cache"},
            {"/pages/overlay.js", "text/javascript; charset=utf-8", "no-cache"},
            {"/pages/kairon.js", "text/javascript; charset=utf-8", "no-cache"},
            {"/pages/stage.js", "text/javascript; charset=utf-8", "no-cache"},
            {"/pages/pages.css", "text/css; charset=utf-8", "no-cache"},
            {"/pages/theme.css", "text/css; charset=utf-8", "no-cache"},
            {"/fonts/Inter-SemiBold.otf", "font/otf", "max-age=86400"},
            {"/fonts/DejaVuSans-Bold.ttf", "font/ttf", "max-age=86400"},
        };
        for (const auto &page : served) {
            const auto reply = fetch(port, QString::fromLatin1(page.path));
            QCOMPARE(statusOf(reply.get()), 200);
            QCOMPARE(reply->rawHeader("Content-Type"), QByteArray(page.type));
            QCOMPARE(reply->rawHeader("Cache-Control"), QByteArray(page.caching));
            QVERIFY(reply->readAll().size() > 100);
        }
        const auto theme = fetch(port, QStringLiteral("/pages/theme.css"));
        const QByteArray css = theme->readAll();
        QVERIFY(css.contains("--state-warning: rgb(241 196 15);"));
        QVERIFY(css.contains("--bg-deep: rgb(10 10 12);"));

        // The paths are matched whole and literally.
        for (const char *path : {"/stage/", "/stagex", "/pages/kaironXjs", "/fonts/Inter-Thin.otf"}) {
            const auto reply = fetch(port, QString::fromLatin1(path));
            QCOMPARE(statusOf(reply.get()), 404);
            QCOMPARE(reply->readAll(), QStringLiteral("{\"error\":\"Chemin inconnu : %1\"}")
                                           .arg(QLatin1StringView(path)).toUtf8());
        }
        const auto posted = fetch(port, QStringLiteral("/stage"), "POST");
        QCOMPARE(statusOf(posted.get()), 405);
        QCOMPARE(posted->rawHeader("Allow"), QByteArray("GET"));
    }

    void aPingIsAnsweredAtOnceWithoutTheCode()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        RecordingViewer viewer(server.serverPort());
        const QList<QJsonObject> &received = viewer.received;
        QTRY_COMPARE(received.size(), 2); // the show and the state
        viewer.sendTextMessage(QStringLiteral(R"({"command":"ping","t":1234.5})"));
        QTRY_COMPARE(received.size(), 3);
        QCOMPARE(received[2], (QJsonObject{{QStringLiteral("pong"), 1234.5},
                                           {QStringLiteral("serverTimeMs"),
                                            double(f.clock.now().toMSecsSinceEpoch())}}));
        viewer.sendTextMessage(QStringLiteral(R"({"command":"ping","t":"maintenant"})"));
        QTRY_COMPARE(received.size(), 4);
        QCOMPARE(received[3].value(u"error").toString(), QStringLiteral("« t » doit être un nombre"));
    }

    void aCommandOverHttpDrivesTheEngineAndAWrongCodeDoesNot()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        QVERIFY(server.serverPort() != 0);

        std::unique_ptr<QNetworkReply> refused(post(server.serverPort(), "play", {}, "WRONG"));
        QTRY_VERIFY(refused->isFinished());
        QCOMPARE(refused->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 401);
        QVERIFY(!f.engine.isRunning());

        std::unique_ptr<QNetworkReply> played(post(server.serverPort(), "play", {}, "CODE2345"));
        QTRY_VERIFY(played->isFinished());
        QCOMPARE(played->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 200);
        QVERIFY(f.engine.isRunning());
        QCOMPARE(QJsonDocument::fromJson(played->readAll()).object().value(u"running").toBool(), true);
    }

    void wrongCodesCountOnlyWithinTheirWindow()
    {
        CodeGuard guard;
        const QString phone = QStringLiteral("192.168.1.20");
        for (int i = 1; i < CodeGuard::maxFailures; ++i)
            QVERIFY(!guard.recordFailure(phone, 1000 * i));
        // The window opened at the first failure is over: counting starts again.
        QVERIFY(!guard.recordFailure(phone, 1000 + CodeGuard::windowMs));
        QVERIFY(!guard.locked(phone, 1000 + CodeGuard::windowMs));
        // A right code clears the count.
        for (int i = 1; i < CodeGuard::maxFailures - 1; ++i)
            QVERIFY(!guard.recordFailure(phone, 70'000 + i));
        guard.recordSuccess(phone);
        QVERIFY(!guard.recordFailure(phone, 70'100));
        QVERIFY(!guard.locked(phone, 70'100));
        // Another address has its own count.
        for (int i = 1; i < CodeGuard::maxFailures; ++i)
            QVERIFY(!guard.recordFailure(QStringLiteral("192.168.1.21"), 80'000));
        QVERIFY(guard.recordFailure(QStringLiteral("192.168.1.21"), 80'000));
        QVERIFY(guard.locked(QStringLiteral("192.168.1.21"), 80'000));
        QCOMPARE(guard.secondsLeft(QStringLiteral("192.168.1.21"), 80'001), 60);
        QVERIFY(!guard.locked(phone, 80'000));
    }

    void guessingTheCodeLocksTheAddressOutForAMinute()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        auto answer = [&](const QByteArray &code) {
            std::unique_ptr<QNetworkReply> reply(post(server.serverPort(), "play", {}, code));
            if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 5000))
                return std::pair{0, QString()};
            return std::pair{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                             QString::fromUtf8(reply->readAll())};
        };
        for (int i = 1; i < CodeGuard::maxFailures; ++i)
            QCOMPARE(answer("WRONG").first, 401);
        const QString locked = QStringLiteral(
            "{\"error\":\"Trop de codes d'accès erronés : réessayez dans 60 s\"}");
        QCOMPARE(answer("WRONG"), std::pair(429, locked));
        // Locked out, even the right code is refused and the show does not move.
        f.clock.advance(30s);
        QCOMPARE(answer("CODE2345"), std::pair(429, QStringLiteral(
            "{\"error\":\"Trop de codes d'accès erronés : réessayez dans 30 s\"}")));
        QVERIFY(!f.engine.isRunning());
        f.clock.advance(30s);
        QCOMPARE(answer("CODE2345").first, 200);
        QVERIFY(f.engine.isRunning());
    }
};

QTEST_MAIN(TestWebServer)
#include "tst_webserver.moc"
