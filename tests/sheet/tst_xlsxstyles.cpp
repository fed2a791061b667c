#include "xlsxstyles.h"

#include <QTest>

using XlsxStyles::TimeKind;

class TestXlsxStyles : public QObject
{
    Q_OBJECT

private slots:
    void tellsDatesAndTimesByTheirFormatCode_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<TimeKind>("kind");
        QTest::newRow("general") << "General" << TimeKind::None;
        QTest::newRow("decimals") << "0.00" << TimeKind::None;
        QTest::newRow("elapsed hours") << "[h]:mm:ss" << TimeKind::TimeOnly;
        QTest::newRow("elapsed minutes") << "[mm]:ss" << TimeKind::TimeOnly;
        QTest::newRow("elapsed seconds") << "[ss]" << TimeKind::TimeOnly;
        QTest::newRow("minutes and seconds") << "mm:ss" << TimeKind::TimeOnly;
        QTest::newRow("LibreOffice's durations") << "[HH]:MM:SS" << TimeKind::TimeOnly;
        QTest::newRow("time of day") << "hh:mm" << TimeKind::TimeOnly;
        QTest::newRow("French hours") << "hh\"h\"mm" << TimeKind::TimeOnly;
        QTest::newRow("twelve hours") << "h:mm AM/PM" << TimeKind::TimeOnly;
        QTest::newRow("a or p") << "h:mm A/P" << TimeKind::TimeOnly;
        QTest::newRow("French date") << "dd/mm/yyyy" << TimeKind::Date;
        QTest::newRow("month alone") << "m" << TimeKind::Date;
        QTest::newRow("month name") << "mmm-yy" << TimeKind::Date;
        QTest::newRow("date and time") << "yyyy-mm-dd hh:mm:ss" << TimeKind::Date;
        QTest::newRow("locale before a date") << "[$-40C]d mmmm yyyy" << TimeKind::Date;
        QTest::newRow("colour") << "[Red]0.00" << TimeKind::None;
        QTest::newRow("condition") << "[>=100]0;0" << TimeKind::None;
        QTest::newRow("currency of a locale") << "[$€-40C] #,##0.00" << TimeKind::None;
        QTest::newRow("quoted unit") << "0\" min\"" << TimeKind::None;
        QTest::newRow("quoted days") << "#,##0 \"jours\"" << TimeKind::None;
        QTest::newRow("escaped h") << "0\\h" << TimeKind::None;
        QTest::newRow("escaped m and s") << "0.0 \\m\\s" << TimeKind::None;
        QTest::newRow("accounting padding") << "_(* #,##0_)" << TimeKind::None;
        QTest::newRow("fill with an s") << "0*s" << TimeKind::None;
        QTest::newRow("text") << "@" << TimeKind::None;
    }

    void tellsDatesAndTimesByTheirFormatCode()
    {
        QFETCH(QString, code);
        QFETCH(TimeKind, kind);
        QCOMPARE(XlsxStyles::kindOfFormatCode(code), kind);
    }

    void knowsTheBuiltInDateAndTimeFormats()
    {
        for (int id = 0; id < 200; ++id) {
            const TimeKind expected = (id >= 14 && id <= 17) || id == 22 ? TimeKind::Date
                : (id >= 18 && id <= 21) || (id >= 45 && id <= 47)       ? TimeKind::TimeOnly
                                                                         : TimeKind::None;
            QCOMPARE(XlsxStyles::kindOfBuiltInFormat(id), expected);
        }
    }

    void readsTheKindOfEachCellStyle()
    {
        // cellXfs only, not the named styles' cellStyleXfs; a custom format may redefine a
        // built-in one.
        const QByteArray styles =
            "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
            "<numFmts count=\"3\"><numFmt numFmtId=\"164\" formatCode=\"[h]:mm:ss\"/>"
            "<numFmt numFmtId=\"165\" formatCode=\"0.0&quot; min&quot;\"/>"
            "<numFmt numFmtId=\"14\" formatCode=\"0.00\"/></numFmts>"
            "<cellStyleXfs><xf numFmtId=\"21\"/><xf numFmtId=\"21\"/></cellStyleXfs>"
            "<cellXfs><xf numFmtId=\"0\"/><xf numFmtId=\"164\"><alignment/></xf>"
            "<xf numFmtId=\"165\"/><xf numFmtId=\"14\"/><xf numFmtId=\"46\"/>"
            "<xf numFmtId=\"22\"/></cellXfs></styleSheet>";
        QCOMPARE(XlsxStyles::cellStyleKinds(styles),
                 (QList<TimeKind>{TimeKind::None, TimeKind::TimeOnly, TimeKind::None,
                                  TimeKind::None, TimeKind::TimeOnly, TimeKind::Date}));
    }

    void readsWhatComesBeforeBrokenXml()
    {
        QCOMPARE(XlsxStyles::cellStyleKinds("<styleSheet><cellXfs><xf numFmtId=\"46\"/><xf"),
                 QList<TimeKind>{TimeKind::TimeOnly});
        QCOMPARE(XlsxStyles::cellStyleKinds({}), QList<TimeKind>());
    }
};

QTEST_GUILESS_MAIN(TestXlsxStyles)
#include "tst_xlsxstyles.moc"
