#include "codeguard.h"
#include "enginefixture.h"
#include "preferences.h"
#include "settingssandbox.h"
#include "webcommand.h"
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

namespace {

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

void storeWebSettings(quint16 port)
{
    Preferences::setWebEnabled(true);
    Preferences::setWebPort(port);
    Preferences::setWebInterface(QStringLiteral("127.0.0.1"));
    Preferences::setWebAccessCode(QStringLiteral("CODE2345"));
}

} // namespace

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

    void aCommandOverHttpDrivesTheEngineAndAWrongCodeDoesNot()
    {
        storeWebSettings(freePort());
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        WebServer server(f.engine, f.clock);
        server.applyWebSettings();
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
        storeWebSettings(freePort());
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        WebServer server(f.engine, f.clock);
        server.applyWebSettings();
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

    void aViewerThatStopsReadingIsDroppedInsteadOfHoldingPushes()
    {
        storeWebSettings(freePort());
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        WebServer server(f.engine, f.clock);
        server.applyWebSettings();
        // A client that completes the handshake and then reads nothing more.
        QTcpSocket stuck;
        stuck.setReadBufferSize(1);
        stuck.connectToHost(QHostAddress::LocalHost, server.serverPort());
        QVERIFY(stuck.waitForConnected(5000));
        stuck.write("GET /api/ws HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\n"
                    "Connection: Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
                    "Sec-WebSocket-Version: 13\r\n\r\n");
        QTRY_COMPARE(server.viewerCount(), 1);
        // 50 KB messages, each one push: the kernel's buffers fill, then the server's own.
        int pushes = 0;
        while (server.viewerCount() == 1 && pushes < 2000) {
            f.engine.sendMessage(QString(50'000, QChar(u'a' + pushes % 26)), false);
            QSignalSpy pushed(&server, &WebServer::statePushed);
            QVERIFY(pushed.wait(5000));
            ++pushes;
        }
        QCOMPARE(server.viewerCount(), 0);
        QVERIFY2(pushes > 20, qPrintable(QString::number(pushes))); // a full megabyte at least
    }

    void changesInOneTurnOfTheLoopMakeOnePush()
    {
        storeWebSettings(freePort());
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        WebServer server(f.engine, f.clock);
        server.applyWebSettings();
        QWebSocket viewer;
        QList<QJsonObject> received;
        connect(&viewer, &QWebSocket::textMessageReceived, this, [&](const QString &text) {
            received << QJsonDocument::fromJson(text.toUtf8()).object();
        });
        viewer.open(QUrl(QStringLiteral("ws://127.0.0.1:%1/api/ws").arg(server.serverPort())));
        QTRY_COMPARE(received.size(), 1); // the state on connection
        QTRY_COMPARE(server.viewerCount(), 1);

        QSignalSpy pushed(&server, &WebServer::statePushed);
        f.engine.start();
        f.engine.sendMessage(QStringLiteral("Salut"), true);
        f.engine.setBlackout(true);
        QTRY_COMPARE(received.size(), 2);
        QCOMPARE(pushed.size(), 1);
        QCOMPARE(received.last().value(u"message").toString(), QStringLiteral("Salut"));
        QCOMPARE(received.last().value(u"blackout").toBool(), true);

        // 600 s shows "10:00"; the first tick after it shows "09:59", a change.
        f.clock.advance(300ms);
        f.engine.tick();
        QTRY_COMPARE(pushed.size(), 2);
        // Ticks within the same shown second push nothing; crossing a second pushes once.
        f.clock.advance(300ms);
        f.engine.tick();
        QCoreApplication::processEvents();
        QCOMPARE(pushed.size(), 2);
        f.clock.advance(500ms);
        f.engine.tick();
        QTRY_COMPARE(pushed.size(), 3);
    }
};

QTEST_MAIN(TestWebServer)
#include "tst_webserver.moc"
