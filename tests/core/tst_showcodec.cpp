#include "showcodec.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace {

QJsonObject object(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

const QDateTime now(QDate(2026, 11, 21), QTime(8, 30), Qt::UTC);

} // namespace

class TestShowCodec : public QObject
{
    Q_OBJECT

private slots:
    void writesEveryNonOptionalCueFieldUnderItsName()
    {
        Cue cue;
        cue.id = QUuid(QStringLiteral("{0f8fad5b-d9cb-469f-a165-70867728950e}"));
        const QJsonObject o = ShowCodec::encode(cue);
        QCOMPARE(o.keys(), (QStringList{"autoFollow", "dangerThreshold", "duration", "id", "mode",
                                        "name", "notes", "speaker", "warningThreshold"}));
        QCOMPARE(o["id"].toString(), QStringLiteral("0F8FAD5B-D9CB-469F-A165-70867728950E"));
        QCOMPARE(o["mode"].toString(), QStringLiteral("duration"));
        QCOMPARE(o["duration"].toDouble(), 600.0);
        QCOMPARE(o["name"].toString(), QStringLiteral("Nouveau cue"));
    }

    void writesPresentOptionalCueFields()
    {
        Cue cue;
        cue.mode = TimerMode::HardOut;
        cue.hardOutTime = QDateTime(QDate(2026, 11, 15), QTime(21, 0, 0, 400), Qt::UTC);
        cue.colorHex = QStringLiteral("not a colour");
        cue.actualElapsed = 0;
        cue.overtime = 0;
        const QJsonObject o = ShowCodec::encode(cue);
        QCOMPARE(o["mode"].toString(), QStringLiteral("hardOut"));
        QCOMPARE(o["hardOutTime"].toString(), QStringLiteral("2026-11-15T21:00:00Z"));
        QCOMPARE(o["colorHex"].toString(), QStringLiteral("not a colour"));
        QVERIFY(o["actualElapsed"].isDouble());
        QVERIFY(o["overtime"].isDouble());
    }

    void aCueRoundTrips()
    {
        Cue cue;
        cue.name = QStringLiteral("Keynote « IA »");
        cue.speaker = QStringLiteral("Élodie");
        cue.mode = TimerMode::HardOut;
        cue.hardOutTime = QDateTime(QDate(2026, 11, 15), QTime(21, 30), Qt::UTC);
        cue.warningThreshold = 90.5;
        cue.autoFollow = true;
        cue.colorHex = QStringLiteral("#3A86FF");
        QCOMPARE(ShowCodec::decodeCue(ShowCodec::encode(cue)).value(), cue);
    }

    void aCueObjectWithNoKeysIsNamedCue()
    {
        const Cue cue = ShowCodec::decodeCue(QJsonObject()).value();
        QCOMPARE(cue.name, QStringLiteral("Cue"));
        QCOMPARE(cue.duration, 600.0);
        QVERIFY(!cue.id.isNull());
    }

    // A file written by hand or by another program: a length of time is brought within a day,
    // so that the library, the clock and the report only ever show what a show can hold.
    void aLengthOfTimeIsBroughtWithinADay_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<double>("seconds");
        QTest::newRow("negative") << QByteArray("-50") << 0.0;
        QTest::newRow("a hair below zero") << QByteArray("-0.5") << 0.0;
        QTest::newRow("zero") << QByteArray("0") << 0.0;
        QTest::newRow("a day") << QByteArray("86400") << 86400.0;
        QTest::newRow("a day and a second") << QByteArray("86401") << 86400.0;
        QTest::newRow("1e300") << QByteArray("1e300") << 86400.0;
        QTest::newRow("-1e300") << QByteArray("-1e300") << 0.0;
    }

    void aLengthOfTimeIsBroughtWithinADay()
    {
        QFETCH(QByteArray, json);
        QFETCH(double, seconds);
        const QByteArray cueJson = "{\"duration\": " + json + ", \"warningThreshold\": " + json
                                   + ", \"dangerThreshold\": " + json + ", \"actualElapsed\": " + json
                                   + ", \"overtime\": " + json + "}";
        const Cue cue = ShowCodec::decodeCue(QJsonDocument::fromJson(cueJson).object()).value();
        QCOMPARE(cue.duration, seconds);
        QCOMPARE(cue.warningThreshold, seconds);
        QCOMPARE(cue.dangerThreshold, seconds);
        QCOMPARE(cue.actualElapsed, seconds);
        QCOMPARE(cue.overtime, seconds);
        const QByteArray templateJson = "{\"id\": \"3F2504E0-4F89-41D3-9A0C-0305E82C3301\", \"name\": \"Pause\", \"duration\": " + json
                                        + ", \"warningThreshold\": " + json + ", \"dangerThreshold\": "
                                        + json + "}";
        const CueTemplate t = ShowCodec::decodeTemplate(QJsonDocument::fromJson(templateJson).object()).value();
        QCOMPARE(t.duration, seconds);
        QCOMPARE(t.warningThreshold, seconds);
        QCOMPARE(t.dangerThreshold, seconds);
    }

    void anUnknownModeFailsTheCue()
    {
        QString error;
        QVERIFY(!ShowCodec::decodeCue(object(R"({"mode": "HARDOUT"})"), &error));
        QCOMPARE(error, QStringLiteral("le mode « HARDOUT » est inconnu (attendu « duration » ou "
                                       "« hardOut »)"));
    }

    void aShowRoundTripsThroughItsObject()
    {
        TimerSession s(now);
        s.name = QStringLiteral("Conférence");
        s.cues = {Cue(), Cue()};
        s.venue = QStringLiteral("Lyon");
        const QJsonObject o = ShowCodec::encode(s);
        QCOMPARE(o.keys(), (QStringList{"createdAt", "cues", "id", "name", "updatedAt", "venue"}));
        QCOMPARE(o["cues"].toArray().size(), 2);
        QCOMPARE(ShowCodec::decodeSession(o, now.addDays(1)).value(), s);
    }

    void aTemplateRoundTripsWithEveryKey()
    {
        const CueTemplate t = CueTemplate::defaults()[1];
        const QJsonObject o = ShowCodec::encode(t);
        QCOMPARE(o.keys(), (QStringList{"dangerThreshold", "duration", "id", "name",
                                        "warningThreshold"}));
        QCOMPARE(ShowCodec::decodeTemplate(o).value(), t);
    }

    void aTemplateMissingAnyKeyFails_data()
    {
        QTest::addColumn<QString>("missing");
        for (const char *key : {"id", "name", "duration", "warningThreshold", "dangerThreshold"})
            QTest::newRow(key) << QString::fromLatin1(key);
    }

    void aTemplateMissingAnyKeyFails()
    {
        QFETCH(QString, missing);
        QJsonObject o = ShowCodec::encode(CueTemplate::defaults()[0]);
        o.remove(missing);
        QString error;
        QVERIFY(!ShowCodec::decodeTemplate(o, &error));
        QCOMPARE(error, QStringLiteral("la clé « %1 » du modèle manque").arg(missing));
    }

    void aTemplateWithAWrongTypeFails()
    {
        QJsonObject o = ShowCodec::encode(CueTemplate::defaults()[0]);
        o["duration"] = QStringLiteral("20 min");
        QString error;
        QVERIFY(!ShowCodec::decodeTemplate(o, &error));
        QCOMPARE(error, QStringLiteral("la valeur « duration » du modèle devrait être un nombre"));
    }

    void aPresetMessageRoundTripsWithEveryKey()
    {
        const PresetMessage m = PresetMessage::defaults()[2];
        const QJsonObject o = ShowCodec::encode(m);
        QCOMPARE(o.keys(), (QStringList{"id", "text", "urgent"}));
        QCOMPARE(o["text"].toString(), QStringLiteral("Merci de conclure"));
        QCOMPARE(o["urgent"].toBool(), true);
        QCOMPARE(ShowCodec::decodePresetMessage(o).value(), m);
    }

    void aPresetMessageMissingAnyKeyFails_data()
    {
        QTest::addColumn<QString>("missing");
        for (const char *key : {"id", "text", "urgent"})
            QTest::newRow(key) << QString::fromLatin1(key);
    }

    void aPresetMessageMissingAnyKeyFails()
    {
        QFETCH(QString, missing);
        QJsonObject o = ShowCodec::encode(PresetMessage::defaults()[0]);
        o.remove(missing);
        QString error;
        QVERIFY(!ShowCodec::decodePresetMessage(o, &error));
        QCOMPARE(error, QStringLiteral("la clé « %1 » du message manque").arg(missing));
    }

    void unknownKeysAreIgnoredEverywhere()
    {
        QJsonObject t = ShowCodec::encode(CueTemplate::defaults()[0]);
        t["colour"] = 1;
        QVERIFY(ShowCodec::decodeTemplate(t));
        QJsonObject m = ShowCodec::encode(PresetMessage::defaults()[0]);
        m["sound"] = QStringLiteral("Glass");
        QVERIFY(ShowCodec::decodePresetMessage(m));
        QVERIFY(ShowCodec::decodeCue(object(R"({"name": "A", "tempo": [1]})")));
    }
};

QTEST_GUILESS_MAIN(TestShowCodec)
#include "tst_showcodec.moc"
