#include "settingssandbox.h"
#include "webdocuments.h"
#include "webfixture.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

using namespace std::chrono_literals;

// What a remote control (a button deck's module, a script) leans on besides the commands: a
// check of its access code that changes nothing, an acknowledgement of each WebSocket command it
// numbers, and the figures of the console's "Fin journée" and selection in the state.
class TestRemoteControl : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsSandbox> m_settings;
    QNetworkAccessManager m_network;

    // A POST to /api/NAME with the code, answered whole: its status and its JSON body.
    std::pair<int, QJsonObject> post(quint16 port, const char *name, const QByteArray &code)
    {
        QNetworkRequest request(
            QUrl(QStringLiteral("http://127.0.0.1:%1/api/%2").arg(port).arg(QLatin1StringView(name))));
        request.setRawHeader("Authorization", "Bearer " + code);
        std::unique_ptr<QNetworkReply> reply(m_network.post(request, QByteArray()));
        if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 5000))
            return {0, {}};
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                QJsonDocument::fromJson(reply->readAll()).object()};
    }

    // Sends `message` and waits for the answer to a ping sent after it: everything the message
    // brought has come by then. Returns what came, the pong left out.
    static QList<QJsonObject> exchange(RecordingViewer &viewer, const QString &message)
    {
        static int pings = 0;
        const double mark = 1000 + ++pings;
        const qsizetype before = viewer.received.size();
        viewer.sendTextMessage(message);
        viewer.sendTextMessage(QStringLiteral(R"({"command":"ping","t":%1})").arg(mark));
        if (!QTest::qWaitFor([&] { return !viewer.received.isEmpty()
                                          && viewer.received.last().value(u"pong") == mark; }, 5000))
            return {};
        return viewer.received.mid(before, viewer.received.size() - before - 1);
    }

    static QJsonObject refusal(const QString &reason, const QJsonValue &id)
    {
        return {{QStringLiteral("error"), reason}, {QStringLiteral("id"), id}};
    }

    static QList<QString> typesOf(const QList<QJsonObject> &messages)
    {
        QList<QString> types;
        for (const QJsonObject &m : messages)
            types << (m.contains(u"type") ? m.value(u"type").toString() : m.keys().join(u'+'));
        return types;
    }

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void aCheckTellsWhetherTheCodeIsRightAndChangesNothing()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2); // the show and the state
        const QJsonObject before = webStateDocument(f.engine, f.clock);

        const auto [status, body] = post(server.serverPort(), "check", "CODE2345");
        QCOMPARE(status, 200);
        QJsonObject answered = body;
        // A machine that follows no main is one, since the server began.
        QCOMPARE(answered.take(QStringLiteral("follow")).toObject(),
                 (QJsonObject{{"role", "main"}, {"host", QJsonValue()}, {"since", parisMs(14, 0)}}));
        QCOMPARE(answered, before);
        QCOMPARE(post(server.serverPort(), "check", "WRONG").first, 401);
        QCOMPARE(webStateDocument(f.engine, f.clock), before);
        QVERIFY(!f.engine.isRunning());
        // Nothing went to the viewers either.
        QCOMPARE(exchange(viewer, QStringLiteral(R"({"command":"ping","t":0})")),
                 (QList<QJsonObject>{{{QStringLiteral("pong"), 0.0},
                                      {QStringLiteral("serverTimeMs"),
                                       double(f.clock.now().toMSecsSinceEpoch())}}}));
    }

    void aNumberedCommandIsAcknowledgedAfterWhatItChanged()
    {
        ServingFixture serving(
            {durationCue(QStringLiteral("A"), 600), durationCue(QStringLiteral("B"), 900)});
        auto &[f, server] = serving;
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);

        QList<QJsonObject> came =
            exchange(viewer, QStringLiteral(R"({"command":"play","code":"CODE2345","id":7})"));
        QCOMPARE(typesOf(came), (QList<QString>{QStringLiteral("patch"), QStringLiteral("ack")}));
        QCOMPARE(came[0].value(u"running"), QJsonValue(true));
        QCOMPARE(came[1], (QJsonObject{{QStringLiteral("ack"), 7}}));
        QVERIFY(f.engine.isRunning());

        // Any JSON value is an id; a check applies nothing and is acknowledged alone.
        came = exchange(viewer, QStringLiteral(R"({"command":"check","code":"CODE2345","id":{"k":1}})"));
        const QJsonObject ack{{QStringLiteral("ack"), QJsonObject{{QStringLiteral("k"), 1}}}};
        QCOMPARE(came, QList{ack});

        // Refusals carry the id: a row past the list, a wrong code, an unknown command.
        came = exchange(viewer,
                        QStringLiteral(R"({"command":"start","code":"CODE2345","index":9,"id":"x"})"));
        QCOMPARE(came, QList{refusal(QStringLiteral("Aucun cue à l'index 9 (de 0 à 1)"),
                                     QStringLiteral("x"))});
        came = exchange(viewer, QStringLiteral(R"({"command":"stop","code":"WRONG","id":8})"));
        QCOMPARE(came, QList{refusal(QStringLiteral("Code d'accès manquant ou incorrect"), 8)});
        QVERIFY(f.engine.isRunning());
        came = exchange(viewer, QStringLiteral(R"({"command":"jump","id":9})"));
        QCOMPARE(came, QList{refusal(QStringLiteral("Commande inconnue : « jump »"), 9)});

        // Without an id, as before: the patch, no acknowledgement.
        came = exchange(viewer, QStringLiteral(R"({"command":"pause","code":"CODE2345"})"));
        QCOMPARE(typesOf(came), QList<QString>{QStringLiteral("patch")});
        QCOMPARE(came[0].value(u"paused"), QJsonValue(true));
    }

    void theStateCarriesTheSelectionAndTheDurationsOfTheDayEnd()
    {
        ServingFixture serving({durationCue(QStringLiteral("A"), 600),
                                durationCue(QStringLiteral("B"), 900),
                                durationCue(QStringLiteral("C"), 300)});
        auto &[f, server] = serving;
        auto read = [&](const char *key) {
            return webStateDocument(f.engine, f.clock).value(QLatin1StringView(key));
        };

        // Nothing selected nor active: every cue counts.
        f.engine.setSelectedCueIndex(std::nullopt);
        QCOMPARE(read("selectedCueIndex"), QJsonValue(QJsonValue::Null));
        QCOMPARE(read("laterCuesDuration"), QJsonValue(1800.0));
        f.engine.setSelectedCueIndex(0);
        QCOMPARE(read("selectedCueIndex"), QJsonValue(0));
        QCOMPARE(read("laterCuesDuration"), QJsonValue(1200.0));
        // A cue on air counts from itself, whatever row is selected.
        f.engine.start(1);
        f.engine.setSelectedCueIndex(2);
        QCOMPARE(read("selectedCueIndex"), QJsonValue(2));
        QCOMPARE(read("laterCuesDuration"), QJsonValue(300.0));
        // With the running cue's remaining time, the console's "Fin journée": 800 s of B and
        // the 300 s of C from now.
        f.clock.advance(100s);
        const QJsonObject doc = webStateDocument(f.engine, f.clock);
        QCOMPARE(doc.value(u"liveRemaining"), QJsonValue(800.0));
        const double later = doc.value(u"laterCuesDuration").toDouble();
        QCOMPARE(doc.value(u"serverTimeMs").toDouble() + (doc.value(u"liveRemaining").toDouble() + later) * 1000,
                 double(f.clock.now().addSecs(1100).toMSecsSinceEpoch()));
    }
};

QTEST_MAIN(TestRemoteControl)
#include "tst_remotecontrol.moc"
