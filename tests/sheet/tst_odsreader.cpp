#include "galaworkbook.h"
#include "odsreader.h"
#include "sheetbuilder.h"
#include "sheetserial.h"

#include <QBuffer>
#include <QFile>
#include <QTest>

using namespace Gala;

namespace {

const QString notReadable =
    QStringLiteral("Ce fichier n’est pas un tableur lisible (.xlsx, .ods, .csv ou .tsv).");
const QString tooManyRows =
    QStringLiteral("Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant.");

SheetReadResult readOds(const QByteArray &bytes, const std::optional<QString> &sheet = {})
{
    QBuffer buffer;
    buffer.setData(bytes);
    return OdsReader::read(buffer, sheet);
}

SheetReadResult readFile(const QString &name, const std::optional<QString> &sheet = {})
{
    QFile file(QStringLiteral(KAIRON_TEST_DATA "/sheets/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing test workbook %s", qPrintable(file.fileName()));
    return OdsReader::read(file, sheet);
}

QByteArray table(const QByteArray &name, const QByteArray &rows)
{
    const QByteArray columns = "<table:table-column table:number-columns-repeated=\"16384\"/>";
    return "<table:table table:name=\"" + name + "\">" + columns + rows + "</table:table>";
}

// A row of cells, each given as its attributes and content.
QByteArray row(const QList<std::pair<QByteArray, QByteArray>> &cells,
               const QByteArray &attributes = {})
{
    QByteArray xml = "<table:table-row" + attributes + ">";
    for (const auto &[cellAttributes, content] : cells)
        xml += "<table:table-cell " + cellAttributes + ">" + content + "</table:table-cell>";
    return xml + "</table:table-row>";
}

QByteArray paragraph(const QByteArray &text)
{
    return "<text:p>" + text + "</text:p>";
}

SheetCell plain(double value, bool isTime = false)
{
    return {SheetCell::Kind::Number, {}, value, isTime};
}

SheetCell boolean(bool value)
{
    return {SheetCell::Kind::Boolean, {}, value ? 1.0 : 0.0};
}

} // namespace

class TestOdsReader : public QObject
{
    Q_OBJECT

private slots:
    void readsTheGalaWorkbookOfLibreOffice()
    {
        const SheetReadResult read = readFile(QStringLiteral("conducteur-gala.ods"));
        QCOMPARE(read.error, QString());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
        QCOMPARE(read.table.sheetName, QStringLiteral("Conducteur"));
        // LibreOffice recalculated the Total row: PT03H21M04S.
        QVERIFY(sameRows(read.table.rows, conducteurRows(12064)));
    }

    void readsTheSecondSheetByName()
    {
        const SheetReadResult read =
            readFile(QStringLiteral("conducteur-gala.ods"), QStringLiteral("Technique"));
        QCOMPARE(read.error, QString());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
        QCOMPARE(read.table.sheetName, QStringLiteral("Technique"));
        QVERIFY(sameRows(read.table.rows, techniqueRows()));
    }

    void refusesASheetItDoesNotHave()
    {
        const SheetReadResult read =
            readFile(QStringLiteral("conducteur-gala.ods"), QStringLiteral("Régie"));
        QCOMPARE(read.error, QStringLiteral("Ce classeur n’a pas de feuille « Régie »."));
        QCOMPARE(read.table, SheetTable());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
    }

    void refusesAWorkbookWithAPassword()
    {
        const SheetReadResult read = readFile(QStringLiteral("protege.ods"));
        QCOMPARE(read.error,
                 QStringLiteral("Ce classeur est protégé par un mot de passe : "
                                "enregistrez-le sans mot de passe, puis importez-le."));
        QCOMPARE(read.table, SheetTable());
        QCOMPARE(read.sheetNames, QStringList());
    }

    void readsEveryKindOfValue()
    {
        const QByteArray type = "office:value-type=";
        const QByteArray rows =
            row({{type + "\"float\" office:value=\"1.5\"", paragraph("1,50")},
                 {type + "\"percentage\" office:value=\"0.15\"", paragraph("15 %")},
                 {type + "\"currency\" office:currency=\"EUR\" office:value=\"12.5\"",
                  paragraph("12,50 €")},
                 {type + "\"float\" office:value=\"600\"", paragraph("10 min")}, // shown as text
                 {type + "\"float\" office:value=\"abc\"", paragraph("12 min")}}) // unreadable
            + row({{type + "\"date\" office:date-value=\"2026-03-14\"", paragraph("14/03/2026")},
                   {type + "\"date\" office:date-value=\"2026-03-14T20:30:00\"", {}},
                   {type + "\"date\" office:date-value=\"1899-12-29T12:00:00\"", {}},
                   {type + "\"time\" office:time-value=\"PT01H30M00S\"", paragraph("01:30:00")},
                   {type + "\"time\" office:time-value=\"PT36H00M00S\"", {}},
                   {type + "\"time\" office:time-value=\"PT00H00M01.5S\"", {}},
                   {type + "\"time\" office:time-value=\"-PT00H30M00S\"", {}}})
            + row({{type + "\"boolean\" office:boolean-value=\"true\"", paragraph("VRAI")},
                   {type + "\"boolean\" office:boolean-value=\"false\"", paragraph("FAUX")},
                   {type + "\"float\" office:value=\"0\" calcext:value-type=\"error\"",
                    paragraph("#DIV/0!")},
                   {type + "\"string\" office:string-value=\"Valeur\"", paragraph("Affiché")},
                   {{}, paragraph("Sans type")},
                   {type + "\"string\"", paragraph({})},
                   {type + "\"void\"", {}}});
        const SheetReadResult read = readOds(odsOf(table("Valeurs", rows)));
        QCOMPARE(read.error, QString());
        QVERIFY(sameRows(
            read.table.rows,
            {{plain(1.5), plain(0.15), plain(12.5), plain(600), text("12 min")},
             {plain(46095, true), plain(46095 + 20.5 / 24, true), plain(-0.5, true), time(5400),
              time(129600), time(1.5), time(-1800)},
             {boolean(true), boolean(false), text("#DIV/0!"), text("Valeur"), text("Sans type")}}));
    }

    void readsTextsAsTheCellShowsThem()
    {
        const QByteArray content =
            "<office:annotation><dc:creator>Régie</dc:creator>"
            "<text:p>Un commentaire</text:p></office:annotation>"
            "<text:p>Début<text:s text:c=\"3\"/>fin<text:tab/>tab<text:line-break/>"
            "ligne <text:span text:style-name=\"T1\">en <text:span>gras</text:span></text:span>"
            " et <text:a xlink:href=\"https://example.org\">lien</text:a><text:s/>!</text:p>"
            "<text:p>Second   paragraphe\n  replié</text:p><text:p/>"
            "<text:p>Après une ligne vide<draw:frame><draw:image/></draw:frame></text:p>";
        const SheetReadResult read =
            readOds(odsOf(table("Textes", row({{"office:value-type=\"string\"", content}}))));
        QCOMPARE(read.error, QString());
        QVERIFY(sameRows(read.table.rows,
                         {{text("Début   fin\ttab\nligne en gras et lien !\n"
                                "Second paragraphe replié\n\nAprès une ligne vide")}}));
    }

    void expandsRepeatsOnlyWhereTheyHoldValues()
    {
        const QByteArray five = "office:value-type=\"float\" office:value=\"5\"";
        const QByteArray rows = "<table:table-header-rows>"
            + row({{"office:value-type=\"string\"", paragraph("En-tête")}})
            + "</table:table-header-rows><table:table-row-group><table:table-row-group>"
            + row({{"table:number-columns-repeated=\"2\" " + five, paragraph("5")},
                   {"table:number-columns-repeated=\"3\"", {}},
                   {"office:value-type=\"string\"", paragraph("x")},
                   {"table:number-columns-repeated=\"16378\"", {}}},
                  " table:number-rows-repeated=\"2\"")
            + "</table:table-row-group></table:table-row-group><table:table-rows>"
              "<table:table-row><table:table-cell table:number-columns-spanned=\"100\""
              " table:number-rows-spanned=\"2\" "
              "office:value-type=\"string\"><text:p>Fusion</text:p>"
              "</table:table-cell><table:covered-table-cell table:number-columns-repeated=\"99\"/>"
              "</table:table-row><table:table-row>"
              "<table:covered-table-cell table:number-columns-repeated=\"100\"/></table:table-row>"
              "</table:table-rows>"
              "<table:table-row table:number-rows-repeated=\"1048570\">"
              "<table:table-cell table:number-columns-repeated=\"16384\"/></table:table-row>";
        const SheetReadResult read = readOds(odsOf(table("Répétitions", rows)));
        QCOMPARE(read.error, QString());
        // The merge's covered cells stop at the last column and row holding a value.
        QVERIFY(
            sameRows(read.table.rows,
                     {{text("En-tête")},
                      {plain(5), plain(5), empty, empty, empty, text("x")},
                      {plain(5), plain(5), empty, empty, empty, text("x")},
                      {text("Fusion"), covered(), covered(), covered(), covered(), covered()}}));
    }

    void namesEverySheetAndReadsOnlyOne()
    {
        const QByteArray body =
            table("Avant", row({{"office:value-type=\"string\"", paragraph("avant")}}))
            + table("Trop",
                    row({{"office:value-type=\"float\" office:value=\"1\"", {}}},
                        " table:number-rows-repeated=\"20000\""))
            + table("Conducteur", row({{"office:value-type=\"string\"", paragraph("lu")}}));
        const QStringList names{"Avant", "Trop", "Conducteur"};
        const SheetReadResult first = readOds(odsOf(body));
        QCOMPARE(first.error, QString());
        QCOMPARE(first.sheetNames, names);
        QVERIFY(sameRows(first.table.rows, {{text("avant")}}));

        const SheetReadResult second = readOds(odsOf(body), QStringLiteral("Conducteur"));
        QCOMPARE(second.error, QString());
        QCOMPARE(second.table.sheetName, QStringLiteral("Conducteur"));
        QVERIFY(sameRows(second.table.rows, {{text("lu")}}));

        // The sheet of too many rows is refused, the sheets after it still named.
        const SheetReadResult third = readOds(odsOf(body), QStringLiteral("Trop"));
        QCOMPARE(third.error, tooManyRows);
        QCOMPARE(third.sheetNames, names);
        QCOMPARE(third.table, SheetTable());
    }

    void holdsTheLimitsOnValuesOnly_data()
    {
        QTest::addColumn<QByteArray>("rows");
        QTest::addColumn<QString>("error");
        const QByteArray one = "office:value-type=\"float\" office:value=\"1\"";
        QTest::newRow("10 000 lines")
            << row({{one, {}}}, " table:number-rows-repeated=\"10000\"") << QString();
        QTest::newRow("10 001 lines")
            << row({{one, {}}}, " table:number-rows-repeated=\"10001\"") << tooManyRows;
        QTest::newRow("64 columns")
            << row({{"table:number-columns-repeated=\"64\" " + one, {}}}) << QString();
        QTest::newRow("65 columns")
            << row({{"table:number-columns-repeated=\"65\" " + one, {}}})
            << QStringLiteral(
                   "Cette feuille dépasse 64 colonnes : Kairon n’en importe pas autant.");
        QTest::newRow("a billion spaces in B7")
            << QByteArray("<table:table-row "
                          "table:number-rows-repeated=\"6\"><table:table-cell/></table:table-row>"
                          + row({{{}, {}},
                                 {"office:value-type=\"string\"",
                                  paragraph("<text:s text:c=\"1000000000\"/>")}}))
            << QStringLiteral("La cellule B7 dépasse 32 767 caractères.");
        QTest::newRow("a long text on 300 lines")
            << row({{"office:value-type=\"string\"", paragraph(QByteArray(30'000, 'a'))}},
                   " table:number-rows-repeated=\"300\"")
            << QStringLiteral("Les textes de cette feuille dépassent 8 millions de caractères.");
    }

    void holdsTheLimitsOnValuesOnly()
    {
        QFETCH(QByteArray, rows);
        QFETCH(QString, error);
        const SheetReadResult read = readOds(odsOf(table("Feuille1", rows)));
        QCOMPARE(read.error, error);
        QCOMPARE(read.sheetNames, QStringList{"Feuille1"});
        if (error.isEmpty())
            QVERIFY(!read.table.rows.isEmpty() && !read.table.rows.last().isEmpty());
        else
            QCOMPARE(read.table, SheetTable());
    }

    void refusesWhatIsNotASpreadsheet_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        QTest::newRow("not a zip") << QByteArray("Séquence\tDurée\n") << notReadable;
        QTest::newRow("no content")
            << zipOf({{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"}})
            << notReadable;
        QTest::newRow("content that is not XML")
            << odsOf("<table:table table:name=\"A\">") << notReadable;
        QTest::newRow("a text document's table") << zipOf(
            {{"content.xml",
              "<office:document-content "
              "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\""
              " xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\"><office:body>"
              "<office:text><table:table table:name=\"Tableau1\"/></office:text>"
              "</office:body></office:document-content>"}})
                                                 << notReadable;
        QTest::newRow("an encrypted manifest")
            << odsOf(table("A", {}),
                     "<manifest:manifest "
                     "xmlns:manifest=\"urn:oasis:names:tc:opendocument:xmlns:manifest:1.0\">"
                     "<manifest:file-entry "
                     "manifest:full-path=\"content.xml\"><manifest:encryption-data/>"
                     "</manifest:file-entry></manifest:manifest>")
            << QStringLiteral(
                   "Ce classeur est protégé par un mot de passe : enregistrez-le sans mot "
                   "de passe, puis importez-le.");
    }

    void refusesWhatIsNotASpreadsheet()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        const SheetReadResult read = readOds(bytes);
        QCOMPARE(read.error, error);
        QCOMPARE(read.table, SheetTable());
        QCOMPARE(read.sheetNames, QStringList());
    }

    void readsDatesAsSerialDays_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("serial");
        QTest::newRow("day 0") << "1899-12-30" << 0.0;
        QTest::newRow("a date") << "2026-03-14" << 46095.0;
        QTest::newRow("with its time") << "2026-03-14T20:30:00" << 46095 + 20.5 / 24;
        QTest::newRow("fractional seconds") << "2026-03-14T00:00:01.25" << 46095 + 1.25 / 86400;
        QTest::newRow("a zone left out") << "2026-03-14T20:30:00Z" << 46095 + 20.5 / 24;
        QTest::newRow("an offset left out") << "2026-03-14T20:30:00+01:00" << 46095 + 20.5 / 24;
        QTest::newRow("before day 0") << "1899-12-29T18:00:00" << -1 + 0.75;
    }

    void readsDatesAsSerialDays()
    {
        QFETCH(QString, text);
        QFETCH(double, serial);
        const std::optional<double> read = SheetSerial::fromDateTime(text);
        QVERIFY(read);
        QVERIFY2(std::abs(*read - serial) < 1e-12, qPrintable(QString::number(*read, 'g', 17)));
    }

    void readsDurationsAsSerialDays_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("seconds");
        QTest::newRow("LibreOffice's") << "PT01H30M00S" << 5400.0;
        QTest::newRow("past a day") << "PT36H00M00S" << 129600.0;
        QTest::newRow("days") << "P1DT2H" << 93600.0;
        QTest::newRow("empty years and months") << "P0Y0M0DT0H1M0S" << 60.0;
        QTest::newRow("fractional seconds") << "PT0.5S" << 0.5;
        QTest::newRow("negative") << "-PT1M" << -60.0;
    }

    void readsDurationsAsSerialDays()
    {
        QFETCH(QString, text);
        QFETCH(double, seconds);
        const std::optional<double> read = SheetSerial::fromDuration(text);
        QVERIFY(read);
        QVERIFY2(std::abs(*read * 86400 - seconds) < 1e-9,
                 qPrintable(QString::number(*read, 'g', 17)));
    }

    void refusesWhatIsNeitherDateNorDuration()
    {
        for (const char *text : {"", "2026-3-14", "2026-02-30", "14/03/2026", "2026-03-14T25:00:00",
                                 "2026-03-14T20:30:00 heure", "2026-03-14T20"})
            QVERIFY2(!SheetSerial::fromDateTime(QString::fromUtf8(text)), text);
        for (const char *text :
             {"", "P", "PT", "T1H", "P1M", "P1Y", "PT1D", "P1H", "PT1H30", "PTxS"})
            QVERIFY2(!SheetSerial::fromDuration(QString::fromUtf8(text)), text);
    }
};

QTEST_GUILESS_MAIN(TestOdsReader)
#include "tst_odsreader.moc"
