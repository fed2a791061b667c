#include "textfit.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QTest>

namespace {

// One unit per UTF-16 code unit, "…" included: widths a test can count by eye.
double perCodeUnit(const QString &text)
{
    return double(text.size());
}

} // namespace

class TestTextFit : public QObject
{
    Q_OBJECT

private slots:
    void charactersAreCountedAsAReaderCountsThem_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("limit");
        QTest::addColumn<QString>("expected");
        QTest::newRow("at the limit") << QStringLiteral("abcd") << 4 << QStringLiteral("abcd");
        QTest::newRow("one over") << QStringLiteral("abcde") << 4 << QStringLiteral("abc…");
        // "é" written as "e" and a combining accent is one character.
        QTest::newRow("composed letters") << QStringLiteral("e\u0301e\u0301e\u0301e\u0301") << 4
                                          << QStringLiteral("e\u0301e\u0301e\u0301e\u0301");
        QTest::newRow("composed letters cut") << QStringLiteral("e\u0301e\u0301e\u0301e\u0301e\u0301") << 4
                                              << QStringLiteral("e\u0301e\u0301e\u0301…");
        QTest::newRow("empty") << QString() << 4 << QString();
    }

    void charactersAreCountedAsAReaderCountsThem()
    {
        QFETCH(QString, text);
        QFETCH(int, limit);
        QFETCH(QString, expected);
        QCOMPARE(TextFit::toCharacters(text, limit), expected);
    }

    void aTextIsCutToTheWidthItHas_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("width");
        QTest::addColumn<QString>("expected");
        QTest::newRow("fits exactly") << QStringLiteral("abcdef") << 6.0 << QStringLiteral("abcdef");
        QTest::newRow("one too wide") << QStringLiteral("abcdef") << 5.0 << QStringLiteral("abcd…");
        QTest::newRow("a fraction too wide") << QStringLiteral("abcdef") << 5.9 << QStringLiteral("abcd…");
        QTest::newRow("blanks before the ellipsis dropped") << QStringLiteral("ab cdef") << 4.0
                                                            << QStringLiteral("ab…");
        QTest::newRow("an ellipsis already there is not doubled") << QStringLiteral("abcdefg…") << 5.0
                                                                  << QStringLiteral("abcd…");
        QTest::newRow("a short text ending in an ellipsis stays") << QStringLiteral("Et après…") << 9.0
                                                                  << QStringLiteral("Et après…");
        QTest::newRow("a composed letter is never split") << QStringLiteral("ée\u0301e\u0301e\u0301") << 5.0
                                                          << QStringLiteral("ée\u0301…");
        QTest::newRow("no character fits") << QStringLiteral("abc") << 0.5 << QStringLiteral("…");
        QTest::newRow("empty") << QString() << 0.0 << QString();
    }

    void aTextIsCutToTheWidthItHas()
    {
        QFETCH(QString, text);
        QFETCH(double, width);
        QFETCH(QString, expected);
        QCOMPARE(TextFit::toWidth(text, width, perCodeUnit), expected);
    }

    void textsSharingALineCutTheWidestFirst_data()
    {
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<double>("width");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("all fit") << QStringList{"aaaa", "bb"} << 6.0 << QStringList{"aaaa", "bb"};
        // 10 + 2 + 6 in 12: "bb" keeps its 2, the two others share 10, 5 each.
        QTest::newRow("the narrow one stays whole")
            << QStringList{"aaaaaaaaaa", "bb", "cccccc"} << 12.0 << QStringList{"aaaa…", "bb", "cccc…"};
        QTest::newRow("only the widest is cut")
            << QStringList{"aaaaaaaaaa", "bb", "ccc"} << 12.0 << QStringList{"aaaaaa…", "bb", "ccc"};
        QTest::newRow("no room") << QStringList{"aaaa", "bb"} << 0.0 << QStringList{"…", "…"};
    }

    void textsSharingALineCutTheWidestFirst()
    {
        QFETCH(QStringList, texts);
        QFETCH(double, width);
        QFETCH(QStringList, expected);
        QCOMPARE(TextFit::sharingWidth(texts, width, perCodeUnit), expected);
    }

    // With a real typeface: wide letters take more room than narrow ones, and the result is
    // never wider than asked.
    void measuredWithTheRundownsTypeface()
    {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSizeF(10);
        const QFontMetricsF metrics(font);
        const TextFit::Advance advance = [&](const QString &s) { return metrics.horizontalAdvance(s); };
        const QString wide = QStringLiteral("WWWWWWWWWWWWWWWWWWWW");
        const QString narrow = QStringLiteral("iiiiiiiiiiiiiiiiiiii");
        const double width = advance(narrow) * 1.5;
        QCOMPARE(TextFit::toWidth(narrow, width, advance), narrow);
        const QString cut = TextFit::toWidth(wide, width, advance);
        QVERIFY2(cut.endsWith(QStringLiteral("…")) && cut.size() < 12, qPrintable(cut));
        QVERIFY(advance(cut) <= width);
        QVERIFY(advance(cut.chopped(1) + QStringLiteral("W…")) > width); // the longest that fits
        const QString name = QStringLiteral("Hommage à Geneviève Œttinger (1932–2024)");
        const QString shortName = TextFit::toWidth(name, 172, advance);
        QVERIFY(advance(shortName) <= 172);
        QVERIFY2(name.startsWith(shortName.chopped(1)), qPrintable(shortName));
    }
};

QTEST_MAIN(TestTextFit)
#include "tst_textfit.moc"
