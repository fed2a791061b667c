#include "timerstatesnapshot.h"

#include <QJsonDocument>
#include <QTest>

class TestTimerStateSnapshot : public QObject
{
    Q_OBJECT

private slots:
    void progressIsElapsedOverPlannedClamped_data()
    {
        QTest::addColumn<double>("elapsed");
        QTest::addColumn<double>("planned");
        QTest::addColumn<double>("progress");
        QTest::newRow("a quarter in") << 150.0 << 600.0 << 0.25;
        QTest::newRow("overtime stays at one") << 700.0 << 600.0 << 1.0;
        QTest::newRow("nothing planned") << 5.0 << 0.0 << 0.0;
        QTest::newRow("negative plan") << 5.0 << -10.0 << 0.0;
        QTest::newRow("negative elapsed") << -1.0 << 600.0 << 0.0;
    }

    void progressIsElapsedOverPlannedClamped()
    {
        QFETCH(double, elapsed);
        QFETCH(double, planned);
        QFETCH(double, progress);
        QCOMPARE(TimerStateSnapshot::progressOf(elapsed, planned), progress);
    }

    void writesEveryFieldUnderItsName()
    {
        TimerStateSnapshot s;
        s.running = true;
        s.remaining = -12.5;
        s.elapsed = 612.5;
        s.overtime = true;
        s.cueName = QStringLiteral("Keynote");
        s.speaker = QStringLiteral("Zoë");
        s.nextCueName = QStringLiteral("Pause");
        s.message = QStringLiteral("Merci de conclure");
        s.messageUrgent = true;
        s.progress = 1;
        const QJsonObject expected = QJsonDocument::fromJson(R"({
            "running": true, "paused": false, "remaining": -12.5, "elapsed": 612.5,
            "overtime": true, "cueName": "Keynote", "speaker": "Zoë", "nextCueName": "Pause",
            "message": "Merci de conclure", "messageUrgent": true, "blackout": false,
            "freeze": false, "clockMode": false, "progress": 1})").object();
        QCOMPARE(s.toJson(), expected);
        QCOMPARE(TimerStateSnapshot::fromJson(expected).value(), s);
    }

    void leavesAbsentOptionalFieldsOut()
    {
        TimerStateSnapshot s;
        const QJsonObject o = s.toJson();
        QVERIFY(!o.contains("nextCueName"));
        QVERIFY(!o.contains("message"));
        QCOMPARE(o.size(), 12);
        QCOMPARE(o["cueName"].toString(), QStringLiteral("—"));
        const TimerStateSnapshot back = TimerStateSnapshot::fromJson(o).value();
        QVERIFY(!back.nextCueName && !back.message);
        QCOMPARE(back, s);
    }

    void anEmptyMessageIsStillAMessage()
    {
        TimerStateSnapshot s;
        s.message = QString();
        QCOMPARE(s.toJson()["message"].toString(), QString());
        QCOMPARE(TimerStateSnapshot::fromJson(s.toJson()).value().message, QString());
    }

    void readingRequiresEveryNonOptionalKey_data()
    {
        QTest::addColumn<QString>("key");
        for (const char *key : {"running", "paused", "remaining", "elapsed", "overtime", "cueName",
                                "speaker", "messageUrgent", "blackout", "freeze", "clockMode",
                                "progress"})
            QTest::newRow(key) << QString::fromLatin1(key);
    }

    void readingRequiresEveryNonOptionalKey()
    {
        QFETCH(QString, key);
        QJsonObject o = TimerStateSnapshot().toJson();
        o.remove(key);
        QString error;
        QVERIFY(!TimerStateSnapshot::fromJson(o, &error));
        QVERIFY2(error.startsWith(QStringLiteral("la clé « %1 » manque").arg(key)),
                 qPrintable(error));
    }

    void readingRefusesWrongTypes()
    {
        QJsonObject o = TimerStateSnapshot().toJson();
        o["remaining"] = QStringLiteral("12");
        QString error;
        QVERIFY(!TimerStateSnapshot::fromJson(o, &error));
        QCOMPARE(error, QStringLiteral("la clé « remaining » manque ou n'est pas un nombre"));
        o = TimerStateSnapshot().toJson();
        o["message"] = 3;
        QVERIFY(!TimerStateSnapshot::fromJson(o, &error));
        QCOMPARE(error, QStringLiteral("la clé « message » manque ou n'est pas un texte"));
    }
};

QTEST_GUILESS_MAIN(TestTimerStateSnapshot)
#include "tst_timerstatesnapshot.moc"
