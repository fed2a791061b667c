#include "pixels.h"
#include "settingsfixture.h"
#include "sinkrecorder.h"

#include <QSettings>

// The alert output menu against the private PulseAudio server of with-pulseaudio.sh: outputs
// kairon_main (the default, "Régie") and kairon_stage ("Retour scène").
class TestSettingsOutputs : public QObject
{
    Q_OBJECT

    static QStringList entries(const SettingsFixture &f)
    {
        QStringList names;
        for (const QVariant &entry : f.settings.alertOutputs())
            names << entry.toMap().value("name").toString();
        return names;
    }
    static QString loadSink(const QString &name, const QString &description)
    {
        return pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                      QStringLiteral("sink_name=") + name,
                      QStringLiteral("sink_properties='device.description=\"%1\"'").arg(description)});
    }
    // Opens the menu with a click and chooses the entry of that name with another.
    static void choose(SettingsFixture &f, const QString &name)
    {
        const QVariantList outputs = f.settings.alertOutputs();
        const auto output = std::find_if(outputs.cbegin(), outputs.cend(), [&](const QVariant &e) {
            return e.toMap().value("name") == name;
        });
        f.chooseEntry("alertOutputMenu", output == outputs.cend() ? -1 : int(output - outputs.cbegin()));
    }

private slots:
    void theMenuListsTheSystemOutputThenEveryOutput()
    {
        SettingsFixture f;
        QCOMPARE(entries(f), (QStringList{"Sortie système (Régie)", "Régie", "Retour scène"}));
        QCOMPARE(f.at("alertOutputMenu")->property("width").toDouble(), 260.0);
        QCOMPARE(f.at("alertOutputMenu")->property("displayText").toString(), QStringLiteral("Sortie système (Régie)"));
        choose(f, QStringLiteral("Retour scène"));
        QCOMPARE(QSettings().value("alertOutputUID").toString(), QStringLiteral("kairon_stage"));
        QCOMPARE(f.at("alertOutputMenu")->property("displayText").toString(), QStringLiteral("Retour scène"));
        keepScreenshot(f.shot(), QStringLiteral("settings-general-output-chosen"));
        choose(f, QStringLiteral("Sortie système (Régie)"));
        QCOMPARE(QSettings().value("alertOutputUID").toString(), QString());
    }

    // An interface plugged in while the window is open joins the menu; unplugged, it leaves it,
    // and a stored choice of it stays stored.
    void anOutputPluggedInWhileTheWindowIsOpenJoinsTheMenu()
    {
        SettingsFixture f;
        QCOMPARE(entries(f).size(), 3);
        const QString module = loadSink(QStringLiteral("kairon_casque"), QStringLiteral("Casque USB"));
        QVERIFY(!module.isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(entries(f).contains(QStringLiteral("Casque USB")), 10000);
        choose(f, QStringLiteral("Casque USB"));
        QCOMPARE(QSettings().value("alertOutputUID").toString(), QStringLiteral("kairon_casque"));
        keepScreenshot(f.shot(), QStringLiteral("settings-general-plugged"));

        pactl({QStringLiteral("unload-module"), module});
        QTRY_VERIFY_WITH_TIMEOUT(!entries(f).contains(QStringLiteral("Casque USB")), 10000);
        QCOMPARE(QSettings().value("alertOutputUID").toString(), QStringLiteral("kairon_casque"));
        QCOMPARE(f.at("alertOutputMenu")->property("currentIndex").toInt(), -1);
        QCOMPARE(f.at("alertOutputMenu")->property("displayText").toString(), QStringLiteral("Sortie non connectée"));
        keepScreenshot(f.shot(), QStringLiteral("settings-general-unplugged"));
    }
};

QTEST_MAIN(TestSettingsOutputs)
#include "tst_settings_outputs.moc"
