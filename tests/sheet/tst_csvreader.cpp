#include "csvreader.h"

#include "testdata.h"

#include <QTest>

namespace {

using Kind = SheetCell::Kind;

SheetCell text(const QString &value)
{
    return SheetCell{Kind::Text, value};
}

const SheetCell empty{};

QList<SheetCell> texts(const QStringList &values)
{
    QList<SheetCell> row;
    for (const QString &value : values)
        row.append(value.isEmpty() ? empty : text(value));
    return row;
}

QList<QList<SheetCell>> rowsOf(const QList<QStringList> &values)
{
    QList<QList<SheetCell>> rows;
    for (const QStringList &row : values)
        rows.append(texts(row));
    return rows;
}

SheetReadResult readUtf8(const QString &content)
{
    return CsvReader::read(content.toUtf8(), QStringLiteral("feuille"));
}

const QString notASpreadsheet = QStringLiteral(
    "Ce fichier n’est pas un tableur lisible (.xlsx, .ods, .csv ou .tsv).");

} // namespace

class TestCsvReader : public QObject
{
    Q_OBJECT

private slots:
    void readsFrenchExcelExport()
    {
        const SheetReadResult result = CsvReader::read(
            readTestData("sheets/conducteur-excel-fr.csv"), QStringLiteral("conducteur-excel-fr"));
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.sheetNames, QStringList{"conducteur-excel-fr"});
        QCOMPARE(result.table.sheetName, QStringLiteral("conducteur-excel-fr"));
        const auto &rows = result.table.rows;
        QCOMPARE(rows.size(), 13);
        QCOMPARE(rows[0], texts({"Gala des Lumières — conducteur"}));
        QCOMPARE(rows[1], QList<SheetCell>{});
        QCOMPARE(rows[2], texts({"N°", "Séquence", "Intervenant", "Durée", "Fin", "Couleur",
                                 "Notes", "Enchaînement"}));
        QCOMPARE(rows[3], texts({"1", "Accueil du public", "", "10:00", "", "Vert",
                                 "Ouverture des portes…", "non"}));
        QCOMPARE(rows[4], texts({"2", "Discours d’ouverture", "Claire Dubois", "1:05:00", "",
                                 "#3498db", "Micro HF 2\nPupitre \"côté jardin\"", "oui"}));
        QCOMPARE(rows[5], texts({"3", "Remise des prix", "Marc Lefèvre", "10 min", "",
                                 "Orange Orv", "Budget : 1 500 €", "x"}));
        QCOMPARE(rows[6], texts({"4", "Intermède musical", "Quatuor Éole", "1h30"}));
        QCOMPARE(rows[8], texts({"6", "Pause", "", "", "14h30", "Jaune",
                                 "Reprise à 14 h 30 précises"}));
        QCOMPARE(rows[12], texts({"10", "Cocktail", "", "45 min", "", "Violet", "Fin de soirée"}));
    }

    void readsUtf8WithByteOrderMarkAndCommas()
    {
        const SheetReadResult result = CsvReader::read(
            readTestData("sheets/conducteur-utf8-bom.csv"), QStringLiteral("conducteur-utf8-bom"));
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows,
                 rowsOf({{"Nom", "Intervenant", "Durée (min)", "Heure de fin", "Couleur", "Notes"},
                         {"🎤 Ouverture", "Claire Dubois", "10", "", "vert",
                          "Lumière tamisée, musique d’attente"},
                         {"Keynote", "Ana Müller", "2,5"},
                         {"Clôture", "", "", "22:15", "#ff2d78"}}));
    }

    void readsTabSeparatedText()
    {
        const SheetReadResult result =
            CsvReader::read(readTestData("sheets/conducteur.tsv"), QStringLiteral("conducteur"));
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows, rowsOf({{"Titre", "Durée", "Enchaînement"},
                                            {"Accueil", "5:00", "oui"},
                                            {"Discours", "12 min", "non"},
                                            {"Salut final", "1'30", "x"}}));
    }

    void readsExcelUnicodeText()
    {
        const SheetReadResult result = CsvReader::read(
            readTestData("sheets/conducteur-utf16.txt"), QStringLiteral("conducteur-utf16"));
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows,
                 rowsOf({{"Nom", "Intervenant", "Durée", "Fin", "Notes"},
                         {"Ouverture", "Claire Dubois", "00:10:00", "", "Micro HF 1\nPupitre"},
                         {"Remise des prix", "", "30 min"},
                         {"Clôture", "", "", "23:00"}}));
    }

    void readsUtf16BigEndian()
    {
        QByteArray bytes("\xFE\xFF");
        const QString content = QStringLiteral("Nom\tDurée\r\nÉté 🎤\t5\r\n");
        for (const QChar c : content) {
            bytes.append(char(c.unicode() >> 8));
            bytes.append(char(c.unicode() & 0xFF));
        }
        const SheetReadResult result = CsvReader::read(bytes, QStringLiteral("f"));
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows, rowsOf({{"Nom", "Durée"}, {"Été 🎤", "5"}}));
    }

    void findsTheSeparator_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QList<QStringList>>("expected");
        QTest::newRow("semicolons with decimal commas")
            << "Nom;Durée\nA;2,5\nB;1,5\nC;3\n"
            << QList<QStringList>{{"Nom", "Durée"}, {"A", "2,5"}, {"B", "1,5"}, {"C", "3"}};
        QTest::newRow("commas with semicolons quoted")
            << "Nom,Notes\nA,\"x;y\"\nB,\"1;2;3\"\n"
            << QList<QStringList>{{"Nom", "Notes"}, {"A", "x;y"}, {"B", "1;2;3"}};
        QTest::newRow("commas with a semicolon unquoted in one line")
            << "Nom,Durée,Notes\nA,5,x;y\nB,6,z\n"
            << QList<QStringList>{{"Nom", "Durée", "Notes"}, {"A", "5", "x;y"}, {"B", "6", "z"}};
        QTest::newRow("tabs with commas and semicolons in texts")
            << "Nom\tNotes\nA, B\tx;y\nC\t1,5\n"
            << QList<QStringList>{{"Nom", "Notes"}, {"A, B", "x;y"}, {"C", "1,5"}};
        QTest::newRow("a title line without separators")
            << "Conducteur du gala\nNom;Durée\nA;5\n"
            << QList<QStringList>{{"Conducteur du gala"}, {"Nom", "Durée"}, {"A", "5"}};
        QTest::newRow("a separator inside a quoted line break")
            << "Nom;Notes\n\"A\nB,C,D\";x\n"
            << QList<QStringList>{{"Nom", "Notes"}, {"A\nB,C,D", "x"}};
        QTest::newRow("a single column") << "Nom\nA\nB\n"
                                         << QList<QStringList>{{"Nom"}, {"A"}, {"B"}};
    }

    void findsTheSeparator()
    {
        QFETCH(QString, content);
        QFETCH(QList<QStringList>, expected);
        const SheetReadResult result = readUtf8(content);
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows, rowsOf(expected));
    }

    void endsLinesAtCrLfLfOrCr_data()
    {
        QTest::addColumn<QString>("content");
        QTest::newRow("LF") << "a;b\nc;d\n";
        QTest::newRow("CRLF") << "a;b\r\nc;d\r\n";
        QTest::newRow("CR") << "a;b\rc;d\r";
        QTest::newRow("mixed, no final line end") << "a;b\r\nc;d";
    }

    void endsLinesAtCrLfLfOrCr()
    {
        QFETCH(QString, content);
        QCOMPARE(readUtf8(content).table.rows, rowsOf({{"a", "b"}, {"c", "d"}}));
    }

    void readsQuotedFields_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QList<QStringList>>("expected");
        QTest::newRow("doubled quotes") << "\"dit \"\"bonjour\"\"\";x\n"
                                        << QList<QStringList>{{"dit \"bonjour\"", "x"}};
        QTest::newRow("line breaks inside become LF")
            << "\"a\r\nb\rc\nd\";x\r\ny;z\r\n"
            << QList<QStringList>{{"a\nb\nc\nd", "x"}, {"y", "z"}};
        QTest::newRow("separator inside") << "\"a;b\";c\n" << QList<QStringList>{{"a;b", "c"}};
        QTest::newRow("text after the closing quote is kept")
            << "\"a\"b;c\n" << QList<QStringList>{{"ab", "c"}};
        QTest::newRow("a quote inside an unquoted field is a character")
            << "5'30\";x\"y\n" << QList<QStringList>{{"5'30\"", "x\"y"}};
        QTest::newRow("a quoted empty field is empty") << "\"\";a;\"\"\n"
                                                       << QList<QStringList>{{"", "a"}};
        QTest::newRow("blanks are kept") << " a ; ;b\n" << QList<QStringList>{{" a ", " ", "b"}};
        QTest::newRow("an unterminated quote runs to the end")
            << "a;\"b\nc;d\ne\n" << QList<QStringList>{{"a", "b\nc;d\ne\n"}};
    }

    void readsQuotedFields()
    {
        QFETCH(QString, content);
        QFETCH(QList<QStringList>, expected);
        const SheetReadResult result = readUtf8(content);
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows, rowsOf(expected));
    }

    void trimsRowsAndTheTable()
    {
        const SheetReadResult result = readUtf8("\n;;\na;;b;;\n\n;;;\nc\n;;;\n\n");
        QVERIFY(result.ok());
        QCOMPARE(result.table.rows, rowsOf({{}, {}, {"a", "", "b"}, {}, {}, {"c"}}));
        QCOMPARE(result.table.rows[2].size(), 3);
    }

    void readsAnEmptyFileAsAnEmptySheet_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("byte order mark only") << QByteArray("\xEF\xBB\xBF");
        QTest::newRow("separators and line ends") << QByteArray(";;;\r\n\r\n;;\n");
    }

    void readsAnEmptyFileAsAnEmptySheet()
    {
        QFETCH(QByteArray, bytes);
        const SheetReadResult result = CsvReader::read(bytes, QStringLiteral("vide"));
        QVERIFY(result.ok());
        QCOMPARE(result.table.rows, QList<QList<SheetCell>>{});
        QCOMPARE(result.sheetNames, QStringList{"vide"});
    }

    void decodesWindows1252()
    {
        QByteArray bytes("Nom;");
        for (int code = 0x80; code < 0xA0; ++code)
            bytes.append(char(code));
        bytes.append("\xE9\xA0\xFF\r\n");
        const SheetReadResult result = CsvReader::read(bytes, QStringLiteral("f"));
        QVERIFY(result.ok());
        const QString expected = QString::fromUtf8(
            "€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F\u0090‘’“”•–—˜™š›œ\u009DžŸé\u00A0ÿ");
        QCOMPARE(result.table.rows, rowsOf({{"Nom", expected}}));
    }

    void readsInvalidUtf8AsWindows1252_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        QTest::newRow("accent inside") << QByteArray("Dur\xE9" "e;x") << "Durée";
        QTest::newRow("accent last") << QByteArray("x;caf\xE9") << "x";
        QTest::newRow("apostrophe beside valid UTF-8")
            << QByteArray("d\x92ouverture \xC3\xA9;x") << "d’ouverture Ã©";
    }

    void readsInvalidUtf8AsWindows1252()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        const SheetReadResult result = CsvReader::read(bytes, QStringLiteral("f"));
        QVERIFY(result.ok());
        QCOMPARE(result.table.rows.size(), 1);
        QCOMPARE(result.table.rows[0][0].text, expected);
        if (QTest::currentDataTag() == QByteArray("accent last"))
            QCOMPARE(result.table.rows[0][1].text, QStringLiteral("café"));
    }

    void refusesBinaryContent_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("NUL in text") << QByteArray("Nom;Durée\nA\0;5\n", 16);
        QTest::newRow("PNG header") << QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
        QTest::newRow("UTF-16 without a mark") << QByteArray("N\0o\0m\0", 6);
        QTest::newRow("NUL after a UTF-8 mark") << QByteArray("\xEF\xBB\xBF" "a\0b", 6);
        QTest::newRow("NUL character in UTF-16") << QByteArray("\xFF\xFE" "a\0\0\0b\0", 8);
    }

    void refusesBinaryContent()
    {
        QFETCH(QByteArray, bytes);
        const SheetReadResult result = CsvReader::read(bytes, QStringLiteral("f"));
        QCOMPARE(result.error, notASpreadsheet);
        QCOMPARE(result.table.rows, QList<QList<SheetCell>>{});
    }

    void keepsTheLastRowAndColumnAllowed()
    {
        QString content(SheetLimits::maxRows - 1, u'\n');
        content += QString(SheetLimits::maxColumns - 1, u';') + u'x' + QString(200, u';');
        content += QString(500, u'\n');
        const SheetReadResult result = readUtf8(content);
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows.size(), SheetLimits::maxRows);
        QCOMPARE(result.table.rows.last().size(), SheetLimits::maxColumns);
        QCOMPARE(result.table.rows.last().last(), text("x"));
    }

    void refusesTooManyRows_data()
    {
        QTest::addColumn<int>("lines");
        QTest::newRow("10 001") << 10'001;
        QTest::newRow("100 000") << 100'000;
    }

    void refusesTooManyRows()
    {
        QFETCH(int, lines);
        QString content;
        for (int line = 1; line <= lines; ++line)
            content += QStringLiteral("Cue %1;5\n").arg(line);
        const SheetReadResult result = readUtf8(content);
        QCOMPARE(result.error, QStringLiteral(
            "Cette feuille dépasse 10 000 lignes : Kairon n’en importe pas autant."));
        QCOMPARE(result.table.rows, QList<QList<SheetCell>>{});
    }

    void refusesTooManyColumns()
    {
        const SheetReadResult result =
            readUtf8(QStringLiteral("a;b\n") + QString(SheetLimits::maxColumns, u';') + u'z');
        QCOMPARE(result.error, QStringLiteral(
            "Cette feuille dépasse 64 colonnes : Kairon n’en importe pas autant."));
        QCOMPARE(result.table.rows, QList<QList<SheetCell>>{});
    }

    void refusesATooLongCell_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<QString>("error");
        const QString megabyte(1024 * 1024, u'a');
        QTest::newRow("1 MB in B7") << QString(6, u'\n') + QStringLiteral("x;") + megabyte + QStringLiteral(";y\n")
                                    << "La cellule B7 dépasse 32 767 caractères.";
        QTest::newRow("1 MB quoted in AB2")
            << u'\n' + QString(27, u',') + u'"' + megabyte + QStringLiteral("\",y\n")
            << "La cellule AB2 dépasse 32 767 caractères.";
        QTest::newRow("unterminated quote in A3")
            << QStringLiteral("a\nb\n\"") + megabyte
            << "La cellule A3 dépasse 32 767 caractères.";
        QTest::newRow("one character too many")
            << QStringLiteral("a;") + QString(SheetLimits::maxCellChars + 1, u'b')
            << "La cellule B1 dépasse 32 767 caractères.";
    }

    void refusesATooLongCell()
    {
        QFETCH(QString, content);
        QFETCH(QString, error);
        const SheetReadResult result = readUtf8(content);
        QCOMPARE(result.error, error);
        QCOMPARE(result.table.rows, QList<QList<SheetCell>>{});
    }

    void keepsACellOfTheLongestLength()
    {
        const QString longest(SheetLimits::maxCellChars, u'b');
        const SheetReadResult result = readUtf8(QStringLiteral("a;\"") + longest + u'"');
        QVERIFY2(result.ok(), qPrintable(result.error));
        QCOMPARE(result.table.rows, rowsOf({{"a", longest}}));
    }

    void refusesTooMuchText()
    {
        // 9 columns × 30 rows × 32 000 characters: 8 640 000, past 8 Mi characters.
        const QString cell(32'000, u'c');
        QStringList line;
        for (int column = 0; column < 9; ++column)
            line.append(cell);
        const QString row = line.join(u';') + u'\n';
        QString content;
        for (int index = 0; index < 30; ++index)
            content += row;
        const SheetReadResult result = readUtf8(content);
        QCOMPARE(result.error,
                 QStringLiteral("Les textes de cette feuille dépassent 8 millions de caractères."));
        QCOMPARE(result.table.rows, QList<QList<SheetCell>>{});

        // 8 Mi characters exactly are allowed.
        const QString exact = (QString(16'384, u'c') + u'\n').repeated(512);
        QVERIFY2(readUtf8(exact).ok(), qPrintable(readUtf8(exact).error));
    }
};

QTEST_GUILESS_MAIN(TestCsvReader)
#include "tst_csvreader.moc"
