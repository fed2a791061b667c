#include "formatters.h"
#include "reportexporter.h"
#include "temphome.h"
#include "testdata.h"

#include <QRegularExpression>
#include <QTest>

namespace {

const QLocale french(QLocale::French, QLocale::France);
const QTimeZone paris("Europe/Paris");
const QDateTime generatedAt(QDate(2026, 11, 21), QTime(22, 15, 30, 700), Qt::UTC);

TimerSession fullShow()
{
    TimerSession s;
    s.name = QStringLiteral("Gala; « Lumière »");
    s.client = QStringLiteral("Maison \"Lumière\"");
    s.venue = QStringLiteral("Salle Pleyel");
    s.operatorName = QString(); // empty: no line, like an absent one
    s.eventDate = QDateTime(QDate(2026, 11, 20), QTime(19, 0), Qt::UTC);
    return s;
}

const QList<CueLogEntry> fullLog{
    {QStringLiteral("Intro; \"live\""), 600, 612.4, 12.4},
    {QStringLiteral("Keynote"), 3599.5, 59.6, 0},
    {QStringLiteral("Nuit\nblanche"), 90000, 90000.5, 0.5},
};

} // namespace

class TestReportExporter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Fmt::setLocale(french);
        Fmt::setTimeZone(paris);
    }

    void aFullReportByteForByte()
    {
        const QString text =
            ReportExporter::reportText(fullShow(), fullLog, 12.9, generatedAt, french, paris);
        QCOMPARE(text.toUtf8(), readTestData(QStringLiteral("reports/report-full.csv")));
    }

    void anEmptyLogGoesStraightToTheTotal()
    {
        TimerSession s;
        s.name = QString();
        s.eventDate = QDateTime(QDate(2026, 11, 20), QTime(23, 30), Qt::UTC); // the 21st in Paris
        const QString text = ReportExporter::reportText(s, {}, 0, generatedAt, french, paris);
        QCOMPARE(text.toUtf8(), readTestData(QStringLiteral("reports/report-empty-log.csv")));
    }

    void quotingOnlyWhereNeeded_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("field");
        QTest::newRow("plain") << "Keynote" << "Keynote";
        QTest::newRow("semicolon") << "A;B" << "\"A;B\"";
        QTest::newRow("quotes doubled") << "Intro; \"live\"" << "\"Intro; \"\"live\"\"\"";
        QTest::newRow("quote alone") << "12\" vinyl" << "\"12\"\" vinyl\"";
        QTest::newRow("line feed") << "a\nb" << "\"a\nb\"";
        QTest::newRow("carriage return") << "a\rb" << "\"a\rb\"";
        QTest::newRow("comma kept") << "a, b" << "a, b";
        QTest::newRow("empty") << "" << "";
    }

    void quotingOnlyWhereNeeded()
    {
        QFETCH(QString, text);
        QFETCH(QString, field);
        QCOMPARE(ReportExporter::escape(text), field);
    }

    void secondsInTheirTwoForms_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("whole");
        QTest::addColumn<QString>("clock");
        QTest::newRow("59.9") << 59.9 << "59" << "00:01:00";
        QTest::newRow("59.6") << 59.6 << "59" << "00:01:00";
        QTest::newRow("3599.5") << 3599.5 << "3599" << "01:00:00";
        QTest::newRow("half rounds away from zero") << 0.5 << "0" << "00:00:01";
        QTest::newRow("-0.5") << -0.5 << "0" << "-00:00:01";
        QTest::newRow("90000 not wrapped") << 90000.0 << "90000" << "25:00:00";
        QTest::newRow("zero") << 0.0 << "0" << "00:00:00";
    }

    void secondsInTheirTwoForms()
    {
        QFETCH(double, seconds);
        QFETCH(QString, whole);
        QFETCH(QString, clock);
        QCOMPARE(ReportExporter::wholeSeconds(seconds), whole);
        QCOMPARE(ReportExporter::fmt(seconds), clock);
    }

    void theFileNameReplacesSlashesButKeepsColons()
    {
        TimerSession s;
        s.name = QStringLiteral("A/B");
        QCOMPARE(ReportExporter::fileName(s, generatedAt, paris),
                 QStringLiteral("Rapport_A-B_2026-11-21_23-15.csv"));
        s.name = QStringLiteral("10:00 Keynote");
        QCOMPARE(ReportExporter::fileName(s, generatedAt, paris),
                 QStringLiteral("Rapport_10:00 Keynote_2026-11-21_23-15.csv"));
    }

    void exportingWritesTheReportInDocuments()
    {
        TempHome home;
        ExportError error;
        const auto path = ReportExporter::exportCSV(fullShow(), fullLog, 12.9, &error);
        QVERIFY2(path, qPrintable(error.description));
        const QString folder = home.file(QStringLiteral("Documents/Kairon/Reports"));
        QCOMPARE(QFileInfo(*path).absolutePath(), folder);
        QVERIFY(QRegularExpression(QStringLiteral("^Rapport_Gala; « Lumière »_\\d{4}-\\d\\d-\\d\\d_\\d\\d-\\d\\d\\.csv$"))
                    .match(QFileInfo(*path).fileName()).hasMatch());
        QFile file(*path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        const QByteArray golden = readTestData(QStringLiteral("reports/report-full.csv"));
        // All but the last line, which carries the time of writing.
        const qsizetype lastLine = golden.lastIndexOf('\n', golden.size() - 2) + 1;
        QCOMPARE(written.left(lastLine), golden.left(lastLine));
        QVERIFY(QRegularExpression(QStringLiteral("^Généré par Kairon — Orv Audiovisual;\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ\n$"))
                    .match(QString::fromUtf8(written.mid(lastLine))).hasMatch());
        QVERIFY(!written.startsWith("\xEF\xBB\xBF"));
        QCOMPARE(QDir(folder).entryList(QDir::Files).size(), 1); // nothing left beside it
    }

    void anExportRemovesWhatInterruptedExportsLeftBehind()
    {
        TempHome home;
        const QString folder = home.file(QStringLiteral("Documents/Kairon/Reports"));
        QVERIFY(QDir().mkpath(folder));
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QStringList old{QStringLiteral("Rapport_Gala_2026-11-21_23-15.csv.aB3xYz"),
                              QStringLiteral("Rundown_Gala_2026-11-21_23-15.pdf.Q9w8E7")};
        const QStringList kept{QStringLiteral("Rapport_Gala_2026-11-21_23-16.csv.Zz1Yy2"),
                               QStringLiteral("Rapport_Gala.csv.abcdefg"),
                               QStringLiteral("photo.jpg.aB3xYz")};
        for (const QString &name : old + kept) {
            QFile f(QDir(folder).filePath(name));
            QVERIFY(f.open(QIODevice::WriteOnly));
            const bool young = name == kept.first(); // an export under way elsewhere
            QVERIFY(f.setFileTime(now.addSecs(young ? -30 : -120), QFileDevice::FileModificationTime));
        }
        const auto path = ReportExporter::exportCSV(fullShow(), fullLog, 12.9);
        QVERIFY(path);
        QStringList expected = kept;
        expected << QFileInfo(*path).fileName();
        expected.sort();
        QCOMPARE(QDir(folder).entryList(QDir::Files, QDir::Name), expected);
    }

    void aReportsFolderThatCannotBeMadeIsAnError()
    {
        TempHome home;
        home.blockWithAFile(QStringLiteral("Documents/Kairon/Reports"));
        ExportError error;
        QVERIFY(!ReportExporter::exportCSV(fullShow(), fullLog, 0, &error));
        QCOMPARE(error.domain, QStringLiteral("Kairon"));
        QVERIFY(error.description.startsWith(QStringLiteral("impossible de créer le dossier « ")));
    }
};

QTEST_GUILESS_MAIN(TestReportExporter)
#include "tst_reportexporter.moc"
