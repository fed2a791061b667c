#include "importexpect.h"

#include <QSet>
#include <QTest>

// Header detection, column choices, the rows kept or left out and their messages.
class TestRundownImport : public QObject
{
    Q_OBJECT

private slots:
    void recognisesHeaderTexts_data()
    {
        QTest::addColumn<QString>("header");
        QTest::addColumn<ImportField>("field");
        const QList<std::pair<ImportField, QStringList>> known{
            {ImportField::Name,
             {"Nom", "Titre", "Séquence", "SEQUENCE", "Cue", "Name", "Title", "Intitulé"}},
            {ImportField::Speaker,
             {"Intervenant", "Intervenants", "Intervenant(e)", "Orateur", "Présentateur",
              "Speaker"}},
            {ImportField::Duration,
             {"Durée", " durée ", "Durée (min)", "Durée (mm:ss)", "Durée en minutes",
              "Durée min", "Duration", "Durée :"}},
            {ImportField::EndTime, {"Fin", "Heure de fin", "End", "End time", "End Time"}},
            {ImportField::StartTime,
             {"Début", "Heure", "Heure de début", "Start", "Start time", "Début (hh:mm)"}},
            {ImportField::Colour, {"Couleur", "Color", "Colour"}},
            {ImportField::Notes,
             {"Notes", "Note", "Commentaires", "Commentaire", "Remarques", "Comments"}},
            {ImportField::AutoFollow,
             {"Enchaînement", "Enchaîner", "Auto", "Auto-follow", "Auto follow"}},
            {ImportField::Warning, {"Alerte", "Seuil d’alerte", "Seuil d'alerte", "Warning"}},
            {ImportField::Danger, {"Danger", "Seuil de danger"}},
            {ImportField::Ignore,
             {"N°", "#", "Horaires", "", "Gala des Lumières — 14 mars 2026", "Fin de soirée",
              "Nom du fichier son", "Durée totale"}},
        };
        for (const auto &[field, headers] : known) {
            for (const QString &header : headers)
                QTest::newRow(qPrintable(u'"' + header + u'"')) << header << field;
        }
    }

    void recognisesHeaderTexts()
    {
        QFETCH(QString, header);
        QFETCH(ImportField, field);
        QCOMPARE(RundownImport::fieldForHeader(header), field);
    }

    void namesEveryField()
    {
        const QStringList labels{"Ignorer", "Nom", "Intervenant", "Durée", "Heure de fin",
                                 "Heure de début", "Couleur", "Notes", "Enchaînement",
                                 "Seuil d’alerte", "Seuil de danger"};
        for (int field = 0; field <= int(ImportField::Danger); ++field)
            QCOMPARE(RundownImport::fieldLabel(ImportField(field)), labels[field]);
    }

    void findsTheHeaderAfterTitleAndBlankRows()
    {
        const ImportPreview preview = previewOf(
            "Conducteur du gala;;\n"
            ";;\n"
            "Notes de la régie : voir plan\n"
            "\n"
            "N°;Nom;Durée (min);Heure de fin;Commentaire\n"
            "1;Accueil;10;;Portes\n");
        QCOMPARE(preview.error, QString());
        QCOMPARE(preview.headerLine, 5);
        QCOMPARE(preview.columns,
                 (QList<ImportColumn>{{0, "N°", ImportField::Ignore},
                                      {1, "Nom", ImportField::Name},
                                      {2, "Durée (min)", ImportField::Duration},
                                      {3, "Heure de fin", ImportField::EndTime},
                                      {4, "Commentaire", ImportField::Notes}}));
        QCOMPARE(lines(preview), QList<int>{6});
        compareCues(preview.cues(), {cueOf("Accueil", 600, {}, {}, "Portes")});
    }

    void looksForTheHeaderInTheFirst200Rows()
    {
        const QString titles = QStringLiteral("Titre\n").repeated(199);
        const ImportPreview last = previewOf(titles + "Nom;Durée\nA;5\n");
        QCOMPARE(last.headerLine, 200);
        QCOMPARE(last.summary(), QStringLiteral("1 cue"));
        const ImportPreview beyond = previewOf(titles + "Titre\nNom;Durée\nA;5\n");
        QCOMPARE(beyond.headerLine, 0);
        QCOMPARE(beyond.error, QStringLiteral("Aucune ligne d’en-tête reconnue : la feuille doit "
                                              "nommer ses colonnes (Nom, Durée…)."));
    }

    void readsATwoLineHeader()
    {
        SheetTable table;
        table.rows = {
            {text("Gala"), covered(), covered(), covered(), covered()},
            {},
            {text("Séquence"), text("Durée"), text("Horaires"), covered(), text("Notes")},
            {empty, empty, text("Début"), text("Fin")},
            {text("Ouverture"), timeValue(600.0 / 86400), timeValue(19.5 / 24)},
            {text("Entracte"), timeValue(1200.0 / 86400), timeValue(20.75 / 24),
             timeValue(21.0 / 24 + 5.0 / 1440), text("Bar ouvert")},
        };
        const ImportPreview preview = RundownImport::preview(table, paris);
        QCOMPARE(preview.error, QString());
        QCOMPARE(preview.headerLine, 4);
        QCOMPARE(preview.columns, (QList<ImportColumn>{{0, "Séquence", ImportField::Name},
                                                       {1, "Durée", ImportField::Duration},
                                                       {2, "Début", ImportField::StartTime},
                                                       {3, "Fin", ImportField::EndTime},
                                                       {4, "Notes", ImportField::Notes}}));
        QCOMPARE(lines(preview), (QList<int>{5, 6}));
        compareCues(preview.cues(),
                    {cueOf("Ouverture", 600),
                     hardOut(cueOf("Entracte", 1200, {}, {}, "Bar ouvert"), parisTime(21, 5))});
    }

    void keepsAOneLineHeaderWhenNoNamesAreUnderItsMergedCell()
    {
        SheetTable table;
        table.rows = {
            {text("Nom"), text("Durée"), text("Remarques"), covered()},
            {text("Accueil"), text("5"), text("Micro"), text("HF")},
        };
        const ImportPreview preview = RundownImport::preview(table, paris);
        QCOMPARE(preview.headerLine, 1);
        QCOMPARE(preview.columns, (QList<ImportColumn>{{0, "Nom", ImportField::Name},
                                                       {1, "Durée", ImportField::Duration},
                                                       {2, "Remarques", ImportField::Notes}}));
        compareCues(preview.cues(), {cueOf("Accueil", 300, {}, {}, "Micro")});
    }

    void needsAHeader()
    {
        const ImportPreview preview = previewOf("Accueil;10\nDiscours;5\nNom;Description\n");
        QCOMPARE(preview.error, QStringLiteral("Aucune ligne d’en-tête reconnue : la feuille doit "
                                               "nommer ses colonnes (Nom, Durée…)."));
        QCOMPARE(preview.headerLine, 0);
        QVERIFY(preview.columns.isEmpty());
        QVERIFY(preview.rows.isEmpty());
        QCOMPARE(RundownImport::preview(SheetTable{}, paris).error, preview.error);
    }

    void needsANameAndADurationOrEndColumn_data()
    {
        QTest::addColumn<QString>("csv");
        QTest::newRow("no name") << "Intervenant;Durée\nClaire;5\n";
        QTest::newRow("no duration nor end") << "Nom;Intervenant;Début\nAccueil;Claire;19:30\n";
    }

    void needsANameAndADurationOrEndColumn()
    {
        QFETCH(QString, csv);
        const ImportPreview preview = previewOf(csv);
        QCOMPARE(preview.error, QStringLiteral(
            "Il faut au moins une colonne Nom et une colonne Durée ou Heure de fin."));
        QCOMPARE(preview.headerLine, 1);
        QCOMPARE(preview.columns.size(), 2 + (QTest::currentDataTag() == QByteArray("no name") ? 0 : 1));
        QVERIFY(preview.rows.isEmpty());
        QCOMPARE(preview.summary(), QStringLiteral("Aucun cue"));
    }

    void appliesTheColumnChoices()
    {
        const QString csv = "Quoi;Qui;Durée;Couleur;\n"
                            "Accueil;Claire;5;Bleu;1\n";
        // Two known columns make the header, but without a name column nothing is imported.
        QCOMPARE(previewOf(csv).error, QStringLiteral(
            "Il faut au moins une colonne Nom et une colonne Durée ou Heure de fin."));

        const ImportPreview preview = previewOf(csv, {{0, ImportField::Name},
                                                      {1, ImportField::Speaker},
                                                      {3, ImportField::Ignore},
                                                      {4, ImportField::AutoFollow},
                                                      {9, ImportField::Ignore}});
        QCOMPARE(preview.error, QString());
        QCOMPARE(preview.columns, (QList<ImportColumn>{{0, "Quoi", ImportField::Name},
                                                       {1, "Qui", ImportField::Speaker},
                                                       {2, "Durée", ImportField::Duration},
                                                       {3, "Couleur", ImportField::Ignore},
                                                       {4, "", ImportField::AutoFollow}}));
        compareCues(preview.cues(), {cueOf("Accueil", 300, "Claire", {}, {}, true)});

        // A duration column read as the end time instead.
        const ImportPreview asEnd = previewOf("Nom;Durée\nSalut;22:15\n",
                                              {{1, ImportField::EndTime}});
        compareCues(asEnd.cues(), {hardOut(cueOf("Salut", 600), parisTime(22, 15))});
    }

    void makesCuesFromEveryField()
    {
        const ImportPreview preview = previewOf(
            "Nom;Intervenant;Durée;Fin;Début;Couleur;Notes;Remarques;Enchaînement;Alerte;Danger\n"
            "  Discours d’ouverture  ;  Claire Dubois ;1:05:00;;19:30;#3498db;Pupitre;Micro HF;oui;"
            "2;0:45\n"
            "Entracte;;20;21h05;;Orange Orv;;Bar;x;;\n"
            "Salut;;;23:00;;;;;non;1'30;10 s\n");
        QCOMPARE(preview.error, QString());
        Cue discours = cueOf("Discours d’ouverture", 3900, "Claire Dubois", "#3498DB",
                             "Pupitre\nMicro HF", true);
        discours.warningThreshold = 120;
        discours.dangerThreshold = 45;
        Cue salut = hardOut(cueOf("Salut", 600), parisTime(23, 0));
        salut.warningThreshold = 90;
        salut.dangerThreshold = 10;
        compareCues(preview.cues(),
                    {discours,
                     hardOut(cueOf("Entracte", 1200, {}, "#FF6B00", "Bar", true), parisTime(21, 5)),
                     salut});
        QCOMPARE(problems(preview), (QStringList{"", "", ""}));
    }

    void keepsDefaultsOfFieldsNotInTheSheet()
    {
        const ImportPreview preview = previewOf("Nom;Durée\nA;1\n");
        QCOMPARE(preview.cues().size(), 1);
        const Cue cue = preview.cues().first();
        QCOMPARE(cue.speaker, QString());
        QCOMPARE(cue.mode, TimerMode::Duration);
        QCOMPARE(cue.hardOutTime, std::nullopt);
        QCOMPARE(cue.warningThreshold, 120.0);
        QCOMPARE(cue.dangerThreshold, 30.0);
        QCOMPARE(cue.autoFollow, false);
        QCOMPARE(cue.notes, QString());
        QCOMPARE(cue.colorHex, std::nullopt);
        QCOMPARE(cue.actualElapsed, std::nullopt);
        QCOMPARE(cue.overtime, std::nullopt);
    }

    void givesEveryCueAFreshId()
    {
        const QString csv = "Nom;Durée\nA;1\nB;2\nC;3\n";
        const QList<Cue> first = previewOf(csv).cues();
        const QList<Cue> second = previewOf(csv).cues();
        QSet<QUuid> ids;
        for (const Cue &cue : first + second) {
            QVERIFY(!cue.id.isNull());
            ids.insert(cue.id);
        }
        QCOMPARE(ids.size(), 6);
    }

    void namesCuesWithoutAName()
    {
        const ImportPreview preview = previewOf("Nom;Durée;Fin\n"
                                                "Accueil;5;\n"
                                                ";3;\n"
                                                "Vide;;\n"
                                                ";;20:00\n");
        QCOMPARE(problems(preview), (QStringList{"", "", "Durée manquante", ""}));
        compareCues(preview.cues(), {cueOf("Accueil", 300), cueOf("Cue 2", 180),
                                     hardOut(cueOf("Cue 3", 600), parisTime(20, 0))});
    }

    void leavesOutRowsWithTheirReason()
    {
        const ImportPreview preview = previewOf(
            "N°;Nom;Durée;Fin;Notes\n"
            "1;Hommage;env. 10 min;;\n"
            "2;Pause;;vers 14h;\n"
            "3;Sans durée;;;Note seule\n"
            "4;Total des cues;1:00:00;;\n"
            "TOTAL;;;;\n"
            "Total :;;;;\n"
            "5;Totalement improvisé;5;;\n"
            "6;Négatif;-2;;\n");
        QCOMPARE(problems(preview),
                 (QStringList{"Durée illisible : " + quoted("env. 10 min"),
                              "Heure de fin illisible : " + quoted("vers 14h"),
                              "Durée manquante", "Ligne de total", "Ligne de total",
                              "Ligne de total", "", "Durée illisible : " + quoted("-2")}));
        QCOMPARE(lines(preview), (QList<int>{2, 3, 4, 5, 6, 7, 8, 9}));
        // Each row left out is named for the preview: its name, else its first text.
        QStringList labels;
        for (const ImportRow &row : preview.rows)
            labels << row.label;
        QCOMPARE(labels, (QStringList{"Hommage", "Pause", "Sans durée", "Total des cues", "TOTAL",
                                      "Total :", "Totalement improvisé", "Négatif"}));
        compareCues(preview.cues(), {cueOf("Totalement improvisé", 300)});
        QCOMPARE(preview.rows[0].problem.toUtf8(),
                 QByteArray("Dur\xC3\xA9" "e illisible : \xC2\xAB " "env. 10 min"
                            " \xC2\xBB"));
    }

    void leavesOutTitlesTotalsAndDatesBefore1900()
    {
        SheetTable table;
        table.rows = {
            {text("Séquence"), text("Durée"), text("Fin"), text("Notes")},
            {text("Ouverture"), timeValue(300.0 / 86400)},
            {text("Deuxième partie"), covered(), covered(), covered()},
            {empty, empty, empty, text("Deuxième partie"), covered()},
            {text("Ancien"), timeValue(-1.25)},
            {text("Très ancien"), empty, timeValue(-0.5)},
            {text("Nombre"), number(-2.5)},
            {text("Booléen"), SheetCell{Kind::Boolean, {}, 1}},
            {covered(), covered(), text("  ")},
            {empty, text("Total"), empty, empty},
            {text("Total"), timeValue(300.0 / 86400), covered()},
        };
        const ImportPreview preview = RundownImport::preview(table, paris);
        QCOMPARE(problems(preview),
                 (QStringList{"", "Ligne de titre", "Ligne de titre",
                              "Date antérieure à 1900 : " + quoted("28/12/1899 18:00"),
                              "Date antérieure à 1900 : " + quoted("29/12/1899 12:00"),
                              "Durée illisible : " + quoted("-2,5"),
                              "Durée illisible : " + quoted("VRAI"), "Ligne de total",
                              "Ligne de total"}));
        QCOMPARE(lines(preview), (QList<int>{2, 3, 4, 5, 6, 7, 8, 10, 11}));
    }

    void notesWhatOfAKeptRowWasNotTaken()
    {
        const ImportPreview preview = previewOf(
            "Nom;Durée;Couleur;Alerte;Danger;Enchaînement\n"
            "A;5;Rouge;;;\n"
            "B;5;;beaucoup;;\n"
            "C;5;;;?;\n"
            "D;5;;;;peut-être\n"
            "E;5;#12345;-1;1h60;2\n");
        QCOMPARE(problems(preview),
                 (QStringList{"Couleur inconnue : " + quoted("Rouge"),
                              "Seuil d’alerte illisible : " + quoted("beaucoup"),
                              "Seuil de danger illisible : " + quoted("?"),
                              "Enchaînement illisible : " + quoted("peut-être"),
                              "Couleur inconnue : " + quoted("#12345") + " ; "
                                  + "Seuil d’alerte illisible : " + quoted("-1") + " ; "
                                  + "Seuil de danger illisible : " + quoted("1h60") + " ; "
                                  + "Enchaînement illisible : " + quoted("2")}));
        compareCues(preview.cues(), {cueOf("A", 300), cueOf("B", 300), cueOf("C", 300),
                                     cueOf("D", 300), cueOf("E", 300)});
        QCOMPARE(preview.cueCount(), 5);
        QCOMPARE(preview.ignoredCount(), 0);
    }

    void skipsBlankRowsWithoutCountingThem()
    {
        const ImportPreview preview = previewOf("Nom;Durée\n\n;;\n  ;\t\nA;5\n\n\nB;6\n\n");
        QCOMPARE(lines(preview), (QList<int>{5, 8}));
        QCOMPARE(preview.summary(), QStringLiteral("2 cues"));
    }

    void placesEndTimesInTheContextZone()
    {
        const ImportContext newYork{QDate(2026, 7, 1), QTimeZone("America/New_York")};
        SheetTable table;
        table.rows = {{text("Nom"), text("Fin")}, {text("A"), text("20:30")}};
        const Cue cue = RundownImport::preview(table, newYork).cues().value(0);
        QCOMPARE(cue.hardOutTime,
                 QDateTime(QDate(2026, 7, 1), QTime(20, 30), QTimeZone("America/New_York")));
        QCOMPARE(cue.hardOutTime->toUTC(), QDateTime(QDate(2026, 7, 2), QTime(0, 30), Qt::UTC));

        // A time the clocks skip is placed after the gap: 02:30 on the night clocks go forward.
        const ImportContext springForward{QDate(2026, 3, 29), QTimeZone("Europe/Paris")};
        table.rows[1][1] = text("2h30");
        const Cue skipped = RundownImport::preview(table, springForward).cues().value(0);
        QVERIFY(skipped.hardOutTime->isValid());
        QCOMPARE(skipped.hardOutTime->toUTC(),
                 QDateTime(QDate(2026, 3, 29), QTime(1, 30), Qt::UTC));

        // Without a valid zone, UTC.
        const ImportContext noZone{QDate(2026, 3, 14), QTimeZone()};
        const Cue utc = RundownImport::preview(table, noZone).cues().value(0);
        QCOMPARE(utc.hardOutTime, QDateTime(QDate(2026, 3, 14), QTime(2, 30), Qt::UTC));
    }

    void summarisesTheImport_data()
    {
        QTest::addColumn<int>("cues");
        QTest::addColumn<int>("ignored");
        QTest::addColumn<QString>("summary");
        QTest::newRow("none") << 0 << 0 << "Aucun cue";
        QTest::newRow("one") << 1 << 0 << "1 cue";
        QTest::newRow("eighteen") << 18 << 0 << "18 cues";
        QTest::newRow("one and one") << 1 << 1 << "1 cue, 1 ligne ignorée";
        QTest::newRow("eighteen and two") << 18 << 2 << "18 cues, 2 lignes ignorées";
        QTest::newRow("only ignored") << 0 << 2 << "Aucun cue, 2 lignes ignorées";
    }

    void summarisesTheImport()
    {
        QFETCH(int, cues);
        QFETCH(int, ignored);
        QFETCH(QString, summary);
        QString csv = "Nom;Durée\n";
        for (int index = 0; index < cues; ++index)
            csv += QStringLiteral("Cue;%1\n").arg(index + 1);
        for (int index = 0; index < ignored; ++index)
            csv += QStringLiteral("Illisible;?\n");
        const ImportPreview preview = previewOf(csv);
        QCOMPARE(preview.cueCount(), cues);
        QCOMPARE(preview.ignoredCount(), ignored);
        QCOMPARE(preview.rows.size(), cues + ignored);
        QCOMPARE(preview.cues().size(), cues);
        QCOMPARE(preview.summary(), summary);
    }
};

QTEST_GUILESS_MAIN(TestRundownImport)
#include "tst_rundownimport.moc"
