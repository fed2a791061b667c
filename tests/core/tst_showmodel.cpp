#include "cue.h"
#include "cuetemplate.h"
#include "presetmessage.h"
#include "timermode.h"
#include "timersession.h"

#include <QTest>

class TestShowModel : public QObject
{
    Q_OBJECT

private slots:
    void freshCueHasTheDocumentedValues()
    {
        const Cue cue;
        QVERIFY(!cue.id.isNull());
        QCOMPARE(cue.name, QStringLiteral("Nouveau cue"));
        QCOMPARE(cue.speaker, QString());
        QCOMPARE(cue.mode, TimerMode::Duration);
        QCOMPARE(cue.duration, 600.0);
        QVERIFY(!cue.hardOutTime);
        QCOMPARE(cue.warningThreshold, 120.0);
        QCOMPARE(cue.dangerThreshold, 30.0);
        QCOMPARE(cue.autoFollow, false);
        QCOMPARE(cue.notes, QString());
        QVERIFY(!cue.colorHex);
        QVERIFY(!cue.actualElapsed);
        QVERIFY(!cue.overtime);
    }

    void everyFreshCueGetsItsOwnId()
    {
        QVERIFY(Cue().id != Cue().id);
    }

    void cueEqualityComparesEveryField()
    {
        const Cue a;
        Cue b = a;
        QCOMPARE(a, b);
        b.overtime = 0;
        QVERIFY(a != b);
        b = a;
        b.colorHex = QStringLiteral("#FFFFFF");
        QVERIFY(a != b);
        b = a;
        b.id = QUuid::createUuid();
        QVERIFY(a != b);
    }

    void freshShowHasTheDocumentedValues()
    {
        const QDateTime now(QDate(2026, 11, 21), QTime(10, 0), Qt::UTC);
        const TimerSession session(now);
        QVERIFY(!session.id.isNull());
        QCOMPARE(session.name, QStringLiteral("Nouvelle session"));
        QVERIFY(session.cues.isEmpty());
        QCOMPARE(session.createdAt, now);
        QCOMPARE(session.updatedAt, now);
        QVERIFY(!session.client && !session.venue && !session.operatorName);
        QVERIFY(!session.eventDate && !session.notes);
    }

    void defaultConstructedShowIsCreatedNow()
    {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const TimerSession session;
        QVERIFY(session.createdAt >= before);
        QVERIFY(session.createdAt <= QDateTime::currentDateTimeUtc());
        QCOMPARE(session.updatedAt, session.createdAt);
    }

    void modesAreListedInEditorOrderWithTheirRawValues()
    {
        QCOMPARE(TimerModes::all.size(), std::size_t(2));
        QCOMPARE(TimerModes::all[0], TimerMode::Duration);
        QCOMPARE(TimerModes::all[1], TimerMode::HardOut);
        QCOMPARE(TimerModes::rawValue(TimerMode::Duration), QStringLiteral("duration"));
        QCOMPARE(TimerModes::rawValue(TimerMode::HardOut), QStringLiteral("hardOut"));
        QCOMPARE(TimerModes::fromRawValue(QStringLiteral("hardOut")), TimerMode::HardOut);
        QCOMPARE(TimerModes::fromRawValue(QStringLiteral("duration")), TimerMode::Duration);
        QVERIFY(!TimerModes::fromRawValue(QStringLiteral("HardOut")));
        QVERIFY(!TimerModes::fromRawValue(QString()));
    }

    void builtInTemplatesAreTheSixPresetsInOrder()
    {
        const QList<CueTemplate> &templates = CueTemplate::defaults();
        struct Row {
            const char *name;
            double duration, warning, danger;
        };
        const Row expected[] = {
            {"Keynote 20 min", 1200, 180, 60}, {"Talk 45 min", 2700, 300, 120},
            {"Q&A 10 min", 600, 120, 30},      {"Pause 15 min", 900, 120, 60},
            {"Pitch 5 min", 300, 60, 15},      {"Table ronde 30 min", 1800, 300, 60},
        };
        QCOMPARE(templates.size(), qsizetype(std::size(expected)));
        for (qsizetype i = 0; i < templates.size(); ++i) {
            QCOMPARE(templates[i].name, QString::fromUtf8(expected[i].name));
            QCOMPARE(templates[i].duration, expected[i].duration);
            QCOMPARE(templates[i].warningThreshold, expected[i].warning);
            QCOMPARE(templates[i].dangerThreshold, expected[i].danger);
            QVERIFY(!templates[i].id.isNull());
            for (qsizetype j = 0; j < i; ++j)
                QVERIFY(templates[j].id != templates[i].id);
        }
    }

    void builtInListsAreMadeOnceAndShared()
    {
        QCOMPARE(&CueTemplate::defaults(), &CueTemplate::defaults());
        QCOMPARE(CueTemplate::defaults()[0].id, CueTemplate::defaults()[0].id);
        QCOMPARE(&PresetMessage::defaults(), &PresetMessage::defaults());
        QCOMPARE(PresetMessage::defaults()[2].id, PresetMessage::defaults()[2].id);
    }

    void builtInMessagesAreTheSixTextsInOrder()
    {
        const QList<PresetMessage> &messages = PresetMessage::defaults();
        const QList<QPair<QString, bool>> expected{
            {QStringLiteral("5 minutes restantes"), false},
            {QStringLiteral("2 minutes restantes"), false},
            {QStringLiteral("Merci de conclure"), true},
            {QStringLiteral("Dernière question"), false},
            {QStringLiteral("Temps écoulé"), true},
            {QStringLiteral("Parlez plus près du micro"), false},
        };
        QCOMPARE(messages.size(), expected.size());
        for (qsizetype i = 0; i < messages.size(); ++i) {
            QCOMPARE(messages[i].text, expected[i].first);
            QCOMPARE(messages[i].urgent, expected[i].second);
        }
    }
};

QTEST_GUILESS_MAIN(TestShowModel)
#include "tst_showmodel.moc"
