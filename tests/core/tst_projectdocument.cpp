#include "projectdocument.h"
#include "testdata.h"

#include <QTest>
#include <QTimeZone>

#include <limits>

namespace {

QDateTime utc(int y, int mo, int d, int h, int mi, int s, int ms = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s, ms), Qt::UTC);
}

const QDateTime readingTime = utc(2026, 11, 21, 8, 30, 0);

TimerSession showWithEveryField()
{
    TimerSession s;
    s.id = QUuid(QStringLiteral("3F2504E0-4F89-11D3-9A0C-0305E82C3301"));
    s.name = QStringLiteral("Gala 12/03 20:00");
    s.createdAt = utc(2026, 11, 15, 18, 20, 0);
    s.updatedAt = utc(2026, 11, 16, 9, 5, 30);
    s.client = QStringLiteral("Maison Lumière");
    s.venue = QStringLiteral("Salle Pleyel");
    s.operatorName = QStringLiteral("Régie A");
    s.eventDate = utc(2026, 11, 20, 19, 0, 0);
    s.notes = QStringLiteral("Entrée des artistes côté cour");

    Cue opening;
    opening.id = QUuid(QStringLiteral("0F8FAD5B-D9CB-469F-A165-70867728950E"));
    opening.name = QStringLiteral("Ouverture — « Bienvenue » 20/20");
    opening.speaker = QStringLiteral("Zoë Çelik");
    opening.duration = 1200;
    opening.warningThreshold = 180;
    opening.dangerThreshold = 60;
    opening.autoFollow = true;
    opening.notes = QStringLiteral("Micro HF n°2\n\tLumière \"douce\"");
    opening.colorHex = QStringLiteral("#E5484D");
    opening.actualElapsed = 1265.5;
    opening.overtime = 65.5;

    Cue roundTable;
    roundTable.id = QUuid(QStringLiteral("7C9E6679-7425-40DE-944B-E07FC1F90AE7"));
    roundTable.name = QStringLiteral("Table ronde");
    roundTable.mode = TimerMode::HardOut;
    roundTable.duration = 2700;
    roundTable.hardOutTime = utc(2026, 11, 15, 21, 0, 0);
    roundTable.warningThreshold = 120.25;
    roundTable.dangerThreshold = 30;

    s.cues = {opening, roundTable};
    return s;
}

TimerSession showWithNoOptionalField()
{
    TimerSession s(utc(2026, 1, 2, 3, 4, 5));
    s.id = QUuid(QStringLiteral("9B2E6F7A-1C3D-4E5F-8A9B-0C1D2E3F4A5B"));
    return s;
}

TimerSession decodeFixture(const QString &name, QString *error = nullptr)
{
    const auto session = ProjectDocument::decode(readTestData(name), readingTime, error);
    if (!session)
        qFatal("fixture %s did not decode", qPrintable(name));
    return *session;
}

} // namespace

class TestProjectDocument : public QObject
{
    Q_OBJECT

private slots:
    void writesAShowWithEveryFieldByteForByte()
    {
        QCOMPARE(ProjectDocument::encode(showWithEveryField()).value(),
                 readTestData(QStringLiteral("show-every-field.orvprjct")));
    }

    void readsAShowWithEveryFieldBack()
    {
        QCOMPARE(decodeFixture(QStringLiteral("show-every-field.orvprjct")), showWithEveryField());
    }

    void writesAShowWithNoOptionalFieldByteForByte()
    {
        QCOMPARE(ProjectDocument::encode(showWithNoOptionalField()).value(),
                 readTestData(QStringLiteral("show-no-optional-field.orvprjct")));
        QCOMPARE(decodeFixture(QStringLiteral("show-no-optional-field.orvprjct")),
                 showWithNoOptionalField());
    }

    void absentOptionalFieldsAreLeftOutAndStayAbsent()
    {
        const QByteArray bytes = ProjectDocument::encode(showWithNoOptionalField()).value();
        for (const char *key : {"client", "venue", "operatorName", "eventDate", "notes",
                                "linkedSpreadsheet", "null"})
            QVERIFY2(!bytes.contains(key), key);
        const TimerSession back = ProjectDocument::decode(bytes, readingTime).value();
        QVERIFY(!back.client.has_value());
        QVERIFY(!back.notes.has_value());
    }

    void aLinkedSpreadsheetIsWrittenAndReadBack()
    {
        TimerSession s = showWithNoOptionalField();
        s.linkedSpreadsheet = LinkedSpreadsheet{QStringLiteral("/home/régie/Conducteur gala.xlsx"),
                                                QStringLiteral("Conducteur"),
                                                {{QStringLiteral("D"), QStringLiteral("ignore")},
                                                 {QStringLiteral("AB"), QStringLiteral("notes")}}};
        const QByteArray bytes = ProjectDocument::encode(s).value();
        QVERIFY2(bytes.contains("  \"linkedSpreadsheet\" : {\n"
                                "    \"columns\" : {\n"
                                "      \"AB\" : \"notes\",\n"
                                "      \"D\" : \"ignore\"\n"
                                "    },\n"
                                "    \"path\" : \"\\/home\\/régie\\/Conducteur gala.xlsx\",\n"
                                "    \"sheet\" : \"Conducteur\"\n"
                                "  },\n"),
                 bytes.constData());
        QCOMPARE(ProjectDocument::decode(bytes, readingTime).value(), s);

        // A text file's link: its path alone.
        s.linkedSpreadsheet = LinkedSpreadsheet{QStringLiteral("/tmp/c.csv"), std::nullopt, {}};
        const QByteArray alone = ProjectDocument::encode(s).value();
        QVERIFY(alone.contains("  \"linkedSpreadsheet\" : {\n    \"path\" : \"\\/tmp\\/c.csv\"\n  },\n"));
        QCOMPARE(ProjectDocument::decode(alone, readingTime).value(), s);
    }

    void anEmptyClientIsKeptAsEmptyNotAbsent()
    {
        TimerSession s = showWithNoOptionalField();
        s.client = QString();
        const QByteArray bytes = ProjectDocument::encode(s).value();
        QVERIFY(bytes.contains("  \"client\" : \"\",\n"));
        QCOMPARE(ProjectDocument::decode(bytes, readingTime).value().client, QString());
    }

    void aLoggedCueWritesItsElapsedAndOvertime()
    {
        TimerSession s(utc(2026, 11, 15, 18, 20, 0));
        s.id = QUuid(QStringLiteral("C56A4180-65AA-42EC-A945-5FD21DEC0538"));
        s.name = QStringLiteral("Démo");
        Cue pitch;
        pitch.id = QUuid(QStringLiteral("A3BB189E-8BF9-3888-9912-ACE4E6543002"));
        pitch.name = QStringLiteral("Pitch");
        s.cues = {pitch};

        const QByteArray before = ProjectDocument::encode(s).value();
        QVERIFY(!before.contains("actualElapsed"));
        QVERIFY(!before.contains("overtime"));
        QCOMPARE(ProjectDocument::decode(before, readingTime).value(), s);

        s.cues[0].actualElapsed = 610.25;
        s.cues[0].overtime = 10.25;
        QCOMPARE(ProjectDocument::encode(s).value(),
                 readTestData(QStringLiteral("show-logged-cue.orvprjct")));
    }

    void twoWritesOfTheSameShowAreByteIdentical()
    {
        const TimerSession s = showWithEveryField();
        QCOMPARE(ProjectDocument::encode(s).value(), ProjectDocument::encode(s).value());
        const TimerSession copy = decodeFixture(QStringLiteral("show-every-field.orvprjct"));
        QCOMPARE(ProjectDocument::encode(copy).value(), ProjectDocument::encode(s).value());
    }

    void savingAndReloadingDropsSubSecondParts()
    {
        TimerSession s = showWithNoOptionalField();
        s.createdAt = utc(2026, 3, 1, 10, 0, 0, 999);
        s.updatedAt = utc(2026, 3, 1, 10, 0, 1, 1);
        s.eventDate = utc(2026, 3, 2, 20, 0, 0, 500);
        const TimerSession back =
            ProjectDocument::decode(ProjectDocument::encode(s).value(), readingTime).value();
        QCOMPARE(back.createdAt, utc(2026, 3, 1, 10, 0, 0));
        QCOMPARE(back.updatedAt, utc(2026, 3, 1, 10, 0, 1));
        QCOMPARE(back.eventDate, utc(2026, 3, 2, 20, 0, 0));
    }

    void aDocumentThatOpensStillOpensEqualAfterItIsSaved_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("dates at the edges of the years written")
            << QByteArray(R"({"eventDate": "9999-12-31T23:59:59Z", "createdAt":
                "0001-01-01T00:00:00Z", "updatedAt": "9999-12-31T23:59:59+00:01"})");
        QTest::newRow("a pair of UTF-16 halves and a byte-order mark")
            << QByteArray(R"({"name": "Micro \ud83c\udfa4", "notes": "\ufeffA"})");
        QTest::newRow("hard-out cue at the edge of the years")
            << QByteArray(R"({"cues": [{"id": "6F0E3C2A-9A55-4E1B-8C1D-2B7A4F1E9D01",
                "mode": "hardOut", "hardOutTime": "0001-01-01T00:30:00-01:00"}]})");
    }

    void aDocumentThatOpensStillOpensEqualAfterItIsSaved()
    {
        QFETCH(QByteArray, json);
        const auto opened = ProjectDocument::decode(json, readingTime);
        QVERIFY(opened);
        const QByteArray saved = ProjectDocument::encode(*opened).value();
        QString error;
        const auto reopened = ProjectDocument::decode(saved, readingTime, &error);
        QVERIFY2(reopened, qPrintable(error));
        QCOMPARE(*reopened, *opened);
        QCOMPARE(ProjectDocument::encode(*reopened).value(), saved);
    }

    void datesInAnotherZoneAreWrittenInUtc()
    {
        TimerSession s = showWithNoOptionalField();
        s.eventDate = QDateTime(QDate(2026, 7, 14), QTime(22, 0), QTimeZone("Europe/Paris"));
        QVERIFY(ProjectDocument::encode(s).value().contains(
            "  \"eventDate\" : \"2026-07-14T20:00:00Z\",\n"));
    }

    void anEmptyObjectIsAShowNamedProjet()
    {
        const TimerSession a = decodeFixture(QStringLiteral("lenient-empty-object.orvprjct"));
        const TimerSession b = decodeFixture(QStringLiteral("lenient-empty-object.orvprjct"));
        QCOMPARE(a.name, QStringLiteral("Projet"));
        QVERIFY(!a.id.isNull());
        QVERIFY(a.id != b.id);
        QVERIFY(a.cues.isEmpty());
        QCOMPARE(a.createdAt, readingTime);
        QCOMPARE(a.updatedAt, readingTime);
        QVERIFY(!a.client && !a.venue && !a.operatorName && !a.eventDate && !a.notes);
    }

    void aCueWithOnlyANameTakesEveryFallback()
    {
        const TimerSession s = decodeFixture(QStringLiteral("lenient-cue-with-only-name.orvprjct"));
        QCOMPARE(s.name, QStringLiteral("Atelier"));
        QCOMPARE(s.cues.size(), 2);
        const Cue &cue = s.cues[0];
        QCOMPARE(cue.name, QStringLiteral("Accueil café"));
        QVERIFY(!cue.id.isNull());
        QCOMPARE(cue.speaker, QString());
        QCOMPARE(cue.mode, TimerMode::Duration);
        QCOMPARE(cue.duration, 600.0);
        QVERIFY(!cue.hardOutTime);
        QCOMPARE(cue.warningThreshold, 120.0);
        QCOMPARE(cue.dangerThreshold, 30.0);
        QCOMPARE(cue.autoFollow, false);
        QCOMPARE(cue.notes, QString());
        QVERIFY(!cue.colorHex && !cue.actualElapsed && !cue.overtime);
        QCOMPARE(s.cues[1].name, QStringLiteral("Cue"));
        QVERIFY(s.cues[0].id != s.cues[1].id);
    }

    void aHardOutCueWithoutEndTimeIsValidAndUnknownKeysAreIgnored()
    {
        const TimerSession s =
            decodeFixture(QStringLiteral("lenient-hardout-without-time.orvprjct"));
        QCOMPARE(s.name, QStringLiteral("Soirée"));
        QCOMPARE(s.cues.size(), 1);
        QCOMPARE(s.cues[0].mode, TimerMode::HardOut);
        QVERIFY(!s.cues[0].hardOutTime);
        QCOMPARE(s.cues[0].duration, 900.0);
        QCOMPARE(s.cues[0].id, QUuid(QStringLiteral("1B4E28BA-2FA1-11D2-883F-0016D3CCA427")));
        QVERIFY(!ProjectDocument::encode(s).value().contains("futureField"));
    }

    void nullCountsAsMissing()
    {
        const auto s = ProjectDocument::decode(
            R"({"name": null, "client": null, "cues": [{"duration": null}]})", readingTime);
        QVERIFY(s);
        QCOMPARE(s->name, QStringLiteral("Projet"));
        QVERIFY(!s->client);
        QCOMPARE(s->cues[0].duration, 600.0);
    }

    void unreadableDatesFailTheWholeFile_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<QString>("message");
        QTest::newRow("fractional seconds")
            << "unreadable-fractional-seconds.orvprjct"
            << "la valeur « createdAt » devrait être une date de la forme 2026-11-15T18:20:00Z";
        QTest::newRow("no zone")
            << "unreadable-date-without-zone.orvprjct"
            << "la valeur « hardOutTime » du cue 1 devrait être une date de la forme "
               "2026-11-15T18:20:00Z";
    }

    void unreadableDatesFailTheWholeFile()
    {
        QFETCH(QString, fixture);
        QFETCH(QString, message);
        QString error;
        QVERIFY(!ProjectDocument::decode(readTestData(fixture), readingTime, &error));
        QCOMPARE(error, message);
    }

    void wrongTypesFailTheWholeDocument_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("message");
        QTest::newRow("name as number")
            << QByteArray(R"({"name": 12})") << "la valeur « name » devrait être un texte";
        QTest::newRow("cues as object")
            << QByteArray(R"({"cues": {}})") << "la valeur « cues » devrait être une liste";
        QTest::newRow("cue as text")
            << QByteArray(R"({"cues": [{}, "Intro"]})") << "le cue 2 devrait être un objet";
        QTest::newRow("duration as text")
            << QByteArray(R"({"cues": [{"name": "A"}, {"duration": "600"}]})")
            << "la valeur « duration » du cue 2 devrait être un nombre";
        QTest::newRow("autoFollow as number")
            << QByteArray(R"({"cues": [{"autoFollow": 1}]})")
            << "la valeur « autoFollow » du cue 1 devrait être un booléen (true ou false)";
        QTest::newRow("speaker as array")
            << QByteArray(R"({"cues": [{"speaker": ["x"]}]})")
            << "la valeur « speaker » du cue 1 devrait être un texte";
        QTest::newRow("unknown mode")
            << QByteArray(R"({"cues": [{"mode": "countdown"}]})")
            << "le mode « countdown » du cue 1 est inconnu (attendu « duration » ou « hardOut »)";
        QTest::newRow("mode as number")
            << QByteArray(R"({"cues": [{"mode": 1}]})")
            << "la valeur « mode » du cue 1 devrait être un texte";
        QTest::newRow("id not a uuid")
            << QByteArray(R"({"id": "projet-42"})")
            << "la valeur « id » devrait être un identifiant UUID";
        QTest::newRow("cue id as number")
            << QByteArray(R"({"cues": [{"id": 7}]})")
            << "la valeur « id » du cue 1 devrait être un identifiant UUID";
        QTest::newRow("eventDate as number")
            << QByteArray(R"({"eventDate": 1763230800})")
            << "la valeur « eventDate » devrait être une date de la forme 2026-11-15T18:20:00Z";
        QTest::newRow("name with half a UTF-16 pair")
            << QByteArray(R"({"name": "A\ud800B"})")
            << "la valeur « name » contient un caractère Unicode invalide";
        QTest::newRow("notes ending with half a UTF-16 pair")
            << QByteArray(R"({"cues": [{"notes": "fin\udfff"}]})")
            << "la valeur « notes » du cue 1 contient un caractère Unicode invalide";
        QTest::newRow("eventDate past 9999 in UTC")
            << QByteArray(R"({"eventDate": "9999-12-31T23:59:59-00:01"})")
            << "la valeur « eventDate » devrait être une date de la forme 2026-11-15T18:20:00Z";
        QTest::newRow("eventDate with letters for the year")
            << QByteArray(R"({"eventDate": "abcd-11-15T18:20:00Z"})")
            << "la valeur « eventDate » devrait être une date de la forme 2026-11-15T18:20:00Z";
        QTest::newRow("overtime as bool")
            << QByteArray(R"({"cues": [{"overtime": false}]})")
            << "la valeur « overtime » du cue 1 devrait être un nombre";
        QTest::newRow("linked spreadsheet as text")
            << QByteArray(R"({"linkedSpreadsheet": "/tmp/c.csv"})")
            << "la valeur « linkedSpreadsheet » devrait être un objet";
        QTest::newRow("linked spreadsheet without path")
            << QByteArray(R"({"linkedSpreadsheet": {"sheet": "Conducteur"}})")
            << "la clé « path » du tableur lié manque";
        QTest::newRow("linked spreadsheet column as number")
            << QByteArray(R"({"linkedSpreadsheet": {"path": "/tmp/c.csv", "columns": {"D": 3}}})")
            << "la colonne « D » du tableur lié devrait être un texte";
        QTest::newRow("linked spreadsheet column with half a UTF-16 pair")
            << QByteArray(R"({"linkedSpreadsheet": {"path": "/tmp/c.csv", "columns": {"AB": "\udc00notes"}}})")
            << "une colonne du tableur lié contient un caractère Unicode invalide";
        QTest::newRow("linked spreadsheet column letter with half a UTF-16 pair")
            << QByteArray(R"({"linkedSpreadsheet": {"path": "/tmp/c.csv", "columns": {"\ud800": "notes"}}})")
            << "une colonne du tableur lié contient un caractère Unicode invalide";
        QTest::newRow("not json") << QByteArray("{\"name\": \"Gala\",,}")
                                  << "le contenu n'est pas du JSON valide (octet 17)";
        QTest::newRow("array document")
            << QByteArray("[]") << "le document n'est pas un objet JSON";
        QTest::newRow("empty file")
            << QByteArray() << "le contenu n'est pas du JSON valide (octet 0)";
    }

    void wrongTypesFailTheWholeDocument()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, message);
        QString error;
        const auto session = ProjectDocument::decode(json, readingTime, &error);
        QVERIFY(!session.has_value());
        QCOMPARE(error, message);
    }

    void aNumberJsonCannotHoldFailsTheWrite()
    {
        TimerSession s = showWithEveryField();
        s.cues[1].duration = std::numeric_limits<double>::infinity();
        QString error;
        QVERIFY(!ProjectDocument::encode(s, &error));
        QCOMPARE(error, QStringLiteral("un nombre n'est pas fini (NaN ou infini)"));
    }
};

QTEST_GUILESS_MAIN(TestProjectDocument)
#include "tst_projectdocument.moc"
