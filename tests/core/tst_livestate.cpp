// The recovery file: what it keeps of a show's live state comes back whole, and a file that no
// show could have written is refused with its reason rather than resumed.
#include "livestate.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace {

LiveState runningState()
{
    LiveState s;
    s.sessionID = QUuid::fromString(QStringLiteral("{6f1c2b3a-0d4e-4f5a-8b6c-7d8e9fa0b1c2}"));
    s.activeCueID = QUuid::fromString(QStringLiteral("{8b3c2f10-1a2b-4c3d-8e4f-5a6b7c8d9e0f}"));
    s.activeCueIndex = 8;
    s.selectedCueIndex = 8;
    s.running = true;
    s.elapsed = 161.25;
    s.remaining = 438.75;
    s.plannedDuration = 600;
    s.capturedAtMs = 1'795'608'565'292;
    s.completedCueLog = {CueLogEntry{QStringLiteral("Ouverture ; « live »"), 600, 610.5, 10.5}};
    s.loggedOvertime = 10.5;
    s.message = QStringLiteral("Plus fort");
    s.messageUrgent = true;
    s.blackout = true;
    s.doorsTargetMs = 1'795'609'165'292;
    s.outputs = {{QStringLiteral("stage"), QStringLiteral("VIRTUAL-2"), true},
                 {QStringLiteral("confidence"), QStringLiteral("VIRTUAL-1"), false}};
    return s;
}

// The running state's file with one field replaced.
QByteArray withField(const QString &key, const QJsonValue &value)
{
    QJsonObject o = QJsonDocument::fromJson(LiveStateFile::encode(runningState())).object();
    o.insert(key, value);
    return QJsonDocument(o).toJson();
}

} // namespace

class TestLiveState : public QObject
{
    Q_OBJECT

private slots:
    void aStateReadsBackWhole()
    {
        const LiveState s = runningState();
        const std::optional<LiveState> read = LiveStateFile::decode(LiveStateFile::encode(s));
        QVERIFY(read);
        QCOMPARE(*read, s);

        LiveState paused = s;
        paused.paused = true;
        paused.pausedSinceMs = s.capturedAtMs - 4'000;
        QCOMPARE(*LiveStateFile::decode(LiveStateFile::encode(paused)), paused);

        // The file a show not yet in the library was opened from; named only when there is one.
        LiveState opened = s;
        opened.projectFile = QStringLiteral("/home/régie/Spectacles/Gala 2026.orvprjct");
        QCOMPARE(*LiveStateFile::decode(LiveStateFile::encode(opened)), opened);
        QVERIFY(LiveStateFile::encode(opened).contains("\"projectFile\":\"/home/r\xc3\xa9gie/Spectacles/Gala 2026.orvprjct\""));
        QVERIFY(!LiveStateFile::encode(s).contains("projectFile"));
    }

    void aByteOrderMarkInATextReadsBack()
    {
        // Qt's reader drops a raw one at the start of a text: it is written escaped.
        LiveState s = runningState();
        s.completedCueLog[0].cue = QStringLiteral("\uFEFFCue 1");
        s.message = QStringLiteral("\uFEFF");
        const QByteArray written = LiveStateFile::encode(s);
        QVERIFY(!written.contains("\xEF\xBB\xBF"));
        QVERIFY(written.contains("\"cue\":\"\\ufeffCue 1\""));
        QCOMPARE(*LiveStateFile::decode(written), s);
    }

    void aRunningCueRunsOnInWallClockTime()
    {
        LiveState s = runningState();
        QCOMPARE(s.elapsedAt(s.capturedAtMs + 10'500), 171.75);
        s.paused = true;
        s.pausedSinceMs = s.capturedAtMs;
        QCOMPARE(s.elapsedAt(s.capturedAtMs + 10'500), 161.25);
    }

    void aClockThatRunsOnIsTheSameState()
    {
        const LiveState s = runningState();
        LiveState later = s;
        later.capturedAtMs += 5'000;
        later.elapsed += 5.0;
        later.remaining -= 5.0;
        QVERIFY(s.sameAs(later));
        later.elapsed += 0.5; // the cue was restarted half a second earlier: a change
        QVERIFY(!s.sameAs(later));
        LiveState other = s;
        other.blackout = false;
        QVERIFY(!s.sameAs(other));
    }

    void aFileNoShowWroteIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("cut short") << QByteArray("{\"version\": 1, \"session\": ")
                                   << QStringLiteral("contenu illisible");
        QTest::newRow("an array") << QByteArray("[1, 2]") << QStringLiteral("contenu illisible");
        QTest::newRow("a newer version") << withField("version", 2) << QStringLiteral("version inconnue");
        QTest::newRow("no show") << withField("session", "Gala") << QStringLiteral("projet non indiqué");
        QTest::newRow("a cue without id") << withField("activeCue", "9") << QStringLiteral("cue actif illisible");
        QTest::newRow("a cue run for years") << withField("elapsed", 1e300) << QStringLiteral("horloge illisible");
        QTest::newRow("a year of overtime") << withField("remaining", -4e7) << QStringLiteral("horloge illisible");
        QTest::newRow("captured before 1970") << withField("capturedAt", -1) << QStringLiteral("horloge illisible");
        QTest::newRow("captured in the year 30000")
            << withField("capturedAt", 9e14) << QStringLiteral("horloge illisible");
        QTest::newRow("no capture instant") << withField("capturedAt", QJsonValue()) << QStringLiteral("horloge illisible");
        QTest::newRow("doors beyond any calendar")
            << withField("doorsTarget", 1e30) << QStringLiteral("horloge illisible");
        QTest::newRow("paused, since no time") << withField("paused", true) << QStringLiteral("horloge illisible");
        QTest::newRow("a logged cue of a billion seconds")
            << withField("log", QJsonArray{QJsonObject{{"cue", "A"}, {"planned", 60}, {"actual", 1e9}, {"overtime", 0}}})
            << QStringLiteral("horloge illisible");
    }

    void aFileNoShowWroteIsRefused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, reason);
        QString error;
        QVERIFY(!LiveStateFile::decode(bytes, &error));
        QCOMPARE(error, reason);
    }
};

QTEST_GUILESS_MAIN(TestLiveState)
#include "tst_livestate.moc"
