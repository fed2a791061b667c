// The WebSocket viewers' messages, against the real server over real sockets on the manual
// clock: the show and the state on connection, then only what changes, at once.
#include "viewerfeed.h"
#include "webdocuments.h"
#include "webfixture.h"

#include "settingssandbox.h"

#include <QJsonArray>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

using namespace std::chrono_literals;

namespace {

const QStringList clockFields = {
    QStringLiteral("remaining"),     QStringLiteral("elapsed"),      QStringLiteral("progress"),
    QStringLiteral("liveRemaining"), QStringLiteral("overtime"),     QStringLiteral("serverTimeMs"),
    QStringLiteral("nextSecondAtMs"), QStringLiteral("liveNextSecondAtMs")};

QStringList keysOf(const QJsonObject &object)
{
    QStringList keys = object.keys();
    keys.sort();
    return keys;
}

QStringList sorted(QStringList keys)
{
    keys.sort();
    return keys;
}

// What a page holds after the messages from `from` on: the show and the state merged, each
// patch applied, its fields of the protocol taken out; fails on a gap in the sequence.
QJsonObject held(const QList<QJsonObject> &messages, qsizetype from = 0)
{
    QJsonObject show, state;
    double seq = -1;
    for (qsizetype i = from; i < messages.size(); ++i) {
        const QJsonObject &m = messages[i];
        const QString type = m.value(u"type").toString();
        if (type.isEmpty())
            continue; // a pong or an error
        const double next = m.value(u"seq").toDouble();
        if (type == u"state" || (type == u"show" && seq < 0)) {
            seq = next;
        } else if (next != seq + 1) {
            qWarning() << "gap in the sequence:" << seq << "then" << next;
            return {};
        } else {
            seq = next;
        }
        QJsonObject &target = type == u"show" ? show : state;
        if (type != u"patch")
            target = {};
        for (auto it = m.constBegin(); it != m.constEnd(); ++it)
            target.insert(it.key(), it.value());
    }
    for (auto it = show.constBegin(); it != show.constEnd(); ++it)
        state.insert(it.key(), it.value());
    for (const char *protocolField : {"type", "seq", "protocol"})
        state.remove(QLatin1StringView(protocolField));
    return state;
}

// The fields a state leaves out when they have no value, given as null, as a patch gives them.
QJsonObject withNulls(QJsonObject doc)
{
    for (const char *optional : {"message", "nextCueName"}) {
        if (!doc.contains(QLatin1StringView(optional)))
            doc.insert(QLatin1StringView(optional), QJsonValue::Null);
    }
    return doc;
}

// The state document without the cues' own "active" (the viewers have the active row) nor
// their times in the timetable (GET /api/state alone lists them).
QJsonObject asViewersHoldIt(QJsonObject doc)
{
    QJsonArray cues = doc.value(u"cues").toArray();
    for (qsizetype i = 0; i < cues.size(); ++i) {
        QJsonObject cue = cues.at(i).toObject();
        for (const char *key : {"active", "plannedStartMs", "expectedStartMs"})
            cue.remove(QLatin1StringView(key));
        cues.replace(i, cue);
    }
    doc.insert(u"cues", cues);
    if (doc.value(u"schedule").isObject()) {
        QJsonObject schedule = doc.value(u"schedule").toObject();
        schedule.remove(u"cues");
        doc.insert(u"schedule", schedule);
    }
    return withNulls(doc);
}

QList<Cue> numberedCues(int count)
{
    QList<Cue> cues;
    for (int i = 1; i <= count; ++i)
        cues.append(durationCue(QStringLiteral("Cue %1").arg(i), 600));
    return cues;
}

} // namespace

class TestViewerFeed : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsSandbox> m_settings;

    // What differs between a page's view of the program and the program's own state document
    // now: every field alike, but for the clocks, which may have been read at another instant
    // on the same path. Empty when the page holds the program's state.
    static QString differenceFromTheProgram(const QJsonObject &page, const ServingFixture &serving)
    {
        if (page.isEmpty())
            return QStringLiteral("nothing held");
        const QJsonObject now = asViewersHoldIt(webStateDocument(serving.f.engine, serving.f.clock));
        QJsonObject pageStatic = withNulls(page), nowStatic = now;
        for (const QString &key : clockFields) {
            pageStatic.remove(key);
            nowStatic.remove(key);
        }
        if (keysOf(pageStatic) != keysOf(nowStatic))
            return QStringLiteral("fields %1, not %2").arg(keysOf(pageStatic).join(u','), keysOf(nowStatic).join(u','));
        for (auto it = nowStatic.constBegin(); it != nowStatic.constEnd(); ++it) {
            if (pageStatic.value(it.key()) != it.value())
                return it.key();
        }
        const double dt = (now.value(u"serverTimeMs").toDouble() - page.value(u"serverTimeMs").toDouble()) / 1000;
        for (const auto &[value, runsWhen] : {std::pair(u"remaining", u"nextSecondAtMs"),
                                              std::pair(u"liveRemaining", u"liveNextSecondAtMs")}) {
            const bool runs = page.value(runsWhen).isDouble();
            if (runs != now.value(runsWhen).isDouble())
                return QString::fromUtf16(runsWhen);
            const double expected = page.value(value).toDouble() - (runs ? dt : 0);
            if (std::abs(expected - now.value(value).toDouble()) > ViewerFeed::clockToleranceSeconds)
                return QStringLiteral("%1: %2 held, %3 now").arg(QString::fromUtf16(value)).arg(expected).arg(now.value(value).toDouble());
        }
        return {};
    }

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void aViewerComingMidCueGetsTheShowThenTheState()
    {
        Cue blue = durationCue(QStringLiteral("Ouverture"), 600, 60, 10);
        blue.speaker = QStringLiteral("Léa");
        blue.colorHex = QStringLiteral("#3b82f6");
        ServingFixture serving({blue, durationCue(QStringLiteral("Débat"), 1200)});
        auto &[f, server] = serving;
        f.engine.start(0);
        f.clock.advance(3250ms);
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);

        const QJsonObject show = viewer.received[0];
        QCOMPARE(keysOf(show), sorted({"type", "protocol", "seq", "sessionName", "cues"}));
        QCOMPARE(show.value(u"type").toString(), QStringLiteral("show"));
        QCOMPARE(show.value(u"protocol").toInt(), 2);
        QCOMPARE(show.value(u"cues").toArray().size(), 2);
        QCOMPARE(show.value(u"cues").toArray()[0].toObject(),
                 (QJsonObject{{"name", "Ouverture"}, {"speaker", "Léa"}, {"duration", 600},
                              {"warningThreshold", 60}, {"dangerThreshold", 10},
                              {"colorHex", "#3b82f6"}, {"color", "#3B82F6"}}));

        const QJsonObject state = viewer.received[1];
        QCOMPARE(state.value(u"type").toString(), QStringLiteral("state"));
        QCOMPARE(state.value(u"seq"), show.value(u"seq"));
        QVERIFY(!state.contains(u"cues") && !state.contains(u"sessionName"));
        QStringList expectedKeys = keysOf(webLiveDocument(f.engine, f.clock));
        expectedKeys << QStringLiteral("type") << QStringLiteral("seq");
        QCOMPARE(keysOf(state), sorted(expectedKeys));
        // The clock read at connection, and the instant its shown second changes.
        QCOMPARE(state.value(u"remaining").toDouble(), 596.75);
        QCOMPARE(state.value(u"elapsed").toDouble(), 3.25);
        const double nowMs = double(f.clock.now().toMSecsSinceEpoch());
        QCOMPARE(state.value(u"serverTimeMs").toDouble(), nowMs);
        QCOMPARE(state.value(u"nextSecondAtMs").toDouble(), nowMs + 750);
        QCOMPARE(state.value(u"cueName").toString(), QStringLiteral("Ouverture"));
        QCOMPARE(state.value(u"nextCueName").toString(), QStringLiteral("Débat"));
        QVERIFY(state.contains(u"schedule") && state.value(u"schedule").isNull()); // no start time
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());
    }

    // A 1 min and B 5 min from 14:00; A run from 14:03:20 and left at once: the show waits for
    // B, planned at 14:01, and its offset grows each second though the engine does not tick.
    void aLateShowBetweenCuesPatchesTheViewersOncePerWholeSecond()
    {
        ServingFixture serving({durationCue(QStringLiteral("A"), 60), durationCue(QStringLiteral("B"), 300)});
        auto &[f, server] = serving;
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        QVERIFY(viewer.received[1].value(u"schedule").isNull());

        f.clock.advance(200s);
        f.engine.start(0);
        f.engine.stop();
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());
        QCOMPARE(f.engine.isTickerRunning(), false);
        QVERIFY(viewer.received.last().value(u"schedule").isUndefined()); // still no start time

        // The start set while the viewer watches: one patch with the schedule alone, 140 s late.
        const qsizetype before = viewer.received.size();
        const double seq = viewer.received.last().value(u"seq").toDouble();
        setShowStart(f.engine, parisTime(14, 0));
        QTRY_COMPARE(viewer.received.size(), before + 1);
        const auto patch = [](double seq, int offset, int endSecond) {
            return QJsonObject{{"type", "patch"}, {"seq", seq},
                               {"schedule", QJsonObject{{"showStartMs", parisMs(14, 0)},
                                                        {"offsetSeconds", offset},
                                                        {"projectedEndMs", parisMs(14, 8, endSecond)},
                                                        {"text", "Programme : +2 min de retard"},
                                                        {"color", "#F1C40F"}}}};
        };
        QCOMPARE(viewer.received.last(), patch(seq + 1, 140, 20));

        // Three seconds in steps of 100 ms: a patch at each half second of the wall clock, when
        // the offset's rounded second changes, and none at the other steps.
        QSignalSpy pushed(&server, &WebServer::statePushed);
        QList<int> pushedAtStep;
        for (int step = 1; step <= 30; ++step) {
            const qsizetype pushesBefore = pushed.size();
            f.clock.advance(100ms);
            if (pushed.size() != pushesBefore)
                pushedAtStep << step;
        }
        QCOMPARE(pushedAtStep, (QList<int>{5, 15, 25}));
        QTRY_COMPARE(viewer.received.size(), before + 4);
        for (int k = 1; k <= 3; ++k)
            QCOMPARE(viewer.received[before + k], patch(seq + 1 + k, 140 + k, 20 + k));
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());

        // The start taken off: the schedule goes null, and the seconds send nothing more.
        setShowStart(f.engine, std::nullopt);
        QTRY_COMPARE(viewer.received.size(), before + 5);
        QCOMPARE(viewer.received.last(),
                 (QJsonObject{{"type", "patch"}, {"seq", seq + 5}, {"schedule", QJsonValue::Null}}));
        const qsizetype pushes = pushed.size();
        f.clock.advance(3s);
        QCoreApplication::processEvents();
        QCOMPARE(pushed.size(), pushes);
        QCOMPARE(viewer.received.size(), before + 5);
    }

    // A 1 min and B 5 min from 14:00, A begun on time: its clock runs down and the projected
    // end stands; in overtime the show is late by as much, one patch a second, not one a tick.
    void aCueInOvertimePatchesTheScheduleOncePerWholeSecondNotEachTick()
    {
        ServingFixture serving({durationCue(QStringLiteral("A"), 60), durationCue(QStringLiteral("B"), 300)});
        auto &[f, server] = serving;
        setShowStart(f.engine, parisTime(14, 0));
        f.engine.start(0);
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        const QJsonObject onTime{{"showStartMs", parisMs(14, 0)}, {"offsetSeconds", 0},
                                 {"projectedEndMs", parisMs(14, 6)}, {"text", "Programme : à l'heure"},
                                 {"color", "#B8B8C0"}};
        QCOMPARE(viewer.received[1].value(u"schedule").toObject(), onTime);

        // To 14:01:03 in ticks of 100 ms: nothing until A's planned end, then a patch at each
        // half second of the wall clock.
        QSignalSpy pushed(&server, &WebServer::statePushed);
        QList<int> pushedAtStep;
        for (int step = 1; step <= 630; ++step) {
            const qsizetype pushesBefore = pushed.size();
            f.clock.advance(100ms);
            QCOMPARE(f.engine.isTickerRunning(), true);
            if (pushed.size() != pushesBefore)
                pushedAtStep << step;
        }
        QCOMPARE(pushedAtStep, (QList<int>{605, 615, 625}));
        const double seq = viewer.received[1].value(u"seq").toDouble();
        QTRY_COMPARE(viewer.received.size(), 5);
        for (int k = 1; k <= 3; ++k) {
            QJsonObject late = onTime;
            late.insert(u"offsetSeconds", k);
            late.insert(u"projectedEndMs", parisMs(14, 6, k));
            QCOMPARE(viewer.received[1 + k], (QJsonObject{{"type", "patch"}, {"seq", seq + k}, {"schedule", late}}));
        }
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());
    }

    void aRunningCueSendsNothingButTheAnswersToPings()
    {
        ServingFixture serving(numberedCues(200));
        auto &[f, server] = serving;
        f.engine.start(0);
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        QCOMPARE(viewer.received[0].value(u"cues").toArray().size(), 200);
        const qint64 bytesOnConnection = viewer.bytes;
        QSignalSpy pushed(&server, &WebServer::statePushed);
        // Ten seconds of ticks (ten a second), a ping each second, as a page sends them.
        for (int second = 0; second < 10; ++second) {
            for (int tick = 0; tick < 10; ++tick) {
                f.clock.advance(100ms);
                QCoreApplication::processEvents();
            }
            viewer.sendTextMessage(QStringLiteral(R"({"command":"ping","t":%1})").arg(second));
            QTRY_COMPARE(viewer.received.size(), 3 + second);
            QCOMPARE(keysOf(viewer.received.last()), sorted({"pong", "serverTimeMs"}));
        }
        QCOMPARE(webLiveDocument(f.engine, f.clock).value(u"remaining").toDouble(), 590.0);
        QCOMPARE(pushed.size(), 0);
        // Only the pongs, each under 50 bytes.
        QVERIFY2(viewer.bytes - bytesOnConnection < 10 * 50, qPrintable(QString::number(viewer.bytes - bytesOnConnection)));
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());
    }

    void aPauseIsOnePatchSentBeforeTheOperationReturns()
    {
        ServingFixture serving(numberedCues(200));
        auto &[f, server] = serving;
        f.engine.start(0);
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        f.clock.advance(2400ms);
        const double seq = viewer.received[1].value(u"seq").toDouble();

        QSignalSpy pushed(&server, &WebServer::statePushed);
        // A view reacting to the pause finds the viewers told already.
        qsizetype pushedWhenAViewReacts = -1;
        QObject view;
        QObject::connect(&f.engine, &TimerEngine::runStateChanged, &view,
                         [&] { pushedWhenAViewReacts = pushed.size(); });
        f.engine.pause();
        QCOMPARE(pushedWhenAViewReacts, 1);
        QCOMPARE(pushed.size(), 1);
        QTRY_COMPARE(viewer.received.size(), 3);
        const QJsonObject patch = viewer.received[2];
        QCOMPARE(keysOf(patch), sorted({"type", "seq", "paused", "remaining", "elapsed", "progress",
                                        "liveRemaining", "serverTimeMs", "nextSecondAtMs",
                                        "liveNextSecondAtMs"}));
        QCOMPARE(patch.value(u"type").toString(), QStringLiteral("patch"));
        QCOMPARE(patch.value(u"seq").toDouble(), seq + 1);
        QCOMPARE(patch.value(u"paused").toBool(), true);
        QCOMPARE(patch.value(u"remaining").toDouble(), 597.6);
        QCOMPARE(patch.value(u"liveRemaining").toDouble(), 597.6);
        QCOMPARE(patch.value(u"elapsed").toDouble(), 2.4);
        QVERIFY(patch.value(u"nextSecondAtMs").isNull());
        QVERIFY(patch.value(u"liveNextSecondAtMs").isNull());
        QVERIFY2(QJsonDocument(patch).toJson(QJsonDocument::Compact).size() < 300,
                 QJsonDocument(patch).toJson(QJsonDocument::Compact).constData());
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());

        // Resuming is one more; a paused clock sends nothing however long it stands.
        f.clock.advance(5s);
        QCoreApplication::processEvents();
        QCOMPARE(viewer.received.size(), 3);
        f.engine.pause();
        QTRY_COMPARE(viewer.received.size(), 4);
        QCOMPARE(viewer.received[3].value(u"paused").toBool(), false);
        QCOMPARE(viewer.received[3].value(u"nextSecondAtMs").toDouble(),
                 double(f.clock.now().toMSecsSinceEpoch() + 600));
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());
    }

    void anEditOfACueNameIsOneShowMessage()
    {
        ServingFixture serving(numberedCues(200));
        auto &[f, server] = serving;
        f.engine.start(0);
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        const double seq = viewer.received[1].value(u"seq").toDouble();

        // Neither the cue on air nor the next one: the show alone changes.
        Cue edited = f.engine.session().cues[5];
        edited.name = QStringLiteral("Remise des prix");
        f.engine.updateCue(edited);
        QTRY_COMPARE(viewer.received.size(), 3);
        const QJsonObject show = viewer.received[2];
        QCOMPARE(show.value(u"type").toString(), QStringLiteral("show"));
        QCOMPARE(show.value(u"seq").toDouble(), seq + 1);
        QCOMPARE(show.value(u"cues").toArray().size(), 200);
        QCOMPARE(show.value(u"cues").toArray()[5].toObject().value(u"name").toString(),
                 QStringLiteral("Remise des prix"));
        QCoreApplication::processEvents();
        QCOMPARE(viewer.received.size(), 3);

        // The next cue: its name is also in the state, which gets a patch after the show.
        edited = f.engine.session().cues[1];
        edited.name = QStringLiteral("Entracte");
        f.engine.updateCue(edited);
        QTRY_COMPARE(viewer.received.size(), 5);
        QCOMPARE(viewer.received[3].value(u"type").toString(), QStringLiteral("show"));
        QCOMPARE(viewer.received[4], (QJsonObject{{"type", "patch"}, {"seq", seq + 3}, {"nextCueName", "Entracte"}}));
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());
    }

    void aViewerThatMissedAMessageGetsTheWholeStateWhenItAsks()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        f.engine.sendMessage(QStringLiteral("Micro 2"), false);
        f.engine.setBlackout(true);
        QTRY_COMPARE(viewer.received.size(), 4);
        // A page that lost the message patch sees a gap at the blackout's and asks.
        QList<QJsonObject> seen = viewer.received;
        seen.removeAt(2);
        QVERIFY(held(seen).isEmpty());
        viewer.sendTextMessage(QStringLiteral(R"({"command":"state"})"));
        QTRY_COMPARE(viewer.received.size(), 6);
        QCOMPARE(viewer.received[4].value(u"type").toString(), QStringLiteral("show"));
        QCOMPARE(viewer.received[5].value(u"type").toString(), QStringLiteral("state"));
        const double seq = viewer.received[3].value(u"seq").toDouble();
        QCOMPARE(viewer.received[4].value(u"seq").toDouble(), seq);
        QCOMPARE(viewer.received[5].value(u"seq").toDouble(), seq);
        const QJsonObject whole = held(viewer.received, 4);
        QCOMPARE(whole.value(u"message").toString(), QStringLiteral("Micro 2"));
        QCOMPARE(whole.value(u"blackout").toBool(), true);
        QTRY_COMPARE(differenceFromTheProgram(whole, serving), QString());
        // And the sequence goes on from there.
        f.engine.sendMessage(std::nullopt, false);
        QTRY_COMPARE(viewer.received.size(), 7);
        QCOMPARE(viewer.received[6], (QJsonObject{{"type", "patch"}, {"seq", seq + 1}, {"message", QJsonValue::Null}}));
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received, 4), serving), QString());
    }

    // Random operations of a show with viewers watching: after each, what every page holds
    // from the messages is what the program's state document says.
    void patchesKeepEveryViewerOnTheProgramsState()
    {
        ServingFixture serving(numberedCues(6));
        auto &[f, server] = serving;
        RecordingViewer early(server.serverPort());
        QTRY_COMPARE(early.received.size(), 2);
        std::unique_ptr<RecordingViewer> late;
        QRandomGenerator rng(20261125);
        for (int step = 0; step < 300; ++step) {
            const int op = int(rng.bounded(15));
            switch (op) {
            case 0: f.engine.start(int(rng.bounded(6))); break;
            case 1: f.engine.pause(); break;
            case 2: f.engine.stop(); break;
            case 3: f.engine.next(); break;
            case 4: f.engine.adjust(double(int(rng.bounded(1201)) - 600) / 10); break;
            case 5: f.engine.sendMessage(rng.bounded(2) ? std::optional(QStringLiteral("M%1").arg(step)) : std::nullopt, rng.bounded(2)); break;
            case 6: f.engine.setBlackout(rng.bounded(2)); break;
            case 7: f.engine.toggleFreeze(); break;
            case 8: f.engine.triggerBlink(TimerEngine::blinkSeconds); break;
            case 9: {
                Cue cue = f.engine.session().cues[int(rng.bounded(6))];
                cue.name = QStringLiteral("Nom %1").arg(step);
                f.engine.updateCue(cue);
                break;
            }
            case 10: f.engine.setClockMode(rng.bounded(2)); break;
            case 11: f.engine.startDoorsAt(QTime(15, int(rng.bounded(60)))); break;
            case 12: late = std::make_unique<RecordingViewer>(server.serverPort()); break;
            case 13: // the system clock stepped by up to 60 ms either way, then a tick
                f.clock.setWallClock(f.clock.now().addMSecs(qint64(rng.bounded(121)) - 60));
                f.clock.advance(100ms);
                break;
            default: f.clock.advance(std::chrono::milliseconds(rng.bounded(4000))); break;
            }
            QCoreApplication::processEvents();
            if (late)
                QTRY_VERIFY(late->received.size() >= 2);
            QTRY_COMPARE(differenceFromTheProgram(held(early.received), serving), QString());
            if (late)
                QTRY_COMPARE(differenceFromTheProgram(held(late->received), serving), QString());
            if (QTest::currentTestFailed())
                QFAIL(qPrintable(QStringLiteral("after step %1 (operation %2)").arg(step).arg(op)));
        }
    }

    void aStepOfTheSystemClockReachesTheViewersAtTheNextTick()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        f.engine.start(0);
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        const double before = viewer.received[1].value(u"nextSecondAtMs").toDouble();
        f.clock.setWallClock(f.clock.now().addMSecs(-2000)); // an NTP correction
        f.clock.advance(100ms);
        QTRY_COMPARE(viewer.received.size(), 3);
        // The seconds change 2 s earlier on the stepped clock, every 1000 ms from there.
        const double after = viewer.received[2].value(u"nextSecondAtMs").toDouble();
        QCOMPARE(std::fmod(before - 2000 - after, 1000.0), 0.0);
        QCOMPARE(after, webLiveDocument(f.engine, f.clock).value(u"nextSecondAtMs").toDouble());
        QTRY_COMPARE(differenceFromTheProgram(held(viewer.received), serving), QString());
    }

    void changesInOneTurnOfTheLoopLeaveAtOnceThenTogether()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        RecordingViewer viewer(server.serverPort());
        QTRY_COMPARE(viewer.received.size(), 2);
        QSignalSpy pushed(&server, &WebServer::statePushed);
        f.engine.start();
        QCOMPARE(pushed.size(), 1); // the first change of the turn, at once
        f.engine.sendMessage(QStringLiteral("Salut"), true);
        f.engine.setBlackout(true);
        QCOMPARE(pushed.size(), 1); // the others wait for the end of the turn, together
        QTRY_COMPARE(viewer.received.size(), 4);
        QCOMPARE(pushed.size(), 2);
        QCOMPARE(viewer.received[2].value(u"running").toBool(), true);
        QCOMPARE(keysOf(viewer.received[3]), sorted({"type", "seq", "message", "messageUrgent", "blackout"}));
        QCOMPARE(viewer.received[3].value(u"message").toString(), QStringLiteral("Salut"));
        // The next turn's first change leaves at once again.
        f.engine.setBlackout(false);
        QCOMPARE(pushed.size(), 3);
    }

    // The push is in the system's buffers before the answer: a client that has the answer can
    // read the change on its WebSocket without waiting.
    void aCommandOverHttpReachesTheViewersBeforeItsAnswer()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        QTcpSocket viewer;
        viewer.connectToHost(QHostAddress::LocalHost, server.serverPort());
        QVERIFY(viewer.waitForConnected(5000));
        viewer.write("GET /api/ws HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\n"
                     "Connection: Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
                     "Sec-WebSocket-Version: 13\r\n\r\n");
        QTRY_COMPARE(server.viewerCount(), 1);
        QTRY_VERIFY(viewer.bytesAvailable() > 0);
        QTest::qWait(20);
        viewer.readAll(); // the handshake's answer, the show and the state

        QTcpSocket http;
        http.connectToHost(QHostAddress::LocalHost, server.serverPort());
        QVERIFY(http.waitForConnected(5000));
        const QByteArray body = R"({"text":"Coupez"})";
        http.write("POST /api/message HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer CODE2345\r\n"
                   "Content-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size())
                   + "\r\n\r\n" + body);
        QTRY_VERIFY(http.bytesAvailable() > 0);
        QVERIFY(http.readAll().startsWith("HTTP/1.1 200"));
        QVERIFY(viewer.bytesAvailable() > 0 || viewer.waitForReadyRead(0));
        const QByteArray frame = viewer.readAll();
        QVERIFY2(frame.contains(R"("message":"Coupez")"), frame.constData());
        QVERIFY(frame.contains(R"("type":"patch")"));
    }

    void aViewerThatStopsReadingIsDroppedInsteadOfHoldingPushes()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        // A client that completes the handshake and then reads nothing more.
        QTcpSocket stuck;
        stuck.setReadBufferSize(1);
        stuck.connectToHost(QHostAddress::LocalHost, server.serverPort());
        QVERIFY(stuck.waitForConnected(5000));
        stuck.write("GET /api/ws HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\n"
                    "Connection: Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
                    "Sec-WebSocket-Version: 13\r\n\r\n");
        QTRY_COMPARE(server.viewerCount(), 1);
        // 50 KB messages, each one patch: the kernel's buffers fill, then the server's own.
        int pushes = 0;
        while (server.viewerCount() == 1 && pushes < 2000) {
            QSignalSpy pushed(&server, &WebServer::statePushed);
            f.engine.sendMessage(QString(50'000, QChar(u'a' + pushes % 26)), false);
            QCOMPARE(pushed.size(), 1);
            QCoreApplication::processEvents();
            ++pushes;
        }
        QTRY_COMPARE(server.viewerCount(), 0);
        QVERIFY2(pushes > 20, qPrintable(QString::number(pushes))); // a full megabyte at least
    }

    // What was sent while a viewer watched says nothing of what a later viewer has: a change
    // back to it, made after that viewer came, still reaches it.
    void aViewerWhoComesLaterSeesAChangeBackToWhatWasSentBefore()
    {
        ServingFixture serving;
        auto &[f, server] = serving;
        {
            RecordingViewer first(server.serverPort());
            QTRY_COMPARE(server.viewerCount(), 1);
            f.engine.setBlackout(true);
            QTRY_COMPARE(first.received.size(), 3);
            QCOMPARE(first.received.last().value(u"blackout").toBool(), true);
        }
        QTRY_COMPARE(server.viewerCount(), 0);
        f.engine.setBlackout(false); // no one watches
        RecordingViewer second(server.serverPort());
        QTRY_COMPARE(second.received.size(), 2);
        QCOMPARE(second.received.last().value(u"blackout").toBool(), false);
        f.engine.setBlackout(true);
        QTRY_COMPARE(second.received.size(), 3);
        QCOMPARE(second.received.last().value(u"blackout").toBool(), true);
    }
};

QTEST_MAIN(TestViewerFeed)
#include "tst_viewerfeed.moc"
