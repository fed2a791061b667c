#include "galaworkbook.h"
#include "sheetbuilder.h"
#include "sheetfile.h"
#include "testdata.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

using namespace Gala;

namespace {

const QString notReadable =
    QStringLiteral("Ce fichier n’est pas un tableur lisible (.xlsx, .ods, .csv ou .tsv).");
const QString passwordProtected = QStringLiteral(
    "Ce classeur est protégé par un mot de passe : enregistrez-le sans mot de passe, puis "
    "importez-le.");
const QString oldExcel = QStringLiteral(
    "Ce classeur est au format Excel 97–2003 (.xls) : enregistrez-le au format .xlsx, puis "
    "importez-le.");

QString dataPath(const QString &name)
{
    return QStringLiteral(KAIRON_TEST_DATA "/sheets/") + name;
}

// An OLE compound file of 512-byte sectors: sector 0 the allocation table, sector 1 the
// directory (four entries, the first the root), sector 2 data, and sector 3 the directory's
// second sector when there are more than four names.
QByteArray compoundFile(const QStringList &names, const QByteArray &data = {})
{
    QByteArray file(512 * 5, '\0');
    const auto put16 = [&file](qsizetype at, quint16 value) {
        qToLittleEndian(value, file.data() + at);
    };
    const auto put32 = [&file](qsizetype at, quint32 value) {
        qToLittleEndian(value, file.data() + at);
    };
    file.replace(0, 8, QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8));
    put16(0x18, 0x3E);
    put16(0x1A, 3);
    put16(0x1C, 0xFFFE);
    put16(0x1E, 9);
    put16(0x20, 6);
    put32(0x2C, 1); // one sector of allocation table...
    put32(0x4C, 0); // ...sector 0
    for (int index = 1; index < 109; ++index)
        put32(0x4C + 4 * index, 0xFFFFFFFF);
    put32(0x30, 1); // the directory starts in sector 1
    put32(0x38, 4096);
    put32(0x3C, 0xFFFFFFFE); // no mini stream table
    put32(0x44, 0xFFFFFFFE); // no more allocation table sectors
    const qsizetype table = 512;
    for (int sector = 0; sector < 128; ++sector)
        put32(table + 4 * sector, 0xFFFFFFFF);
    put32(table, 0xFFFFFFFD); // sector 0: the table itself
    put32(table + 4, names.size() > 4 ? 3 : 0xFFFFFFFE); // sector 1: directory, then 3
    put32(table + 8, 0xFFFFFFFE); // sector 2: data
    put32(table + 12, 0xFFFFFFFE); // sector 3: directory's end
    for (qsizetype index = 0; index < names.size() && index < 8; ++index) {
        const qsizetype entry = (index < 4 ? 1024 : 2048 - 512) + 128 * index;
        const QString &name = names[index];
        for (qsizetype at = 0; at < name.size(); ++at)
            put16(entry + 2 * at, name[at].unicode());
        put16(entry + 64, quint16((name.size() + 1) * 2));
        file[entry + 66] = index == 0 ? 5 : 2; // the root, then streams
    }
    file.replace(1536, data.size(), data);
    return file;
}

QByteArray utf16(const QString &text)
{
    return QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
}

} // namespace

class TestSheetFile : public QObject
{
    Q_OBJECT

private slots:
    void readsTheGalaWorkbooks_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<double>("total");
        QTest::newRow("openpyxl") << "conducteur-gala.xlsx" << -1.0;
        QTest::newRow("LibreOffice xlsx") << "conducteur-gala-libreoffice.xlsx" << 12064.0;
        QTest::newRow("LibreOffice ods") << "conducteur-gala.ods" << 12064.0;
    }

    void readsTheGalaWorkbooks()
    {
        QFETCH(QString, file);
        QFETCH(double, total);
        const SheetReadResult read = SheetFile::read(dataPath(file));
        QCOMPARE(read.error, QString());
        QCOMPARE(read.sheetNames, (QStringList{"Conducteur", "Technique"}));
        QCOMPARE(read.table.sheetName, QStringLiteral("Conducteur"));
        QVERIFY(sameRows(read.table.rows,
                         conducteurRows(total < 0 ? std::nullopt : std::optional(total))));

        const SheetReadResult technique =
            SheetFile::read(dataPath(file), QStringLiteral("Technique"));
        QCOMPARE(technique.error, QString());
        QCOMPARE(technique.table.sheetName, QStringLiteral("Technique"));
        QVERIFY(sameRows(technique.table.rows, techniqueRows()));
    }

    void decidesByContentNotByName()
    {
        const SheetReadResult xlsx =
            SheetFile::readBytes(readTestData("sheets/conducteur-gala.xlsx"), "conducteur.ods");
        QCOMPARE(xlsx.error, QString());
        QVERIFY(sameRows(xlsx.table.rows, conducteurRows(std::nullopt)));

        const SheetReadResult ods =
            SheetFile::readBytes(readTestData("sheets/conducteur-gala.ods"), "conducteur.csv");
        QCOMPARE(ods.error, QString());
        QVERIFY(sameRows(ods.table.rows, conducteurRows(12064)));

        // A package named only by its mimetype is an .ods too... once it has a content.
        const QByteArray mimetypeOnly =
            zipOf({{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"}});
        QCOMPARE(SheetFile::readBytes(mimetypeOnly, "vide.xlsx").error, notReadable);
    }

    void readsTextAsASheetNamedAfterTheFile()
    {
        const QByteArray csv = "N°;Séquence\n1;Accueil\n";
        const QList<QList<SheetCell>> rows{{text("N°"), text("Séquence")},
                                           {text("1"), text("Accueil")}};
        const SheetReadResult read = SheetFile::readBytes(csv, "/tmp/mon conducteur.v2.csv");
        QCOMPARE(read.error, QString());
        QCOMPARE(read.sheetNames, QStringList{"mon conducteur.v2"});
        QCOMPARE(read.table.sheetName, QStringLiteral("mon conducteur.v2"));
        QVERIFY(sameRows(read.table.rows, rows));

        // Its one sheet, whatever sheet is asked for.
        const SheetReadResult asked =
            SheetFile::readBytes(csv, "conducteur.xlsx", QStringLiteral("Technique"));
        QCOMPARE(asked.error, QString());
        QCOMPARE(asked.sheetNames, QStringList{"conducteur"});
        QVERIFY(sameRows(asked.table.rows, rows));
    }

    void refusesWhatItCannotImport_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        QTest::newRow("a password on an xlsx")
            << readTestData("sheets/protege.xlsx") << passwordProtected;
        QTest::newRow("a password on an ods")
            << readTestData("sheets/protege.ods") << passwordProtected;
        QTest::newRow("Excel 97-2003") << readTestData("sheets/ancien-format.xls") << oldExcel;
        QTest::newRow("an image") << readTestData("sheets/pas-un-tableur.xlsx") << notReadable;
        QTest::newRow("the bomb")
            << readTestData("sheets/bombe.xlsx")
            << QStringLiteral(
                   "Ce classeur est trop volumineux : une de ses parties dépasse 50 Mo une "
                   "fois décompressée.");
        QTest::newRow("a Word document's package")
            << zipOf({{"[Content_Types].xml", "<Types/>"}, {"word/document.xml", "<w:document/>"}})
            << notReadable;
        QTest::newRow("an empty zip")
            << QByteArray("PK\x05\x06", 4) + QByteArray(18, '\0') << notReadable;
        QTest::newRow("a broken zip")
            << QByteArray("PK\x03\x04", 4) + QByteArray(60, 'x') << notReadable;
        QTest::newRow("a compound file of encrypted streams")
            << compoundFile({"Root Entry", "EncryptionInfo", "EncryptedPackage"})
            << passwordProtected;
        QTest::newRow("a workbook naming EncryptionInfo in its data")
            << compoundFile({"Root Entry", "Workbook"}, utf16("EncryptionInfo")) << oldExcel;
        QTest::newRow("a directory over two sectors") << compoundFile(
            {"Root Entry", "\x05SummaryInformation", "\x05DocumentSummaryInformation", "Données",
             "DataSpaces", "EncryptionInfo"}) << passwordProtected;
        QTest::newRow("Excel 5") << compoundFile({"Root Entry", "Book"}) << oldExcel;
        QTest::newRow("a Word 97 document")
            << compoundFile({"Root Entry", "WordDocument", "1Table"}) << notReadable;
        QTest::newRow("a compound file cut short")
            << compoundFile({"Root Entry", "Workbook"}).left(512) << notReadable;
    }

    void refusesWhatItCannotImport()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, error);
        const SheetReadResult read = SheetFile::readBytes(bytes, "classeur.xlsx");
        QCOMPARE(read.error, error);
        QCOMPARE(read.table, SheetTable());
        QCOMPARE(read.sheetNames, QStringList());
    }

    void refusesAFileTooBigBeforeReadingIt()
    {
        const QString tooBig = QStringLiteral("Ce fichier est trop volumineux : plus de 50 Mo.");
        QTemporaryDir directory;
        QFile file(directory.filePath("énorme.xlsx"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(SheetLimits::maxFileBytes + 1)); // sparse: nothing written
        file.close();
        const SheetReadResult read = SheetFile::read(file.fileName());
        QCOMPARE(read.error, tooBig);
        QCOMPARE(read.table, SheetTable());

        QCOMPARE(
            SheetFile::readBytes(QByteArray(SheetLimits::maxFileBytes + 1, ';'), "a.csv").error,
            tooBig);
    }

    void saysWhyAFileCannotBeOpened()
    {
        const QString missing = QStringLiteral("/nonexistent/kairon/conducteur.xlsx");
        QFile file(missing);
        QVERIFY(!file.open(QIODevice::ReadOnly));
        QCOMPARE(file.errorString(), QStringLiteral("No such file or directory"));
        const SheetReadResult read = SheetFile::read(missing);
        QCOMPARE(read.error,
                 QStringLiteral("Impossible de lire le fichier : No such file or directory"));
        QCOMPARE(read.table, SheetTable());
    }
};

QTEST_GUILESS_MAIN(TestSheetFile)
#include "tst_sheetfile.moc"
