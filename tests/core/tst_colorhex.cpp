#include "colorhex.h"

#include <QTest>

class TestColorHex : public QObject
{
    Q_OBJECT

private slots:
    void readsSixHexDigits_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("red");
        QTest::addColumn<int>("green");
        QTest::addColumn<int>("blue");
        QTest::newRow("with #") << "#E5484D" << 0xE5 << 0x48 << 0x4D;
        QTest::newRow("without #") << "2ecc71" << 0x2E << 0xCC << 0x71;
        QTest::newRow("blanks around") << "  #FF6B00\t\n" << 0xFF << 0x6B << 0x00;
        QTest::newRow("every # removed") << "##00#ff#00#" << 0x00 << 0xFF << 0x00;
        QTest::newRow("black") << "000000" << 0 << 0 << 0;
        QTest::newRow("white") << "FFFFFF" << 255 << 255 << 255;
    }

    void readsSixHexDigits()
    {
        QFETCH(QString, text);
        QFETCH(int, red);
        QFETCH(int, green);
        QFETCH(int, blue);
        const auto colour = colorFromHex(text);
        QVERIFY(colour);
        QCOMPARE(*colour, (SrgbColor{red / 255.0, green / 255.0, blue / 255.0}));
    }

    void givesNoColourForAnythingElse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << "";
        QTest::newRow("three digits") << "#FFF";
        QTest::newRow("eight digits") << "#FF6B00FF";
        QTest::newRow("five digits") << "#FF6B0";
        QTest::newRow("not hex") << "#GG0000";
        QTest::newRow("inner blank") << "#FF 6B00";
        QTest::newRow("sign") << "+FF6B0";
        QTest::newRow("0x prefix") << "0xFF6B";
        QTest::newRow("name") << "orange";
        QTest::newRow("full-width digits") << QString::fromUtf8("１２３４５６");
    }

    void givesNoColourForAnythingElse()
    {
        QFETCH(QString, text);
        QVERIFY(!colorFromHex(text));
    }
};

QTEST_GUILESS_MAIN(TestColorHex)
#include "tst_colorhex.moc"
