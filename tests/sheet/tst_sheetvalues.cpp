#include "sheetvalues.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

using Kind = SheetCell::Kind;

SheetCell text(const QString &value)
{
    return SheetCell{Kind::Text, value};
}

SheetCell number(double value)
{
    return SheetCell{Kind::Number, {}, value};
}

SheetCell timeValue(double serial)
{
    return SheetCell{Kind::Number, {}, serial, true};
}

SheetCell booleanCell(bool value)
{
    return SheetCell{Kind::Boolean, {}, value ? 1.0 : 0.0};
}

} // namespace

Q_DECLARE_METATYPE(SheetCell)

class TestSheetValues : public QObject
{
    Q_OBJECT

private slots:
    void readsDurationTexts_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<double>("seconds");
        QTest::newRow("minutes") << "10" << 600.0;
        QTest::newRow("zero") << "0" << 0.0;
        QTest::newRow("mm:ss") << "10:00" << 600.0;
        QTest::newRow("m:ss") << "5:30" << 330.0;
        QTest::newRow("mm:ss past an hour") << "90:15" << 5415.0;
        QTest::newRow("h:mm:ss") << "1:05:00" << 3900.0;
        QTest::newRow("hh:mm:ss") << "00:10:00" << 600.0;
        QTest::newRow("h:mm:ss,ms") << "0:00:01,5" << 1.5;
        QTest::newRow("10 min") << "10 min" << 600.0;
        QTest::newRow("10min") << "10min" << 600.0;
        QTest::newRow("10 mn") << "10 mn" << 600.0;
        QTest::newRow("10 minutes") << "10 minutes" << 600.0;
        QTest::newRow("10 MIN") << "10 MIN" << 600.0;
        QTest::newRow("10'") << "10'" << 600.0;
        QTest::newRow("10’") << "10’" << 600.0;
        QTest::newRow("1h30") << "1h30" << 5400.0;
        QTest::newRow("1 h 30") << "1 h 30" << 5400.0;
        QTest::newRow("1H05") << "1H05" << 3900.0;
        QTest::newRow("1h30min") << "1h30min" << 5400.0;
        QTest::newRow("1 h 05 min 30 s") << "1 h 05 min 30 s" << 3930.0;
        QTest::newRow("1h") << "1h" << 3600.0;
        QTest::newRow("1,5 h") << "1,5 h" << 5400.0;
        QTest::newRow("90 s") << "90 s" << 90.0;
        QTest::newRow("90s") << "90s" << 90.0;
        QTest::newRow("90 sec") << "90 sec" << 90.0;
        QTest::newRow("90 secondes") << "90 secondes" << 90.0;
        QTest::newRow("1'30") << "1'30" << 90.0;
        QTest::newRow("1'30''") << "1'30''" << 90.0;
        QTest::newRow("1'30\"") << "1'30\"" << 90.0;
        QTest::newRow("1’30”") << "1’30”" << 90.0;
        QTest::newRow("1′30″") << "1′30″" << 90.0;
        QTest::newRow("1 min 30") << "1 min 30" << 90.0;
        QTest::newRow("1min30s") << "1min30s" << 90.0;
        QTest::newRow("2,5") << "2,5" << 150.0;
        QTest::newRow("2.5") << "2.5" << 150.0;
        QTest::newRow("thirds rounded to the ms") << "0,3333333" << 20.0;
        QTest::newRow("blanks around") << "  \t10 min\u00A0 " << 600.0;
        QTest::newRow("full-width digits") << "１０" << 600.0;
    }

    void readsDurationTexts()
    {
        QFETCH(QString, written);
        QFETCH(double, seconds);
        QCOMPARE(SheetValues::durationSeconds(written), std::optional<double>(seconds));
        QCOMPARE(SheetValues::durationSeconds(text(written)), std::optional<double>(seconds));
    }

    void refusesOtherDurationTexts_data()
    {
        QTest::addColumn<QString>("written");
        QTest::newRow("empty") << "";
        QTest::newRow("blanks") << "  ";
        QTest::newRow("negative") << "-10";
        QTest::newRow("negative mm:ss") << "-1:00";
        QTest::newRow("words") << "env. 10 min";
        QTest::newRow("range") << "10-15";
        QTest::newRow("seconds past 59") << "1:60";
        QTest::newRow("minutes past 59 after hours") << "1:60:00";
        QTest::newRow("1h60") << "1h60";
        QTest::newRow("1'75") << "1'75";
        QTest::newRow("two decimal marks") << "2,5,5";
        QTest::newRow("unit alone") << "min";
        QTest::newRow("too large to hold") << QString(400, u'9');
        QTest::newRow("a date") << "14/03/2026";
    }

    void refusesOtherDurationTexts()
    {
        QFETCH(QString, written);
        QCOMPARE(SheetValues::durationSeconds(written), std::nullopt);
    }

    void readsDurationNumbers_data()
    {
        QTest::addColumn<SheetCell>("cell");
        QTest::addColumn<std::optional<double>>("seconds");
        QTest::newRow("time value") << timeValue(3900.0 / 86400) << std::optional(3900.0);
        QTest::newRow("time value to the ms") << timeValue(0.00069444444) << std::optional(60.0);
        QTest::newRow("time past a day") << timeValue(1.5) << std::optional(129600.0);
        QTest::newRow("plain number is minutes") << number(12) << std::optional(720.0);
        QTest::newRow("decimal minutes") << number(2.5) << std::optional(150.0);
        QTest::newRow("negative number") << number(-1) << std::optional<double>();
        QTest::newRow("negative time") << timeValue(-0.25) << std::optional<double>();
        QTest::newRow("not a number")
            << number(std::numeric_limits<double>::quiet_NaN()) << std::optional<double>();
        QTest::newRow("infinite")
            << number(std::numeric_limits<double>::infinity()) << std::optional<double>();
        QTest::newRow("empty") << SheetCell{} << std::optional<double>();
        QTest::newRow("boolean") << booleanCell(true) << std::optional<double>();
    }

    void readsDurationNumbers()
    {
        QFETCH(SheetCell, cell);
        QFETCH(std::optional<double>, seconds);
        QCOMPARE(SheetValues::durationSeconds(cell), seconds);
    }

    void readsTimesOfDay_data()
    {
        QTest::addColumn<SheetCell>("cell");
        QTest::addColumn<std::optional<QTime>>("time");
        QTest::newRow("14:30") << text("14:30") << std::optional(QTime(14, 30));
        QTest::newRow("9:05") << text("9:05") << std::optional(QTime(9, 5));
        QTest::newRow("14:30:15") << text("14:30:15") << std::optional(QTime(14, 30, 15));
        QTest::newRow("14h30") << text("14h30") << std::optional(QTime(14, 30));
        QTest::newRow("14H30") << text("14H30") << std::optional(QTime(14, 30));
        QTest::newRow("14h") << text("14h") << std::optional(QTime(14, 0));
        QTest::newRow("14 h 30") << text(" 14 h 30 ") << std::optional(QTime(14, 30));
        QTest::newRow("00:00") << text("00:00") << std::optional(QTime(0, 0));
        QTest::newRow("time value") << timeValue(14.5 / 24) << std::optional(QTime(14, 30));
        QTest::newRow("date and time keeps the time")
            << timeValue(46095.75) << std::optional(QTime(18, 0));
        QTest::newRow("time rounded to the ms")
            << timeValue(0.60416666) << std::optional(QTime(14, 29, 59, 999));
        QTest::newRow("nearly midnight wraps")
            << timeValue(0.99999999999) << std::optional(QTime(0, 0));
        QTest::newRow("24:00") << text("24:00") << std::optional<QTime>();
        QTest::newRow("14:60") << text("14:60") << std::optional<QTime>();
        QTest::newRow("14:30:60") << text("14:30:60") << std::optional<QTime>();
        QTest::newRow("14h5") << text("14h5") << std::optional<QTime>();
        QTest::newRow("words") << text("vers 14h") << std::optional<QTime>();
        QTest::newRow("empty") << text("") << std::optional<QTime>();
        QTest::newRow("plain number") << number(14.5) << std::optional<QTime>();
        QTest::newRow("before 1900") << timeValue(-0.5) << std::optional<QTime>();
        QTest::newRow("boolean") << booleanCell(true) << std::optional<QTime>();
    }

    void readsTimesOfDay()
    {
        QFETCH(SheetCell, cell);
        QFETCH(std::optional<QTime>, time);
        QCOMPARE(SheetValues::timeOfDay(cell), time);
    }

    void readsColours_data()
    {
        QTest::addColumn<SheetCell>("cell");
        QTest::addColumn<std::optional<QString>>("hex");
        QTest::newRow("#RRGGBB") << text("#2ECC71") << std::optional<QString>("#2ECC71");
        QTest::newRow("lower case") << text("#2ecc71") << std::optional<QString>("#2ECC71");
        QTest::newRow("without #") << text(" 3498db ") << std::optional<QString>("#3498DB");
        QTest::newRow("palette name") << text("Bleu") << std::optional<QString>("#3498DB");
        QTest::newRow("any case and blanks")
            << text("  orange   ORV ") << std::optional<QString>("#FF6B00");
        QTest::newRow("accents ignored") << text("Rosé") << std::optional<QString>("#FF2D78");
        QTest::newRow("every palette colour: Vert") << text("vert")
                                                    << std::optional<QString>("#2ECC71");
        QTest::newRow("Blanc") << text("BLANC") << std::optional<QString>("#FFFFFF");
        QTest::newRow("Cyan") << text("cyan") << std::optional<QString>("#1ABC9C");
        QTest::newRow("Violet") << text("violet") << std::optional<QString>("#9B59B6");
        QTest::newRow("Jaune") << text("jaune") << std::optional<QString>("#F1C40F");
        QTest::newRow("digits as a number") << number(123456) << std::optional<QString>("#123456");
        QTest::newRow("unknown name") << text("Rouge") << std::optional<QString>();
        QTest::newRow("three digits") << text("#FFF") << std::optional<QString>();
        QTest::newRow("two marks") << text("##2ECC71") << std::optional<QString>();
        QTest::newRow("empty") << text("") << std::optional<QString>();
    }

    void readsColours()
    {
        QFETCH(SheetCell, cell);
        QFETCH(std::optional<QString>, hex);
        QCOMPARE(SheetValues::colourHex(cell), hex);
    }

    void readsYesAndNo_data()
    {
        QTest::addColumn<SheetCell>("cell");
        QTest::addColumn<std::optional<bool>>("value");
        for (const char *yes : {"oui", "OUI", "o", "x", "X", "yes", "y", "vrai", "true", "1"})
            QTest::newRow(yes) << text(QString::fromUtf8(yes)) << std::optional(true);
        for (const char *no : {"non", "Non", "n", "no", "faux", "false", "0", "", " "})
            QTest::newRow(qPrintable(QStringLiteral("'%1'").arg(no)))
                << text(QString::fromUtf8(no)) << std::optional(false);
        QTest::newRow("true boolean") << booleanCell(true) << std::optional(true);
        QTest::newRow("false boolean") << booleanCell(false) << std::optional(false);
        QTest::newRow("number 1") << number(1) << std::optional(true);
        QTest::newRow("number 0") << number(0) << std::optional(false);
        QTest::newRow("empty cell") << SheetCell{} << std::optional(false);
        QTest::newRow("number 2") << number(2) << std::optional<bool>();
        QTest::newRow("time value") << timeValue(1) << std::optional<bool>();
        QTest::newRow("peut-être") << text("peut-être") << std::optional<bool>();
    }

    void readsYesAndNo()
    {
        QFETCH(SheetCell, cell);
        QFETCH(std::optional<bool>, value);
        QCOMPARE(SheetValues::boolean(cell), value);
    }

    void showsCellsAsTheSheetDoes_data()
    {
        QTest::addColumn<SheetCell>("cell");
        QTest::addColumn<QString>("shown");
        QTest::newRow("text as written") << text(" env. 10 min ") << " env. 10 min ";
        QTest::newRow("whole number") << number(12) << "12";
        QTest::newRow("decimal comma") << number(-2.5) << "-2,5";
        QTest::newRow("time") << timeValue(0.5) << "12:00:00";
        QTest::newRow("date") << timeValue(46095) << "14/03/2026";
        QTest::newRow("date and time") << timeValue(46095.75) << "14/03/2026 18:00";
        QTest::newRow("date and time with seconds")
            << timeValue(46095 + 3661.0 / 86400) << "14/03/2026 01:01:01";
        QTest::newRow("before 1900") << timeValue(-1.25) << "28/12/1899 18:00";
        QTest::newRow("past year 9999") << timeValue(1e7) << "10000000";
        QTest::newRow("true") << booleanCell(true) << "VRAI";
        QTest::newRow("false") << booleanCell(false) << "FAUX";
        QTest::newRow("empty") << SheetCell{} << "";
    }

    void showsCellsAsTheSheetDoes()
    {
        QFETCH(SheetCell, cell);
        QFETCH(QString, shown);
        QCOMPARE(SheetValues::displayText(cell), shown);
    }

    void tellsBlankCellsAndDatesBefore1900()
    {
        QVERIFY(SheetValues::isBlank(SheetCell{}));
        QVERIFY(SheetValues::isBlank(text(" \n\t")));
        SheetCell covered;
        covered.covered = true;
        QVERIFY(SheetValues::isBlank(covered));
        QVERIFY(!SheetValues::isBlank(text(".")));
        QVERIFY(!SheetValues::isBlank(number(0)));
        QVERIFY(!SheetValues::isBlank(booleanCell(false)));

        QVERIFY(SheetValues::isBefore1900(timeValue(-0.001)));
        QVERIFY(!SheetValues::isBefore1900(timeValue(0)));
        QVERIFY(!SheetValues::isBefore1900(number(-5)));
        QVERIFY(!SheetValues::isBefore1900(text("-5")));
    }

    void foldsTexts()
    {
        QCOMPARE(SheetValues::folded(u"  Orange \t ORV "), QStringLiteral("orange orv"));
        QCOMPARE(SheetValues::folded(u"Durée\u00A0(min)"), QStringLiteral("duree (min)"));
        QCOMPARE(SheetValues::folded(u"Seuil d’alerte"), QStringLiteral("seuil d'alerte"));
        QCOMPARE(SheetValues::folded(u"ÉCHAÎNÉ Ç"), QStringLiteral("echaine c"));
        QCOMPARE(SheetValues::folded(u"“1′30″”"), QStringLiteral("\"1'30''\""));
    }
};

QTEST_GUILESS_MAIN(TestSheetValues)
#include "tst_sheetvalues.moc"
