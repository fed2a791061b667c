#include "preferences.h"
#include "settingsfile.h"
#include "settingssandbox.h"

#include <QSettings>
#include <QTest>

class TestPreferences : public QObject
{
    Q_OBJECT

private slots:
    void aFreshInstallationShowsTheDocumentedDefaults()
    {
        SettingsSandbox sandbox;
        QCOMPARE(Preferences::oscListenEnabled(), false);
        QCOMPARE(Preferences::oscListenPort(), 53100);
        QCOMPARE(Preferences::oscSendEnabled(), false);
        QCOMPARE(Preferences::oscSendHost(), QStringLiteral("127.0.0.1"));
        QCOMPARE(Preferences::oscSendPort(), 53101);
        QCOMPARE(Preferences::splashDuration(), 10.0);
        QCOMPARE(Preferences::alertOutputUID(), QString());
    }

    void rawReadersSeeNeverStoredKeysAsFalseZeroOrEmpty()
    {
        SettingsSandbox sandbox;
        const Preferences::OscSettings raw = Preferences::storedOscSettings();
        QCOMPARE(raw.listenEnabled, false);
        QCOMPARE(raw.listenPort, 0);
        QCOMPARE(raw.sendEnabled, false);
        QCOMPARE(raw.sendHost, QStringLiteral("127.0.0.1"));
        QCOMPARE(raw.sendPort, 0);
        QCOMPARE(Preferences::storedSplashDuration(), 0.0);
    }

    void storedValuesAreReadBackByBothReaders()
    {
        SettingsSandbox sandbox;
        Preferences::setOscListenEnabled(true);
        Preferences::setOscListenPort(53000);
        Preferences::setOscSendEnabled(true);
        Preferences::setOscSendHost(QStringLiteral("regie.local"));
        Preferences::setOscSendPort(9000);
        Preferences::setSplashDuration(3);
        Preferences::setAlertOutputUID(QStringLiteral("alsa_output.usb-Focusrite"));
        const Preferences::OscSettings expected{true, 53000, true, QStringLiteral("regie.local"), 9000};
        QCOMPARE(Preferences::storedOscSettings(), expected);
        QCOMPARE(Preferences::oscListenPort(), 53000);
        QCOMPARE(Preferences::oscSendHost(), QStringLiteral("regie.local"));
        QCOMPARE(Preferences::splashDuration(), 3.0);
        QCOMPARE(Preferences::storedSplashDuration(), 3.0);
        QCOMPARE(Preferences::alertOutputUID(), QStringLiteral("alsa_output.usb-Focusrite"));
    }

    void theyPersistUnderTheirOwnKeys()
    {
        SettingsSandbox sandbox;
        Preferences::setOscListenPort(53200);
        Preferences::setAlertOutputUID(QStringLiteral("kairon_stage"));
        QSettings().sync();
        const QSettings stored;
        QCOMPARE(stored.value("oscListenPort").toInt(), 53200);
        QCOMPARE(stored.value("alertOutputUID").toString(), QStringLiteral("kairon_stage"));
        QVERIFY(QFileInfo(stored.fileName()).absoluteFilePath().startsWith(sandbox.path()));
    }

    // Written through a format of their own, in the file and the text of QSettings(): either
    // reads what the other wrote.
    void theyShareQSettingsFile()
    {
        SettingsSandbox sandbox;
        QCOMPARE(SettingsFile().fileName(), QSettings().fileName());
        QSettings().setValue("oscSendHost", QStringLiteral("régie, façade"));
        QCOMPARE(Preferences::oscSendHost(), QStringLiteral("régie, façade"));
        QVERIFY(Preferences::setSplashDuration(2.5));
        QCOMPARE(QSettings().value("splashDuration").toDouble(), 2.5);
        QVERIFY(Preferences::setWebEnabled(true));
        QCOMPARE(QSettings().value("webEnabled").toBool(), true);
        // On the disk too: a copy, which QSettings has never seen, reads the same.
        const QString copy = sandbox.path() + QStringLiteral("/copy.conf");
        QVERIFY(QFile::copy(QSettings().fileName(), copy));
        const QSettings fromDisk(copy, QSettings::IniFormat);
        QCOMPARE(fromDisk.value("oscSendHost").toString(), QStringLiteral("régie, façade"));
        QCOMPARE(fromDisk.value("splashDuration").toDouble(), 2.5);
        QCOMPARE(fromDisk.value("webEnabled").toBool(), true);
    }

    // Each output remembers the display it was last sent to, as a name and X's geometry text.
    void eachOutputRemembersItsDisplay()
    {
        SettingsSandbox sandbox;
        QVERIFY(!Preferences::outputDisplay("stage"));
        const Preferences::OutputDisplay stage{QStringLiteral("HDMI-1"), QRect(1920, 0, 1280, 720)};
        const Preferences::OutputDisplay confidence{QStringLiteral("DP-2"), QRect(-1920, -40, 1920, 1080)};
        QVERIFY(Preferences::setOutputDisplay("stage", stage));
        QVERIFY(Preferences::setOutputDisplay("confidence", confidence));
        QCOMPARE(Preferences::outputDisplay("stage").value(), stage);
        QCOMPARE(Preferences::outputDisplay("confidence").value(), confidence);
        const QSettings stored;
        QCOMPARE(stored.value("stageDisplayName").toString(), QStringLiteral("HDMI-1"));
        QCOMPARE(stored.value("stageDisplayGeometry").toString(), QStringLiteral("1280x720+1920+0"));
        QCOMPARE(stored.value("confidenceDisplayGeometry").toString(), QStringLiteral("1920x1080-1920-40"));
    }

    // A geometry written by hand that cannot be read leaves the name alone to go by.
    void anUnreadableGeometryLeavesTheName()
    {
        SettingsSandbox sandbox;
        QSettings().setValue("stageDisplayName", QStringLiteral("HDMI-1"));
        QSettings().setValue("stageDisplayGeometry", QStringLiteral("grand écran"));
        QCOMPARE(Preferences::outputDisplay("stage").value(),
                 (Preferences::OutputDisplay{QStringLiteral("HDMI-1"), QRect()}));
        QSettings().remove("stageDisplayName");
        QVERIFY(!Preferences::outputDisplay("stage"));
        QSettings().setValue("stageDisplayGeometry", QStringLiteral("800x600+0+1080"));
        QCOMPARE(Preferences::outputDisplay("stage").value(),
                 (Preferences::OutputDisplay{QString(), QRect(0, 1080, 800, 600)}));
    }
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "tst_preferences.moc"
