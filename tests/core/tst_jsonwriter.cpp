#include "jsonwriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <limits>

class TestJsonWriter : public QObject
{
    Q_OBJECT

private slots:
    void indentsByTwoSpacesWithSpacedColons()
    {
        const QJsonObject o{{"b", 1}, {"a", QJsonArray{true, QJsonObject{{"c", "x"}}}}};
        const QByteArray expected = "{\n"
                                    "  \"a\" : [\n"
                                    "    true,\n"
                                    "    {\n"
                                    "      \"c\" : \"x\"\n"
                                    "    }\n"
                                    "  ],\n"
                                    "  \"b\" : 1\n"
                                    "}";
        QCOMPARE(writeProjectJson(o).value(), expected);
    }

    void sortsKeysByCodeUnitAtEveryLevel()
    {
        const QJsonObject inner{{"zeta", 1}, {"Zeta", 2}, {"alpha", 3}};
        const QJsonObject o{{"updatedAt", inner}, {"cues", 0}, {"createdAt", 0}};
        const QByteArray expected = "{\n"
                                    "  \"createdAt\" : 0,\n"
                                    "  \"cues\" : 0,\n"
                                    "  \"updatedAt\" : {\n"
                                    "    \"Zeta\" : 2,\n"
                                    "    \"alpha\" : 3,\n"
                                    "    \"zeta\" : 1\n"
                                    "  }\n"
                                    "}";
        QCOMPARE(writeProjectJson(o).value(), expected);
    }

    void writesEmptyContainersOnOneLine()
    {
        const QJsonObject o{{"cues", QJsonArray()}, {"meta", QJsonObject()}};
        QCOMPARE(writeProjectJson(o).value(),
                 QByteArray("{\n  \"cues\" : [],\n  \"meta\" : {}\n}"));
        QCOMPARE(writeProjectJson(QJsonObject()).value(), QByteArray("{}"));
    }

    void escapesSlashesQuotesBackslashesAndControls()
    {
        const QString text = QStringLiteral("a/b \"c\" \\ \n\r\t\b\f") + QChar(0x01) + QChar(0x1F);
        QCOMPARE(writeProjectJson(QJsonValue(text)).value(),
                 QByteArray("\"a\\/b \\\"c\\\" \\\\ \\n\\r\\t\\b\\f\\u0001\\u001f\""));
    }

    void writesNonAsciiTextAsUtf8()
    {
        const QString text = QStringLiteral("Zoë · «Gala» — ☀ 𝄞");
        QCOMPARE(writeProjectJson(QJsonValue(text)).value(), '"' + text.toUtf8() + '"');
    }

    void escapesTheByteOrderMarkSoThatItReadsBack()
    {
        const QString text = QChar(0xFEFF) + QStringLiteral("Gala") + QChar(0xFEFF);
        const QByteArray written = writeProjectJson(QJsonObject{{"name", text}}).value();
        QCOMPARE(written, QByteArray("{\n  \"name\" : \"\\ufeffGala\\ufeff\"\n}"));
        QCOMPARE(QJsonDocument::fromJson(written).object().value("name").toString(), text);
    }

    void writesNumbersInTheirShortestExactForm_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("integral") << 600.0 << QByteArray("600");
        QTest::newRow("zero") << 0.0 << QByteArray("0");
        QTest::newRow("negative") << -42.5 << QByteArray("-42.5");
        QTest::newRow("tenth") << 0.1 << QByteArray("0.1");
        QTest::newRow("sum not a tenth") << 0.1 + 0.2 << QByteArray("0.30000000000000004");
        QTest::newRow("seconds with ms") << 1265.123 << QByteArray("1265.123");
        QTest::newRow("large") << 1e21 << QByteArray("1e+21");
        QTest::newRow("tiny") << 1e-7 << QByteArray("1e-07");
        QTest::newRow("max") << std::numeric_limits<double>::max()
                             << QByteArray("1.7976931348623157e+308");
    }

    void writesNumbersInTheirShortestExactForm()
    {
        QFETCH(double, value);
        QFETCH(QByteArray, text);
        QCOMPARE(writeProjectJson(QJsonValue(value)).value(), text);
        bool ok = false;
        const double back = text.toDouble(&ok);
        QVERIFY(ok);
        QCOMPARE(back, value);
    }

    void refusesNumbersJsonCannotHold()
    {
        QString error;
        const QJsonObject o{{"duration", std::numeric_limits<double>::quiet_NaN()}};
        QVERIFY(!writeProjectJson(o, &error));
        QCOMPARE(error, QStringLiteral("un nombre n'est pas fini (NaN ou infini)"));
        QVERIFY(!writeProjectJson(QJsonArray{std::numeric_limits<double>::infinity()}));
    }
};

QTEST_GUILESS_MAIN(TestJsonWriter)
#include "tst_jsonwriter.moc"
