#include "galaworkbook.h"
#include "sheetbuilder.h"
#include "testdata.h"
#include "xlsxreader.h"

#include <QBuffer>
#include <QFile>
#include <QTest>



using namespace Gala;

namespace {

const QString notReadable =
    QStringLiteral("Ce fichier n’est pas un tableur lisible (.xlsx, .ods, .csv ou .tsv).");

SheetReadResult readXlsx(const QByteArray &bytes, const std::optional<QString> &sheet = {})
{
    QBuffer buffer;
    buffer.setData(bytes);
    return XlsxReader::read(buffer, sheet);
}

SheetReadResult readFile(const QString &name, const std::optional<QString> &sheet = {})
{
    QFile file(QStringLiteral(KAIRON_TEST_DATA "/sheets/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing test workbook %s", qPrintable(file.fileName()));
    return XlsxReader::read(file, sheet);
}

// One sheet "Feuille1" of this sheetData.
QByteArray oneSheet(const QByteArray &sheetData, const QByteArray &after = {})
{
    return XlsxBuilder()
        .sheet("Feuille1", "<sheetData>" + sheetData + "</sheetData>" + after)
        .bytes();
}

QByteArray inlineCell(const QByteArray &reference, const QByteArray &text)
{
    return "<c r=\"" + reference + "\" t=\"inlineStr\"><is><t>" + text + "</t></is></c>";
}

SheetCell boolean(bool value)
{
    return {SheetCell::Kind::Boolean, {}, value ? 1.0 : 0.0};
}

SheetCell plain(double value, bool isTime = false)
{
    return {SheetCell::Kind::Number, {}, value, isTime};
}

} // namespace

class TestXlsxReader : public QObject
{
    Q_OBJECT

private slots:
    void readsTheGalaWorkbookOfOpenpyxl()
    {
        const SheetReadResult read = readFile(QStringLiteral("conducteur-gala.xlsx"));
        QCOMPARE(read.error, QString());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
        QCOMPARE(read.table.sheetName, QStringLiteral("Conducteur"));
        // openpyxl writes the Total formula without a cached value: the cell is empty.
        QVERIFY(sameRows(read.table.rows, conducteurRows(std::nullopt)));
    }

    void readsTheGalaWorkbookOfLibreOffice()
    {
        const SheetReadResult read = readFile(QStringLiteral("conducteur-gala-libreoffice.xlsx"));
        QCOMPARE(read.error, QString());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
        QVERIFY(sameRows(read.table.rows, conducteurRows(12064)));
        QCOMPARE(read.table.rows[20][3].number, 0.13962962962963); // as LibreOffice cached it
    }

    void readsTheSecondSheetByName_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("openpyxl") << "conducteur-gala.xlsx";
        QTest::newRow("LibreOffice") << "conducteur-gala-libreoffice.xlsx";
    }

    void readsTheSecondSheetByName()
    {
        QFETCH(QString, file);
        const SheetReadResult read = readFile(file, QStringLiteral("Technique"));
        QCOMPARE(read.error, QString());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
        QCOMPARE(read.table.sheetName, QStringLiteral("Technique"));
        QVERIFY(sameRows(read.table.rows, techniqueRows()));
    }

    void refusesASheetItDoesNotHave()
    {
        const SheetReadResult read =
            readFile(QStringLiteral("conducteur-gala.xlsx"), QStringLiteral("technique"));
        QCOMPARE(read.error, QStringLiteral("Ce classeur n’a pas de feuille « technique »."));
        QCOMPARE(read.table, SheetTable());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
    }

    void movesTheDatesOfThe1904SystemOnly()
    {
        const SheetReadResult read = readFile(QStringLiteral("calendrier-1904.xlsx"));
        QCOMPARE(read.error, QString());
        QVERIFY(sameRows(read.table.rows,
                         {{text("Date"), plain(46095, true)},
                          {text("Heure"), clock(20, 30)},
                          {text("Début"), plain(46095 + 20.5 / 24, true)},
                          {text("Durée"), time(2700)}}));

        // The same from parts written here: a date style moves, a time style and a plain
        // number do not.
        const QByteArray styles = "<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"14\"/>"
                                  "<xf numFmtId=\"20\"/></cellXfs>";
        const SheetReadResult built =
            readXlsx(XlsxBuilder()
                         .date1904()
                         .styles(styles)
                         .sheet("Feuille1",
                                "<sheetData><row r=\"1\"><c r=\"A1\" s=\"1\"><v>0</v></c>"
                                "<c r=\"B1\" s=\"2\"><v>0.5</v></c><c r=\"C1\"><v>5</v></c>"
                                "</row></sheetData>")
                         .bytes());
        QVERIFY(sameRows(built.table.rows, {{plain(1462, true), plain(0.5, true), plain(5)}}));
    }

    void readsEveryKindOfCell()
    {
        const QByteArray strings =
            "<si><t>Simple</t></si>"
            "<si><r><rPr><b/></rPr><t>Riche </t></r><r><t xml:space=\"preserve\">en runs</t></r>"
            "<rPh sb=\"0\" eb=\"1\"><t>フリガナ</t></rPh><phoneticPr fontId=\"1\"/></si>"
            "<si><t>Ligne 1_x000D_\nLigne 2\r\nLigne 3</t></si>"
            "<si><t>_x005F_x0041_ et _x0041_</t></si>";
        const QByteArray data =
            "<row r=\"1\">"
            "<c r=\"A1\" t=\"s\"><v>0</v></c>"
            "<c r=\"B1\" t=\"s\"><v>1</v></c>"
            "<c r=\"C1\" t=\"s\"><v>2</v></c>"
            "<c r=\"D1\" t=\"s\"><v>3</v></c>"
            "<c r=\"E1\" t=\"s\"><v>99</v></c>" // no such shared string
            "<c r=\"F1\" t=\"inlineStr\"><is><r><t>En </t></r><r><t>ligne</t></r></is></c>"
            "<c r=\"G1\" t=\"str\"><f>A1&amp;\"!\"</f><v>Simple!</v></c>"
            "<c r=\"H1\" t=\"b\"><v>1</v></c>"
            "<c r=\"I1\" t=\"b\"><v>0</v></c>"
            "<c r=\"J1\" t=\"e\"><f>1/0</f><v>#DIV/0!</v></c>"
            "<c r=\"K1\" t=\"n\"><v>-2.5E-3</v></c>"
            "<c r=\"L1\"><v>42</v></c>"
            "<c r=\"M1\"><f>L1*2</f></c>" // a formula never computed
            "<c r=\"N1\"><f>L1*2</f><v>84</v></c>"
            "<c r=\"O1\" t=\"d\"><v>2026-03-14T20:30:00</v></c>"
            "<c r=\"P1\" t=\"str\"><v></v></c>"
            "<c r=\"Q1\" s=\"3\"/>" // styled, empty
            "</row>";
        const SheetReadResult read =
            readXlsx(XlsxBuilder()
                         .sharedStrings(strings)
                         .sheet("Feuille1", "<sheetData>" + data + "</sheetData>")
                         .bytes());
        QCOMPARE(read.error, QString());
        QVERIFY(sameRows(read.table.rows,
                         {{text("Simple"), text("Riche en runs"), text("Ligne 1\nLigne 2\nLigne 3"),
                           text("_x0041_ et A"), empty, text("En ligne"), text("Simple!"),
                           boolean(true), boolean(false), text("#DIV/0!"), plain(-0.0025),
                           plain(42), empty, plain(84), plain(46095 + 20.5 / 24, true)}}));
    }

    void placesCellsWithoutReferenceAfterThePreviousOne()
    {
        const SheetReadResult read =
            readXlsx(oneSheet("<row><c><v>1</v></c><c><v>2</v></c></row>"
                              "<row r=\"4\"><c r=\"C4\"><v>3</v></c><c><v>4</v></c></row>"
                              "<row><c r=\"$B$5\"><v>5</v></c></row>"));
        QCOMPARE(read.error, QString());
        QVERIFY(sameRows(
            read.table.rows,
            {{plain(1), plain(2)}, {}, {}, {empty, empty, plain(3), plain(4)}, {empty, plain(5)}}));
    }

    void readsNumbersAsTheirCellStylesShowThem()
    {
        // Styles 1 and 4 show a duration; 2 shows minutes as text, 3 a built-in date made a
        // plain number by the workbook.
        const QByteArray styles =
            "<numFmts count=\"3\"><numFmt numFmtId=\"164\" formatCode=\"[h]:mm:ss\"/>"
            "<numFmt numFmtId=\"165\" formatCode=\"0.0&quot; min&quot;\"/>"
            "<numFmt numFmtId=\"14\" formatCode=\"0.00\"/></numFmts>" // a built-in redefined
            "<cellStyleXfs><xf numFmtId=\"21\"/><xf numFmtId=\"21\"/></cellStyleXfs>"
            "<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"164\"><alignment/></xf>"
            "<xf numFmtId=\"165\"/><xf numFmtId=\"14\"/><xf numFmtId=\"46\"/></cellXfs>";
        QByteArray cells = "<row r=\"1\">";
        for (int style = 0; style <= 5; ++style) // style 5 does not exist
            cells += "<c s=\"" + QByteArray::number(style) + "\"><v>0.5</v></c>";
        const SheetReadResult read =
            readXlsx(XlsxBuilder()
                         .styles(styles)
                         .sheet("Feuille1", "<sheetData>" + cells + "</row></sheetData>")
                         .bytes());
        QVERIFY(sameRows(read.table.rows,
                         {{plain(0.5), plain(0.5, true), plain(0.5), plain(0.5), plain(0.5, true),
                           plain(0.5)}}));
    }

    void findsSheetsThroughAbsoluteAndRelativeTargets()
    {
        const QByteArray data =
            "<sheetData><row r=\"1\"><c r=\"A1\"><v>7</v></c></row></sheetData>";
        const SheetReadResult absolute =
            readXlsx(XlsxBuilder().sheet("Feuille1", data).absoluteTargets().bytes());
        QCOMPARE(absolute.error, QString());
        QVERIFY(sameRows(absolute.table.rows, {{plain(7)}}));

        // A target with "." and "..", escaped as a URI, and a part name of another case.
        const QByteArray relationships =
            "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
            "<Relationship Id=\"rId1\" Type=\"http://schemas.openxmlformats.org/officeDocument/"
            "2006/relationships/worksheet\" Target=\"./feuilles/../Feuilles/Ma%20feuille.xml\"/>"
            "</Relationships>";
        const SheetReadResult relative =
            readXlsx(XlsxBuilder()
                         .sheet("Feuille1", data)
                         .part("xl/_rels/workbook.xml.rels", relationships)
                         .part("xl/worksheets/sheet1.xml", {})
                         .part("xl/feuilles/ma feuille.xml",
                               "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/"
                               "2006/main\">"
                                   + data + "</worksheet>")
                         .bytes());
        QCOMPARE(relative.error, QString());
        QVERIFY(sameRows(relative.table.rows, {{plain(7)}}));
    }

    void coversMergedCellsWithinTheValues()
    {
        // A1:B2 covers three cells, hiding the value in B2; C3:Z100 reaches past the last row
        // and column that hold a value, so it covers D3 only; D2:C2, written backwards, covers
        // D2; a single cell merges nothing.
        const SheetReadResult read =
            readXlsx(oneSheet("<row r=\"1\">" + inlineCell("A1", "Titre")
                                  + "<c r=\"D1\"><v>4</v></c></row>"
                                    "<row r=\"2\"><c r=\"B2\"><v>9</v></c></row>"
                                    "<row r=\"3\"><c r=\"C3\"><v>3</v></c></row>",
                              "<mergeCells><mergeCell ref=\"A1:B2\"/><mergeCell ref=\"C3:Z100\"/>"
                              "<mergeCell ref=\"D2:C2\"/><mergeCell ref=\"E9\"/></mergeCells>"));
        QCOMPARE(read.error, QString());
        QVERIFY(sameRows(read.table.rows,
                         {{text("Titre"), covered(), empty, plain(4)},
                          {covered(), covered(), empty, covered()},
                          {empty, empty, plain(3), covered()}}));
    }

    void holdsTheLimitsOnValuesOnly_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("error");
        const QByteArray farRow = "<row r=\"1\"><c r=\"A1\"><v>1</v></c></row>";
        QTest::newRow("a value on line 10 000")
            << QByteArray(farRow + "<row r=\"10000\"><c r=\"A10000\"><v>1</v></c></row>")
            << QString();
        QTest::newRow("a value on line 10 001")
            << QByteArray(farRow + "<row r=\"10001\"><c r=\"A10001\"><v>1</v></c></row>")
            << QStringLiteral(
                   "Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant.");
        QTest::newRow("a shared string on line 10 001")
            << QByteArray(farRow + "<row r=\"10001\"><c r=\"A10001\" t=\"s\"><v>0</v></c></row>")
            << QStringLiteral(
                   "Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant.");
        QTest::newRow("styled cells far away")
            << QByteArray(farRow + "<row r=\"1048576\" s=\"1\"><c r=\"XFD1048576\" s=\"1\"/></row>")
            << QString();
        QTest::newRow("a value in column 64")
            << QByteArray("<row r=\"1\"><c r=\"BL1\"><v>1</v></c></row>") << QString();
        QTest::newRow("a value in column 65")
            << QByteArray("<row r=\"1\"><c r=\"BM1\"><v>1</v></c></row>")
            << QStringLiteral(
                   "Cette feuille dépasse 64 colonnes : Kairon n’en importe pas autant.");
        QTest::newRow("a cell of 32 767 characters")
            << QByteArray("<row r=\"7\">" + inlineCell("B7", QByteArray(32767, 'a')) + "</row>")
            << QString();
        QTest::newRow("a cell of 1 MB")
            << QByteArray("<row r=\"7\">" + inlineCell("B7", QByteArray(1'000'000, 'a')) + "</row>")
            << QStringLiteral("La cellule B7 dépasse 32 767 caractères.");
        QTest::newRow("a shared string of 1 MB")
            << QByteArray("<row r=\"9\"><c r=\"AC9\" t=\"s\"><v>1</v></c></row>")
            << QStringLiteral("La cellule AC9 dépasse 32 767 caractères.");
        QByteArray copies;
        for (int row = 1; row <= 300; ++row)
            copies += "<row r=\"" + QByteArray::number(row) + "\"><c t=\"s\"><v>2</v></c></row>";
        QTest::newRow("one text shown 300 times")
            << copies
            << QStringLiteral("Les textes de cette feuille dépassent 8 millions de caractères.");
        QByteArray hundredThousand;
        for (int row = 1; row <= 100'000; ++row)
            hundredThousand += "<row><c><v>" + QByteArray::number(row) + "</v></c></row>";
        QTest::newRow("100 000 rows")
            << hundredThousand
            << QStringLiteral(
                   "Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant.");
    }

    void holdsTheLimitsOnValuesOnly()
    {
        QFETCH(QByteArray, data);
        QFETCH(QString, error);
        const QByteArray strings = "<si><t>court</t></si><si><t>" + QByteArray(1'000'000, 'b')
            + "</t></si><si><t>" + QByteArray(30'000, 'c') + "</t></si>";
        const SheetReadResult read =
            readXlsx(XlsxBuilder()
                         .sharedStrings(strings)
                         .sheet("Feuille1", "<sheetData>" + data + "</sheetData>")
                         .bytes());
        QCOMPARE(read.error, error);
        QCOMPARE(read.sheetNames, QStringList{"Feuille1"});
        if (error.isEmpty())
            QVERIFY(!read.table.rows.isEmpty() && !read.table.rows.last().isEmpty());
        else
            QCOMPARE(read.table, SheetTable());
    }

    void refusesWhatIsNotAWorkbook_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        const QByteArray data =
            "<sheetData><row r=\"1\"><c r=\"A1\"><v>1</v></c></row></sheetData>";
        QTest::newRow("not a zip") << QByteArray("N°;Séquence\n1;Accueil\n") << notReadable;
        QTest::newRow("a zip of something else")
            << zipOf({{"word/document.xml", "<document/>"}}) << notReadable;
        QTest::newRow("a workbook that is not XML")
            << XlsxBuilder()
                   .sheet("Feuille1", data)
                   .part("xl/workbook.xml", "<workbook><sheets>")
                   .bytes()
            << notReadable;
        QTest::newRow("a workbook without sheets")
            << XlsxBuilder().part("xl/workbook.xml", "<workbook><sheets/></workbook>").bytes()
            << notReadable;
        QTest::newRow("a sheet part missing")
            << XlsxBuilder().sheet("Feuille1", data).part("xl/worksheets/sheet1.xml", {}).bytes()
            << notReadable;
        QTest::newRow("a sheet that is not XML")
            << XlsxBuilder().sheet("Feuille1", "<sheetData><row><c><v>1</v></row>").bytes()
            << notReadable;
        QTest::newRow("shared strings that are not XML")
            << XlsxBuilder()
                   .sheet("Feuille1", "<sheetData><row><c t=\"s\"><v>0</v></c></row></sheetData>")
                   .sharedStrings("<si><t>a</si>")
                   .bytes()
            << notReadable;
        QTest::newRow("the bomb") << readTestData("sheets/bombe.xlsx")
                                  << QStringLiteral(
                                         "Ce classeur est trop volumineux : une de ses parties "
                                         "dépasse 50 Mo une fois décompressée.");
    }

    void refusesWhatIsNotAWorkbook()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        const SheetReadResult read = readXlsx(bytes);
        QCOMPARE(read.error, error);
        QCOMPARE(read.table, SheetTable());
        QCOMPARE(read.sheetNames, QStringList());
    }

    void readsTwoThousandRows()
    {
        QByteArray strings;
        QByteArray data;
        for (int row = 1; row <= 2000; ++row) {
            const QByteArray number = QByteArray::number(row);
            strings += "<si><t>Séquence " + number + "</t></si>";
            data += "<row r=\"" + number + "\"><c r=\"A" + number + "\"><v>" + number
                + "</v></c><c r=\"B" + number + "\" t=\"s\"><v>" + QByteArray::number(row - 1)
                + "</v></c>" + inlineCell("C" + number, "Claire Dubois") + "<c r=\"D" + number
                + "\" s=\"1\"><v>0.003472222222222222</v></c>" + "<c r=\"E" + number
                + "\" s=\"1\"><v>0.8125</v></c>" + inlineCell("G" + number, "Orange Orv")
                + inlineCell("H" + number, "Pupitre côté jardin") + inlineCell("I" + number, "oui")
                + "</row>";
        }
        const QByteArray bytes =
            XlsxBuilder()
                .styles("<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"46\"/></cellXfs>")
                .sharedStrings(strings)
                .sheet("Conducteur", "<sheetData>" + data + "</sheetData>")
                .bytes();
        const SheetReadResult read = readXlsx(bytes);
        QCOMPARE(read.error, QString());
        QCOMPARE(read.table.rows.size(), 2000);
        QCOMPARE(read.table.rows[1999][1], text("Séquence 2000"));
    }
};

QTEST_GUILESS_MAIN(TestXlsxReader)
#include "tst_xlsxreader.moc"
