#include "importexpect.h"
#include "linkedrundown.h"
#include "sheetgrid.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// What a show keeps of the spreadsheet it was imported from, and the file read again with it:
// the same sheet, the same column meanings, the same cues as the import gave.
class TestLinkedRundown : public QObject
{
    Q_OBJECT

private:
    const QTimeZone paris{QByteArrayLiteral("Europe/Paris")};
    const ImportContext context{QDate(2026, 11, 26), paris};

    static QString data(const char *name) { return QStringLiteral(KAIRON_TEST_DATA "/sheets/") + QLatin1String(name); }

private slots:
    void columnLettersGoBothWays()
    {
        QCOMPARE(sheetColumnName(0), QStringLiteral("A"));
        QCOMPARE(sheetColumnName(25), QStringLiteral("Z"));
        QCOMPARE(sheetColumnName(27), QStringLiteral("AB"));
        QCOMPARE(sheetColumnName(63), QStringLiteral("BL"));
        for (int column : {0, 3, 25, 26, 27, 63, 701, 702})
            QCOMPARE(sheetColumnOf(sheetColumnName(column)), std::optional(column));
        QCOMPARE(sheetColumnOf(QStringLiteral("a")), std::nullopt);
        QCOMPARE(sheetColumnOf(QStringLiteral("A1")), std::nullopt);
        QCOMPARE(sheetColumnOf(QString()), std::nullopt);
        QCOMPARE(sheetColumnOf(QStringLiteral("ABCD")), std::nullopt);
    }

    void theLinkKeepsTheFileTheSheetAndTheChosenColumns()
    {
        const QString relative = QStringLiteral("Conducteur gala.xlsx");
        const LinkedSpreadsheet link = LinkedRundown::linkFor(
            relative, QStringLiteral("Conducteur"), {{3, ImportField::Ignore}, {27, ImportField::Notes}});
        QCOMPARE(link.path, QDir::current().absoluteFilePath(relative));
        QCOMPARE(link.sheet, std::optional(QStringLiteral("Conducteur")));
        QCOMPARE(link.columns, (QMap<QString, QString>{{"D", "ignore"}, {"AB", "notes"}}));
        QCOMPARE(LinkedRundown::fieldsOf(link),
                 (QHash<int, ImportField>{{3, ImportField::Ignore}, {27, ImportField::Notes}}));

        // Every field has a key that reads back; what is not understood is passed over.
        for (int field = int(ImportField::Ignore); field <= int(ImportField::Danger); ++field)
            QCOMPARE(LinkedRundown::fieldForKey(LinkedRundown::fieldKey(ImportField(field))),
                     std::optional(ImportField(field)));
        LinkedSpreadsheet odd = link;
        odd.columns = {{"d", "ignore"}, {"E", "durée"}, {"F", "speaker"}};
        QCOMPARE(LinkedRundown::fieldsOf(odd), (QHash<int, ImportField>{{5, ImportField::Speaker}}));
    }

    void readingAgainGivesTheImportsCues()
    {
        // The auto-follow column read as nothing, as chosen in the preview.
        const LinkedSpreadsheet link =
            LinkedRundown::linkFor(data("conducteur.tsv"), QStringLiteral("conducteur"), {{2, ImportField::Ignore}});
        const LinkedRundown::Reading reading = LinkedRundown::read(link, context);
        QCOMPARE(reading.error, QString());
        QCOMPARE(cueNames(reading.cues), (QStringList{"Accueil", "Discours", "Salut final"}));
        QCOMPARE(reading.cues[1].duration, 720.0);
        QCOMPARE(reading.cues[0].autoFollow, false);
        QCOMPARE(reading.cues[2].autoFollow, false);

        const LinkedRundown::Reading guessed =
            LinkedRundown::read(LinkedRundown::linkFor(data("conducteur.tsv"), {}, {}), context);
        QCOMPARE(guessed.cues[0].autoFollow, true);
    }

    void aWorkbookIsReadOnItsSheet()
    {
        const LinkedSpreadsheet link =
            LinkedRundown::linkFor(data("conducteur-gala-libreoffice.xlsx"), QStringLiteral("Conducteur"), {});
        const LinkedRundown::Reading reading = LinkedRundown::read(link, context);
        QCOMPARE(reading.error, QString());
        QCOMPARE(reading.cues.size(), 13);
        QCOMPARE(reading.cues[0].name, QStringLiteral("Accueil du public"));

        LinkedSpreadsheet renamed = link;
        renamed.sheet = QStringLiteral("Déroulé");
        QCOMPARE(LinkedRundown::read(renamed, context).error,
                 QStringLiteral("Ce classeur n’a pas de feuille « Déroulé »."));
    }

    void aFileThatNoLongerReadsSaysWhy()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.csv"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Bonjour\n"); // the producer's sheet saved over by something else
        file.close();
        const LinkedRundown::Reading reading =
            LinkedRundown::read(LinkedRundown::linkFor(path, {}, {}), context);
        QCOMPARE(reading.error, QStringLiteral("Aucune ligne d’en-tête reconnue : la feuille doit "
                                               "nommer ses colonnes (Nom, Durée…)."));
        QVERIFY(reading.cues.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLinkedRundown)
#include "tst_linkedrundown.moc"
