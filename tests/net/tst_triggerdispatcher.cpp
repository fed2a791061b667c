#include "enginefixture.h"
#include "oscservice.h"
#include "ports.h"
#include "triggerdispatcher.h"
#include "triggerreceivers.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QUdpSocket>

using namespace std::chrono_literals;

namespace {
// An engine on the hand-moved clock holding `show`, its moments sent by a dispatcher over a real
// OSC service.
struct DispatchingFixture {
    explicit DispatchingFixture(const TimerSession &show)
    {
        f.engine.loadSession(show);
        dispatcher.attach(f.engine);
    }
    EngineFixture f;
    OSCService service;
    TriggerDispatcher dispatcher{service};
};

CueTrigger oscTrigger(TriggerMoment when, quint16 port, const char *address, QList<TriggerArgument> args = {})
{
    return {when, QStringLiteral("Lumières"),
            OscTriggerTarget{QStringLiteral("127.0.0.1"), port, QString::fromLatin1(address), std::move(args)}};
}

CueTrigger httpTrigger(TriggerMoment when, const QString &method, const QString &url, const QString &body = {})
{
    return {when, QStringLiteral("Régie vidéo"), HttpTriggerTarget{method, url, body}};
}
} // namespace

// The triggers as they leave: each moment's messages to a real UDP port and a real HTTP
// server, with the placeholders filled in, and the failures told once per trigger.
class TestTriggerDispatcher : public QObject
{
    Q_OBJECT

private slots:
    void eachMomentSendsItsMessagesFilledIn()
    {
        OscReceiver osc;
        HttpReceiver http;
        const quint16 port = osc.socket.localPort();
        Cue keynote = durationCue(QStringLiteral("Q&R"), 200);
        keynote.speaker = QStringLiteral("Ana");
        keynote.triggers = {
            oscTrigger(TriggerMoment::Start, port, "/start", {{'i', QStringLiteral("{index}")}, {'s', QStringLiteral("{speaker}")}}),
            oscTrigger(TriggerMoment::Warning, port, "/warning", {{'i', QStringLiteral("{remaining}")}}),
            oscTrigger(TriggerMoment::Danger, port, "/danger", {{'f', QStringLiteral("{remaining}")}}),
            oscTrigger(TriggerMoment::Zero, port, "/zero"),
            httpTrigger(TriggerMoment::End, QStringLiteral("POST"), http.url("/end"), QStringLiteral("{cue} {remaining}")),
        };
        TimerSession show = showOf({durationCue(QStringLiteral("Accueil"), 60), keynote});
        show.triggers = {httpTrigger(TriggerMoment::Start, QStringLiteral("GET"), http.url("/go?cue={cue}&n={index}"))};

        DispatchingFixture fixture(show);
        auto &[f, service, dispatcher] = fixture;

        f.engine.start(1);
        QTRY_COMPARE(osc.datagrams, QList{OSCCodec::encode(QStringLiteral("/start"), {qint32(2), QStringLiteral("Ana")})});
        QTRY_COMPARE(http.requests, QList<QByteArray>{"GET /go?cue=Q%26R&n=2 HTTP/1.1 "});
        f.clock.advance(81s); // 119 s left
        QTRY_COMPARE(osc.datagrams.size(), 2);
        QCOMPARE(osc.datagrams[1], OSCCodec::encode(QStringLiteral("/warning"), {qint32(119)}));
        f.clock.advance(90s); // 29 s
        QTRY_COMPARE(osc.datagrams.size(), 3);
        QCOMPARE(osc.datagrams[2], OSCCodec::encode(QStringLiteral("/danger"), {29.0f}));
        f.clock.advance(30s); // -1 s
        QTRY_COMPARE(osc.datagrams.size(), 4);
        QCOMPARE(osc.datagrams[3], OSCCodec::encode(QStringLiteral("/zero"), {}));
        f.clock.advance(41s); // 42 s of overtime
        f.engine.next(); // the last cue: "next" stops
        QTRY_COMPARE(http.requests.size(), 2);
        QCOMPARE(http.requests[1], QByteArray("POST /end HTTP/1.1 Q&R -42"));
        QTRY_COMPARE(dispatcher.pending(), 0);
        // Nothing else went: the first cue's start was not sent (it never started).
        QCOMPARE(osc.datagrams.size(), 4);
    }

    void aFailureIsToldOncePerTriggerAndEveryTimeByHand()
    {
        HttpReceiver refusing;
        refusing.status = 404;
        const quint16 closed = freeTcpPort();
        Cue cue = durationCue(QStringLiteral("Keynote"), 200);
        cue.triggers = {
            oscTrigger(TriggerMoment::Start, 9000, "/go"),
            httpTrigger(TriggerMoment::Start, QStringLiteral("GET"), refusing.url("/missing")),
            httpTrigger(TriggerMoment::Start, QStringLiteral("GET"), QStringLiteral("http://127.0.0.1:%1/").arg(closed)),
            oscTrigger(TriggerMoment::Start, 9000, "/go", {{'i', QStringLiteral("{cue}")}}),
        };
        std::get<OscTriggerTarget>(cue.triggers[0].target).host = QStringLiteral("régie.invalid");
        DispatchingFixture fixture(showOf({cue}));
        auto &[f, service, dispatcher] = fixture;
        QSignalSpy failed(&dispatcher, &TriggerDispatcher::failed);

        f.engine.start(0);
        // The name's lookup may wait on the machine's resolver.
        QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 4, 30000);
        QStringList texts;
        for (const QList<QVariant> &args : std::as_const(failed))
            texts << args.at(0).toString();
        texts.sort();
        QCOMPARE(texts, (QStringList{
                            QStringLiteral("Déclencheur « Lumières » : hôte inconnu : régie.invalid"),
                            QStringLiteral("Déclencheur « Lumières » : l'argument 1 « Keynote » n'est pas un nombre"),
                            QStringLiteral("Déclencheur « Régie vidéo » : pas de réponse de 127.0.0.1"),
                            QStringLiteral("Déclencheur « Régie vidéo » : réponse HTTP 404 de 127.0.0.1"),
                        }));
        // Fired again, they fail again, quietly.
        f.engine.start(0);
        QTRY_COMPARE_WITH_TIMEOUT(dispatcher.pending(), 0, 30000);
        QTRY_COMPARE(refusing.requests.size(), 2);
        QCOMPARE(failed.size(), 4);
        // By hand, the operator is told every time.
        dispatcher.sendNow(cue.triggers[1], TriggerContext{});
        QTRY_COMPARE(failed.size(), 5);
    }

    void manyTriggersLeaveAfterTheOperationInOrderAndPastAThousandTheRestFail()
    {
        OscReceiver osc;
        Cue cue = durationCue(QStringLiteral("Keynote"), 600);
        for (int i = 0; i <= TriggerDispatcher::maxPending; ++i) {
            cue.triggers.append(oscTrigger(TriggerMoment::Start, osc.socket.localPort(), "/go"));
            cue.triggers.last().name = QString::number(i);
        }
        DispatchingFixture fixture(showOf({cue}));
        auto &[f, service, dispatcher] = fixture;
        QSignalSpy failed(&dispatcher, &TriggerDispatcher::failed);
        QSignalSpy delivered(&dispatcher, &TriggerDispatcher::delivered);

        // The start returns at once: a thousand wait their turn, the one past them fails.
        f.engine.start(0);
        QCOMPARE(dispatcher.pending(), TriggerDispatcher::maxPending);
        QCOMPARE(failed.size(), 1);
        QCOMPARE(failed.at(0).at(0).toString(),
                 QStringLiteral("Déclencheur « 1000 » : file d'attente pleine (1000 messages)"));
        QVERIFY(delivered.isEmpty() && osc.datagrams.isEmpty());
        // Then every one leaves, in order (the receiver's buffer may drop some on arrival).
        QTRY_COMPARE_WITH_TIMEOUT(delivered.size(), TriggerDispatcher::maxPending, 10000);
        for (int i = 0; i < delivered.size(); ++i)
            QCOMPARE(delivered.at(i).at(0).toString(), QString::number(i));
        QTRY_VERIFY(!osc.datagrams.isEmpty());
        QCOMPARE(dispatcher.pending(), 0);
    }

    void aServerThatNeverAnswersFailsAfterTwoSeconds()
    {
        HttpReceiver silent;
        silent.silent = true;
        OSCService service;
        TriggerDispatcher dispatcher(service);
        QSignalSpy failed(&dispatcher, &TriggerDispatcher::failed);
        dispatcher.sendNow(httpTrigger(TriggerMoment::Zero, QStringLiteral("GET"), silent.url("/cut")), {});
        QCOMPARE(dispatcher.pending(), 1);
        QVERIFY(failed.wait(5000));
        QCOMPARE(failed.at(0).at(0).toString(), QStringLiteral("Déclencheur « Régie vidéo » : pas de réponse de 127.0.0.1"));
        QCOMPARE(silent.requests.size(), 1);
        QCOMPARE(dispatcher.pending(), 0);
    }

    // "Envoyer maintenant" from the editor: the outcome goes back to it, and a failure is not
    // a toast besides.
    void aTriggerSentByHandTellsItsOutcomeToWhoAskedIt()
    {
        OscReceiver osc;
        HttpReceiver refusing;
        refusing.status = 503;
        OSCService service;
        TriggerDispatcher dispatcher(service);
        QSignalSpy failed(&dispatcher, &TriggerDispatcher::failed);
        QStringList outcomes;
        const auto keep = [&outcomes](const QString &failure) { outcomes.append(failure); };
        CueTrigger go = oscTrigger(TriggerMoment::Start, osc.socket.localPort(), "/go");
        std::get<OscTriggerTarget>(go.target).args = {{'i', QStringLiteral("{index}")}};
        dispatcher.sendNow(go, TriggerContext{QStringLiteral("Keynote"), QString(), 3, 600}, keep);
        QTRY_COMPARE(outcomes, QStringList{QString()});
        QTRY_COMPARE(osc.datagrams.size(), 1);
        QCOMPARE(osc.datagrams.first(), QByteArray("/go\0,i\0\0\0\0\0\3", 12));
        dispatcher.sendNow(httpTrigger(TriggerMoment::End, QStringLiteral("POST"), refusing.url("/cue")), {}, keep);
        QTRY_COMPARE(outcomes.size(), 2);
        QCOMPARE(outcomes.last(), QStringLiteral("réponse HTTP 503 de 127.0.0.1"));
        CueTrigger broken = go;
        std::get<OscTriggerTarget>(broken.target).port = 0;
        dispatcher.sendNow(broken, {}, keep);
        QCOMPARE(outcomes.last(), QStringLiteral("le port doit aller de 1 à 65535"));
        QVERIFY(failed.isEmpty());
    }
};

QTEST_MAIN(TestTriggerDispatcher)
#include "tst_triggerdispatcher.moc"
