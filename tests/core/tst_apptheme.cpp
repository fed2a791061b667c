#include "apptheme.h"

#include <QTest>

Q_DECLARE_METATYPE(ThemeColor)

namespace {

Cue cueWith(double warning, double danger, std::optional<QString> hex = std::nullopt)
{
    Cue cue;
    cue.warningThreshold = warning;
    cue.dangerThreshold = danger;
    cue.colorHex = hex;
    return cue;
}

} // namespace

class TestAppTheme : public QObject
{
    Q_OBJECT

private slots:
    void thePaletteHasItsColours()
    {
        QCOMPARE(AppTheme::accent, (ThemeColor{255, 107, 0}));
        QCOMPARE(AppTheme::accentBorder, (ThemeColor{255, 107, 0, 0.2}));
        QCOMPARE(AppTheme::bgDeep, (ThemeColor{10, 10, 12}));
        QCOMPARE(AppTheme::textMuted, (ThemeColor{112, 112, 120}));
        QCOMPARE(AppTheme::stateOvertime, (ThemeColor{255, 59, 48}));
        QCOMPARE(AppTheme::separator, (ThemeColor{255, 255, 255, 0.08}));
    }

    void theStateColourRuleFirstMatchWins_data()
    {
        QTest::addColumn<std::optional<Cue>>("cue");
        QTest::addColumn<double>("shown");
        QTest::addColumn<ThemeColor>("colour");
        const Cue plain = cueWith(120, 30);
        const Cue blue = cueWith(120, 30, QStringLiteral("#2F80ED"));
        QTest::newRow("no cue") << std::optional<Cue>() << -5.0 << AppTheme::textMuted;
        QTest::newRow("calm") << std::optional(plain) << 121.0 << AppTheme::stateNormal;
        QTest::newRow("at the warning threshold") << std::optional(plain) << 120.0 << AppTheme::stateWarning;
        QTest::newRow("just above danger") << std::optional(plain) << 30.001 << AppTheme::stateWarning;
        QTest::newRow("at the danger threshold") << std::optional(plain) << 30.0 << AppTheme::stateDanger;
        QTest::newRow("zero is danger") << std::optional(plain) << 0.0 << AppTheme::stateDanger;
        QTest::newRow("below zero is overtime") << std::optional(plain) << -0.1 << AppTheme::stateOvertime;
        QTest::newRow("cue colour while calm") << std::optional(blue) << 500.0 << ThemeColor{47, 128, 237};
        QTest::newRow("warning beats the cue colour") << std::optional(blue) << 100.0 << AppTheme::stateWarning;
        QTest::newRow("overtime beats the cue colour") << std::optional(blue) << -1.0 << AppTheme::stateOvertime;
        QTest::newRow("unreadable cue colour")
            << std::optional(cueWith(120, 30, QStringLiteral("bleu"))) << 500.0 << AppTheme::stateNormal;
        QTest::newRow("danger above warning: danger first")
            << std::optional(cueWith(30, 120)) << 100.0 << AppTheme::stateDanger;
    }

    void theStateColourRuleFirstMatchWins()
    {
        QFETCH(std::optional<Cue>, cue);
        QFETCH(double, shown);
        QFETCH(ThemeColor, colour);
        QCOMPARE(AppTheme::stateColor(cue, shown), colour);
    }
};

QTEST_GUILESS_MAIN(TestAppTheme)
#include "tst_apptheme.moc"
