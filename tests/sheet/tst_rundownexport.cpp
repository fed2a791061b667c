#include "csvreader.h"
#include "rundownexport.h"
#include "rundownimport.h"
#include "sheetfile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

// The running order written as a spreadsheet: the exact CSV bytes, the workbook as a third
// program reads it, and both imported back to the very same cues.
class TestRundownExport : public QObject
{
    Q_OBJECT

private:
    const QTimeZone paris{QByteArrayLiteral("Europe/Paris")};
    const QDate day{2026, 3, 14};

    // Every field set, and the texts a spreadsheet must quote.
    TimerSession show() const
    {
        TimerSession session(QDateTime(day, QTime(9, 0), paris));
        session.name = QStringLiteral("Gala des Lumières");
        Cue opening;
        opening.name = QStringLiteral("Accueil du public");
        opening.speaker = QStringLiteral("Claire Dubois");
        opening.duration = 900;
        opening.warningThreshold = 120;
        opening.dangerThreshold = 30;
        opening.autoFollow = true;
        opening.colorHex = QStringLiteral("#2ECC71");
        opening.notes = QStringLiteral("Lumière salle à 30 %; micro HF 2\n« Bienvenue »");
        Cue speech;
        speech.name = QStringLiteral("Discours d’ouverture; \"le mot du président\"");
        speech.mode = TimerMode::HardOut;
        speech.hardOutTime = QDateTime(day, QTime(14, 30), paris);
        speech.duration = 3900; // 1:05:00
        speech.warningThreshold = 300;
        speech.dangerThreshold = 60;
        Cue pause;
        pause.name = QStringLiteral("Pause");
        pause.duration = 45;
        pause.warningThreshold = 15;
        pause.dangerThreshold = 5;
        pause.colorHex = QStringLiteral("#3498DB");
        session.cues = {opening, speech, pause};
        return session;
    }

    // The same show planned to start at 14:00: its cues start at 14:00, 14:15 (after 15 min)
    // and 14:30 (the speech's end time).
    TimerSession plannedShow() const
    {
        TimerSession session = show();
        session.scheduledStart = QDateTime(day, QTime(14, 0), paris);
        return session;
    }

    // A show starting at 23:50 whose second cue starts at midnight, on the next day.
    TimerSession lateShow() const
    {
        TimerSession session(QDateTime(day, QTime(9, 0), paris));
        session.scheduledStart = QDateTime(day, QTime(23, 50), paris);
        Cue closing;
        closing.name = QStringLiteral("Dernier set");
        closing.duration = 600;
        Cue encore;
        encore.name = QStringLiteral("Rappel");
        encore.duration = 1200;
        session.cues = {closing, encore};
        return session;
    }

    // Runs tests/data/sheets/read_export.py on the workbook written for `session`: what a
    // spreadsheet program of its own reads of it, line by line.
    QStringList readByOpenpyxl(const TimerSession &session)
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.xlsx"));
        if (!RundownExport::writeXlsx(session, paris, path))
            return {QStringLiteral("not written")};
        QProcess python;
        python.start(QStringLiteral("/usr/bin/python3"),
                     {QStringLiteral(KAIRON_TEST_DATA "/sheets/read_export.py"), path});
        if (!python.waitForFinished(60000))
            return {QStringLiteral("python did not finish")};
        const QString errors = QString::fromUtf8(python.readAllStandardError());
        if (!errors.isEmpty() || python.exitCode() != 0)
            return {QStringLiteral("python failed: ") + errors};
        return QString::fromUtf8(python.readAllStandardOutput()).split(u'\n');
    }

    // The cues imported back, compared field by field with the show's (the ids are new).
    // A planned start, when written, is a column the import leaves aside.
    void compareImported(const SheetReadResult &read, bool withPlannedStart = false)
    {
        QVERIFY2(read.ok(), qPrintable(read.error));
        const ImportPreview preview = RundownImport::preview(read.table, ImportContext{day, paris});
        QVERIFY2(preview.error.isEmpty(), qPrintable(preview.error));
        if (withPlannedStart) {
            QCOMPARE(preview.columns.value(1), (ImportColumn{1, QStringLiteral("Début prévu"), ImportField::Ignore}));
            QCOMPARE(preview.columns.value(2), (ImportColumn{2, QStringLiteral("Nom"), ImportField::Name}));
        } else {
            QCOMPARE(preview.columns.value(1), (ImportColumn{1, QStringLiteral("Nom"), ImportField::Name}));
        }
        QCOMPARE(preview.summary(), QStringLiteral("3 cues"));
        const QList<Cue> cues = preview.cues();
        const QList<Cue> expected = show().cues;
        QCOMPARE(cues.size(), expected.size());
        for (qsizetype i = 0; i < cues.size(); ++i) {
            Cue cue = cues[i];
            QVERIFY(cue.id != expected[i].id);
            cue.id = expected[i].id;
            QCOMPARE(cue, expected[i]);
        }
    }

private slots:
    void csvBytesAreWhatAFrenchSpreadsheetOpens()
    {
        const QByteArray expected = QStringLiteral(
            "\uFEFFN°;Nom;Intervenant;Durée;Fin;Alerte;Danger;Enchaînement;Couleur;Notes\r\n"
            "1;Accueil du public;Claire Dubois;0:15:00;;0:02:00;0:00:30;oui;#2ECC71;"
            "\"Lumière salle à 30 %; micro HF 2\n« Bienvenue »\"\r\n"
            "2;\"Discours d’ouverture; \"\"le mot du président\"\"\";;1:05:00;14:30;0:05:00;0:01:00;non;;\r\n"
            "3;Pause;;0:00:45;;0:00:15;0:00:05;non;#3498DB;\r\n").toUtf8();
        QCOMPARE(RundownExport::csvBytes(show(), paris), expected);
    }

    void theEndTimeIsTheUsersTimeOfDay()
    {
        // The same instant read in New York, on daylight saving time already, is 09:30.
        const QByteArray csv = RundownExport::csvBytes(show(), QTimeZone(QByteArrayLiteral("America/New_York")));
        QVERIFY(csv.contains(";1:05:00;09:30;"));
    }

    void csvImportsBackToTheSameCues()
    {
        compareImported(CsvReader::read(RundownExport::csvBytes(show(), paris), QStringLiteral("Conducteur")));
    }

    void xlsxImportsBackToTheSameCues()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.xlsx"));
        QString error;
        QVERIFY2(RundownExport::writeXlsx(show(), paris, path, &error), qPrintable(error));
        const SheetReadResult read = SheetFile::read(path);
        QCOMPARE(read.sheetNames, QStringList{QStringLiteral("Conducteur")});
        // The lengths are time values, the end a time of day.
        const QList<SheetCell> speech = read.table.rows.value(2);
        QCOMPARE(speech.value(3).kind, SheetCell::Kind::Number);
        QVERIFY(speech.value(3).isTime);
        QCOMPARE(speech.value(3).number, 3900.0 / 86400);
        QVERIFY(speech.value(4).isTime);
        QCOMPARE(speech.value(4).number, (14 * 60 + 30) / 1440.0);
        QCOMPARE(speech.value(7).text, QStringLiteral("non"));
        compareImported(read);
    }

    void theWorkbookIsLaidOutForReading()
    {
        // Read by openpyxl, a program of its own: bold frozen header, formats, fitted widths.
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.xlsx"));
        QVERIFY(RundownExport::writeXlsx(show(), paris, path));
        QProcess python;
        python.start(QStringLiteral("/usr/bin/python3"),
                     {QStringLiteral(KAIRON_TEST_DATA "/sheets/read_export.py"), path});
        QVERIFY(python.waitForFinished(60000));
        QCOMPARE(QString::fromUtf8(python.readAllStandardError()), QString());
        QCOMPARE(python.exitCode(), 0);
        const QStringList lines = QString::fromUtf8(python.readAllStandardOutput()).split(u'\n');
        const QStringList expected{
            QStringLiteral("sheet Conducteur"),
            QStringLiteral("frozen A2"),
            QStringLiteral("header bold N°|Nom|Intervenant|Durée|Fin|Alerte|Danger|Enchaînement|Couleur|Notes"),
            QStringLiteral("row 2 1|Accueil du public|Claire Dubois|timedelta 0:15:00 [h]:mm:ss|-|"
                           "timedelta 0:02:00 [h]:mm:ss|timedelta 0:00:30 [h]:mm:ss|oui|#2ECC71|"
                           "Lumière salle à 30 %; micro HF 2\\n« Bienvenue »"),
            QStringLiteral("row 3 2|Discours d’ouverture; \"le mot du président\"|-|timedelta 1:05:00 [h]:mm:ss|"
                           "time 14:30:00 hh:mm|timedelta 0:05:00 [h]:mm:ss|timedelta 0:01:00 [h]:mm:ss|non|-|-"),
            QStringLiteral("row 4 3|Pause|-|timedelta 0:00:45 [h]:mm:ss|-|timedelta 0:00:15 [h]:mm:ss|"
                           "timedelta 0:00:05 [h]:mm:ss|non|#3498DB|-"),
            QStringLiteral("widths 6 45 15 9 7 9 9 14 9 34"),
            QString()};
        for (qsizetype i = 0; i < std::max(lines.size(), expected.size()); ++i)
            QCOMPARE(lines.value(i), expected.value(i));
    }

    void theHeaderHasAPlannedStartOnlyWhenTheShowHasAStart()
    {
        QCOMPARE(RundownExport::headers(false),
                 QStringList({QStringLiteral("N°"), QStringLiteral("Nom"), QStringLiteral("Intervenant"),
                              QStringLiteral("Durée"), QStringLiteral("Fin"), QStringLiteral("Alerte"),
                              QStringLiteral("Danger"), QStringLiteral("Enchaînement"),
                              QStringLiteral("Couleur"), QStringLiteral("Notes")}));
        QCOMPARE(RundownExport::headers(true),
                 QStringList({QStringLiteral("N°"), QStringLiteral("Début prévu"), QStringLiteral("Nom"),
                              QStringLiteral("Intervenant"), QStringLiteral("Durée"), QStringLiteral("Fin"),
                              QStringLiteral("Alerte"), QStringLiteral("Danger"),
                              QStringLiteral("Enchaînement"), QStringLiteral("Couleur"),
                              QStringLiteral("Notes")}));
    }

    void csvWithAStartReadsTimeFirst()
    {
        const QByteArray expected = QStringLiteral(
            "\uFEFFN°;Début prévu;Nom;Intervenant;Durée;Fin;Alerte;Danger;Enchaînement;Couleur;Notes\r\n"
            "1;14:00;Accueil du public;Claire Dubois;0:15:00;;0:02:00;0:00:30;oui;#2ECC71;"
            "\"Lumière salle à 30 %; micro HF 2\n« Bienvenue »\"\r\n"
            "2;14:15;\"Discours d’ouverture; \"\"le mot du président\"\"\";;1:05:00;14:30;0:05:00;0:01:00;non;;\r\n"
            "3;14:30;Pause;;0:00:45;;0:00:15;0:00:05;non;#3498DB;\r\n").toUtf8();
        QCOMPARE(RundownExport::csvBytes(plannedShow(), paris), expected);
    }

    void aPlannedStartCrossesMidnight()
    {
        const QByteArray expected = QStringLiteral(
            "\uFEFFN°;Début prévu;Nom;Intervenant;Durée;Fin;Alerte;Danger;Enchaînement;Couleur;Notes\r\n"
            "1;23:50;Dernier set;;0:10:00;;0:02:00;0:00:30;non;;\r\n"
            "2;00:00;Rappel;;0:20:00;;0:02:00;0:00:30;non;;\r\n").toUtf8();
        QCOMPARE(RundownExport::csvBytes(lateShow(), paris), expected);
    }

    void aPlannedStartDropsItsSeconds()
    {
        // After a 45 s cue the next one is planned at 20:15:45: written 20:15, not rounded up.
        TimerSession session(QDateTime(day, QTime(9, 0), paris));
        session.scheduledStart = QDateTime(day, QTime(20, 15), paris);
        Cue jingle;
        jingle.name = QStringLiteral("Jingle");
        jingle.duration = 45;
        Cue host;
        host.name = QStringLiteral("Présentateur");
        session.cues = {jingle, host};
        const QByteArray csv = RundownExport::csvBytes(session, paris);
        QVERIFY(csv.contains("\r\n1;20:15;Jingle;"));
        QVERIFY(csv.contains("\r\n2;20:15;Présentateur;"));
    }

    void thePlannedStartIsTheUsersTimeOfDay()
    {
        // 14:00 in Paris is 09:00 in New York, on daylight saving time already.
        const QByteArray csv = RundownExport::csvBytes(plannedShow(), QTimeZone(QByteArrayLiteral("America/New_York")));
        QVERIFY(csv.contains("\r\n1;09:00;Accueil du public;"));
        QVERIFY(csv.contains("\r\n2;09:15;\"Discours"));
        QVERIFY(csv.contains(";1:05:00;09:30;"));
        QVERIFY(csv.contains("\r\n3;09:30;Pause;"));
    }

    void csvWithAStartImportsBackToTheSameCues()
    {
        compareImported(CsvReader::read(RundownExport::csvBytes(plannedShow(), paris), QStringLiteral("Conducteur")),
                        true);
    }

    void xlsxWithAStartImportsBackToTheSameCues()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.xlsx"));
        QString error;
        QVERIFY2(RundownExport::writeXlsx(plannedShow(), paris, path, &error), qPrintable(error));
        const SheetReadResult read = SheetFile::read(path);
        QCOMPARE(read.table.rows.value(0).value(1).text, QStringLiteral("Début prévu"));
        // The planned start is a time of day, as the end time beside it.
        const QList<SheetCell> speech = read.table.rows.value(2);
        QCOMPARE(speech.value(1).kind, SheetCell::Kind::Number);
        QVERIFY(speech.value(1).isTime);
        QCOMPARE(speech.value(1).number, (14 * 60 + 15) / 1440.0);
        QVERIFY(speech.value(5).isTime);
        QCOMPARE(speech.value(5).number, (14 * 60 + 30) / 1440.0);
        compareImported(read, true);
    }

    void xlsxPlannedStartAtMidnightIsATimeOfDay()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.xlsx"));
        QVERIFY(RundownExport::writeXlsx(lateShow(), paris, path));
        const SheetReadResult read = SheetFile::read(path);
        QVERIFY2(read.ok(), qPrintable(read.error));
        const SheetCell first = read.table.rows.value(1).value(1);
        QCOMPARE(first.kind, SheetCell::Kind::Number);
        QVERIFY(first.isTime);
        QCOMPARE(first.number, (23 * 60 + 50) / 1440.0);
        const SheetCell midnight = read.table.rows.value(2).value(1);
        QCOMPARE(midnight.kind, SheetCell::Kind::Number);
        QVERIFY(midnight.isTime);
        QCOMPARE(midnight.number, 0.0);
    }

    void theWorkbookWithAStartIsLaidOutForReading()
    {
        // The planned start has the end time's format; the script prints the widths of A to J.
        const QStringList lines = readByOpenpyxl(plannedShow());
        const QStringList expected{
            QStringLiteral("sheet Conducteur"),
            QStringLiteral("frozen A2"),
            QStringLiteral("header bold N°|Début prévu|Nom|Intervenant|Durée|Fin|Alerte|Danger|Enchaînement|Couleur|Notes"),
            QStringLiteral("row 2 1|time 14:00:00 hh:mm|Accueil du public|Claire Dubois|timedelta 0:15:00 [h]:mm:ss|-|"
                           "timedelta 0:02:00 [h]:mm:ss|timedelta 0:00:30 [h]:mm:ss|oui|#2ECC71|"
                           "Lumière salle à 30 %; micro HF 2\\n« Bienvenue »"),
            QStringLiteral("row 3 2|time 14:15:00 hh:mm|Discours d’ouverture; \"le mot du président\"|-|"
                           "timedelta 1:05:00 [h]:mm:ss|time 14:30:00 hh:mm|timedelta 0:05:00 [h]:mm:ss|"
                           "timedelta 0:01:00 [h]:mm:ss|non|-|-"),
            QStringLiteral("row 4 3|time 14:30:00 hh:mm|Pause|-|timedelta 0:00:45 [h]:mm:ss|-|"
                           "timedelta 0:00:15 [h]:mm:ss|timedelta 0:00:05 [h]:mm:ss|non|#3498DB|-"),
            QStringLiteral("widths 6 13 45 15 9 7 9 9 14 9"),
            QString()};
        for (qsizetype i = 0; i < std::max(lines.size(), expected.size()); ++i)
            QCOMPARE(lines.value(i), expected.value(i));
    }

    void aRefusedWriteKeepsThePreviousFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("conducteur.xlsx"));
        QFile previous(path);
        QVERIFY(previous.open(QIODevice::WriteOnly));
        previous.write("avant");
        previous.close();
        // A folder where the workbook's temporary copy would go: the write cannot be made.
        QFile blocker(dir.filePath(QStringLiteral("sous")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        QString error;
        QVERIFY(!RundownExport::writeXlsx(show(), paris, dir.filePath(QStringLiteral("sous/c.xlsx")), &error));
        QVERIFY2(error.startsWith(QStringLiteral("impossible d'écrire")), qPrintable(error));
        QVERIFY(!RundownExport::writeCsv(show(), paris, dir.filePath(QStringLiteral("sous/c.csv")), &error));
        QVERIFY2(error.startsWith(QStringLiteral("impossible d'écrire")), qPrintable(error));
        QVERIFY(previous.open(QIODevice::ReadOnly));
        QCOMPARE(previous.readAll(), QByteArray("avant"));
    }
};

QTEST_GUILESS_MAIN(TestRundownExport)
#include "tst_rundownexport.moc"
