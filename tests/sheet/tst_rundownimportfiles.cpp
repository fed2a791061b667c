#include "importexpect.h"
#include "sheetfile.h"

#include <QTest>


// Whole running orders as the producers' files hold them, read by the real readers.
class TestRundownImportFiles : public QObject
{
    Q_OBJECT

private slots:
    void importsTheFrenchExcelExport()
    {
        const ImportPreview preview = previewOfFile("conducteur-excel-fr.csv");
        QCOMPARE(preview.error, QString());
        QCOMPARE(preview.headerLine, 3);
        QCOMPARE(preview.summary(), QStringLiteral("10 cues"));
        QCOMPARE(lines(preview), (QList<int>{4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
        compareCues(
            preview.cues(),
            {cueOf("Accueil du public", 600, {}, "#2ECC71", "Ouverture des portes…"),
             cueOf("Discours d’ouverture", 3900, "Claire Dubois", "#3498DB",
                   "Micro HF 2\nPupitre \"côté jardin\"", true),
             cueOf("Remise des prix", 600, "Marc Lefèvre", "#FF6B00", "Budget : 1 500 €", true),
             cueOf("Intermède musical", 5400, "Quatuor Éole"),
             cueOf("Annonce des partenaires", 90, {}, "#FF2D78"),
             hardOut(cueOf("Pause", 600, {}, "#F1C40F", "Reprise à 14 h 30 précises"),
                     parisTime(14, 30)),
             cueOf("Table ronde", 1200, "Élise Martin", "#3498DB", {}, true),
             cueOf("Questions du public", 330, {}, {}, {}, true),
             cueOf("Clôture", 150, "Claire Dubois", "#FFFFFF"),
             cueOf("Cocktail", 2700, {}, "#9B59B6", "Fin de soirée")});
    }

    void importsTheOtherTextFiles()
    {
        const ImportPreview utf8 = previewOfFile("conducteur-utf8-bom.csv");
        QCOMPARE(utf8.summary(), QStringLiteral("3 cues"));
        compareCues(utf8.cues(),
                    {cueOf("🎤 Ouverture", 600, "Claire Dubois", "#2ECC71",
                           "Lumière tamisée, musique d’attente"),
                     cueOf("Keynote", 150, "Ana Müller"),
                     hardOut(cueOf("Clôture", 600, {}, "#FF2D78"), parisTime(22, 15))});

        const ImportPreview tsv = previewOfFile("conducteur.tsv");
        compareCues(tsv.cues(), {cueOf("Accueil", 300, {}, {}, {}, true), cueOf("Discours", 720),
                                 cueOf("Salut final", 90, {}, {}, {}, true)});

        const ImportPreview utf16 = previewOfFile("conducteur-utf16.txt");
        compareCues(utf16.cues(),
                    {cueOf("Ouverture", 600, "Claire Dubois", {}, "Micro HF 1\nPupitre"),
                     cueOf("Remise des prix", 1800),
                     hardOut(cueOf("Clôture", 600), parisTime(23, 0))});
    }

    void importsTheGalaWorkbooks_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("openpyxl") << "conducteur-gala.xlsx";
        QTest::newRow("LibreOffice xlsx") << "conducteur-gala-libreoffice.xlsx";
        QTest::newRow("LibreOffice ods") << "conducteur-gala.ods";
    }

    void importsTheGalaWorkbooks()
    {
        QFETCH(QString, file);
        const SheetReadResult read =
            SheetFile::read(QStringLiteral(KAIRON_TEST_DATA "/sheets/") + file);
        QVERIFY2(read.ok(), qPrintable(read.error));
        const ImportPreview preview = RundownImport::preview(read.table, paris);
        QCOMPARE(preview.error, QString());
        QCOMPARE(preview.headerLine, 4);
        QCOMPARE(preview.columns,
                 (QList<ImportColumn>{{0, "N°", ImportField::Ignore},
                                      {1, "Séquence", ImportField::Name},
                                      {2, "Intervenant", ImportField::Speaker},
                                      {3, "Durée", ImportField::Duration},
                                      {4, "Début", ImportField::StartTime},
                                      {5, "Fin", ImportField::EndTime},
                                      {6, "Couleur", ImportField::Colour},
                                      {7, "Notes", ImportField::Notes},
                                      {8, "Enchaînement", ImportField::AutoFollow}}));
        QCOMPARE(preview.summary(), QStringLiteral("13 cues, 3 lignes ignorées"));
        QCOMPARE(lines(preview),
                 (QList<int>{5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 21}));
        QStringList expectedProblems(16);
        expectedProblems[5] = "Durée illisible : " + quoted("env. 10 min");
        expectedProblems[7] = "Ligne de titre";
        expectedProblems[15] = "Ligne de total";
        QCOMPARE(problems(preview), expectedProblems);
        compareCues(
            preview.cues(),
            {cueOf("Accueil du public", 1800, "Équipe d’accueil", "#2ECC71",
                   "Ouverture des portes", true),
             cueOf("Discours d’ouverture", 300, "Claire Dubois", "#3498DB",
                   "Pupitre côté jardin\nMicro HF n° 1", true),
             cueOf("Présentation de la soirée", 420, "Julien Moreau", "#FF6B00", {}, true),
             cueOf("Remise du prix Jeune Talent", 900, "Sophie Martin", "#F1C40F",
                   "Trophée en coulisse cour"),
             cueOf("Intermède musical", 480, "Quatuor Éole", "#9B59B6", {}, true),
             hardOut(cueOf("Entracte", 1200, {}, "#FFFFFF",
                           "Bar ouvert\nRetour en salle à 21 h 05"),
                     parisTime(21, 5)),
             cueOf("Reprise et annonces", 180, "Julien Moreau", "#1ABC9C", {}, true),
             cueOf("Remise du prix d’honneur", 1200, "Claire Dubois", "#E74C3C"),
             cueOf("Projection du film des 20 ans", 754, {}, "#3498DB", "Son sur la régie vidéo",
                   true),
             cueOf("Table ronde", 2700, "Invités du gala", "#2ECC71"),
             cueOf("Tirage de la tombola", 330, "Sophie Martin", "#F1C40F", {}, true),
             cueOf("Discours de clôture", 600, "Claire Dubois", "#FF6B00",
                   "Remerciements aux partenaires"),
             hardOut(cueOf("Final et salut", 1200, "Toute la troupe", "#FF6B00"),
                     parisTime(23, 0))});
    }

    void previewsTwoThousandRowsQuickly()
    {
        SheetTable table;
        table.rows.append({text("N°"), text("Nom"), text("Intervenant"), text("Durée"),
                           text("Fin"), text("Couleur"), text("Notes"), text("Enchaînement")});
        for (int index = 1; index <= 2000; ++index) {
            table.rows.append({number(index), text(QStringLiteral("Séquence %1").arg(index)),
                               text("Claire Dubois"),
                               index % 2 ? text("1:05:00") : timeValue(0.01),
                               index % 50 ? empty : text("22h30"),
                               text(index % 3 ? "Orange Orv" : "#2ecc71"),
                               text("Pupitre côté jardin"), text(index % 2 ? "oui" : "")});
        }
        const ImportPreview preview = RundownImport::preview(table, paris);
        QCOMPARE(preview.cueCount(), 2000);
        QCOMPARE(preview.cues()[49].mode, TimerMode::HardOut);
    }
};

QTEST_GUILESS_MAIN(TestRundownImportFiles)
#include "tst_rundownimportfiles.moc"
