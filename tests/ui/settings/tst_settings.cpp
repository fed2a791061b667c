#include "theme.h"
#include "fulldisk.h"
#include "pixels.h"
#include "qttranslations.h"
#include "settingsfixture.h"
#include "osccodec.h"
#include "ports.h"
#include "uuidtext.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QUdpSocket>

// The settings window through its real items: clicks and keys, the preference store it writes,
// the network coordinator it applies, the project library it saves into.
class TestSettings : public QObject
{
    Q_OBJECT

    static bool portIsFree(quint16 port) { return !udpPortBound(port); }
    static QVariant stored(const char *key) { return QSettings().value(QLatin1StringView(key)); }
    // The keys stored, but the web access code: made and stored the first time anything reads
    // it (at launch, the web server), so that the window and the server always agree on it.
    static QStringList keysStored()
    {
        QStringList keys = QSettings().allKeys();
        keys.removeAll(QStringLiteral("webAccessCode"));
        return keys;
    }

private slots:
    void initTestCase() { installQtTranslations(*QCoreApplication::instance()); } // as the program
    void theWindowHasItsSizeAndItsFiveTabsInOrder()
    {
        SettingsFixture f;
        QCOMPARE(f.settingsWindow->size(), QSize(520, 460));
        QCOMPARE(f.settingsWindow->minimumSize(), QSize(520, 460));
        QCOMPARE(f.settingsWindow->maximumSize(), QSize(520, 460));
        QStringList labels;
        QStringList symbols;
        for (const QVariant &entry : f.at("settingsTabs")->property("entries").toList()) {
            labels << entry.toMap().value("label").toString();
            symbols << entry.toMap().value("symbol").toString();
        }
        QCOMPARE(labels, (QStringList{"Général", "OSC", "Web", "Secours", "Session", "À propos"}));
        QCOMPARE(symbols, (QStringList{"gearshape", "network", "globe", "lifepreserver", "folder", "info.circle"}));
        for (int i = 0; i < 6; ++i)
            QCOMPARE(f.at(qPrintable(QStringLiteral("settingsTab%1").arg(i)))->property("text").toString(),
                     labels[i]);
        // Each tab's content starts 20 from the edges.
        const QQuickItem *slider = f.at("alertOutputMenu");
        QCOMPARE(slider->mapToScene(QPointF(0, 0)).x(), 20.0);
        keepScreenshot(f.shot(), QStringLiteral("settings-general"));
        f.openTab(5);
        QVERIFY(f.shown("settingsAbout"));
        keepScreenshot(f.shot(), QStringLiteral("settings-about"));
    }

    void aFreshInstallationShowsListeningOffOn53100AndSendingOffTo127001On53101()
    {
        SettingsFixture f;
        f.openTab(1);
        QCOMPARE(f.at("oscListenSwitch")->property("checked").toBool(), false);
        QCOMPARE(f.text("oscListenPort"), QStringLiteral("53100"));
        QCOMPARE(f.at("oscSendSwitch")->property("checked").toBool(), false);
        QCOMPARE(f.text("oscSendHost"), QStringLiteral("127.0.0.1"));
        QCOMPARE(f.text("oscSendPort"), QStringLiteral("53101"));
        QVERIFY(!f.shown("oscStatus")); // only while listening is on
        QCOMPARE(f.text("oscListenSwitch"), QStringLiteral("Recevoir des commandes OSC (QLab, Companion…)"));
        QCOMPARE(f.text("oscSendSwitch"), QStringLiteral("Émettre l'état en OSC"));
        QCOMPARE(f.at("oscStateChangesSwitch")->property("checked").toBool(), false);
        QCOMPARE(f.text("oscStateChangesSwitch"), QStringLiteral("Émettre aussi chaque changement d'état"));
        QCOMPARE(f.text("applyOsc"), QStringLiteral("Appliquer la configuration OSC"));
        QStringList help;
        for (QQuickItem *line : f.at("oscHelp")->childItems())
            if (line->property("text").isValid())
                help << line->property("text").toString();
        QCOMPARE(help, (QStringList{
                           "Adresses : /kairon/play · /pause · /stop · /next · /prev · /reset",
                           "/kairon/blackout · /kairon/blink · /kairon/message <s> · /kairon/adjust <±s>",
                           "Émis : /kairon/remaining <f> · /kairon/running <i> · /kairon/cue <s>",
                           "À chaque changement : /kairon/state <iiisiii> · /kairon/message <si>"}));
        // Showing them stores nothing.
        QCOMPARE(keysStored(), QStringList{});
        keepScreenshot(f.shot(), QStringLiteral("settings-osc-fresh"));
    }

    void thePortFieldsStoreOnlyWholeNumbersFrom1To65535()
    {
        SettingsFixture f;
        f.openTab(1);
        f.type("oscListenPort", QStringLiteral("0"));
        QVERIFY2(!stored("oscListenPort").isValid(), qPrintable(stored("oscListenPort").toString()));
        QVERIFY(f.at("oscListenPort")->property("invalid").toBool());
        f.type("oscListenPort", QStringLiteral("65536"));
        QCOMPARE(stored("oscListenPort").toInt(), 6553); // the last port on the way, never 65536
        f.type("oscListenPort", QStringLiteral("8x0-0.0")); // the letters and signs are refused
        QCOMPARE(f.text("oscListenPort"), QStringLiteral("8000"));
        QCOMPARE(stored("oscListenPort").toInt(), 8000);
        f.type("oscListenPort", QStringLiteral("65535"));
        QCOMPARE(stored("oscListenPort").toInt(), 65535);
        f.type("oscSendPort", QStringLiteral("1"));
        QCOMPARE(stored("oscSendPort").toInt(), 1);
        // Text that is not a port gives way to the stored port once the field is left.
        f.type("oscSendPort", QString());
        QCOMPARE(f.text("oscSendPort"), QString());
        f.click("oscSendHost");
        QTRY_COMPARE(f.text("oscSendPort"), QStringLiteral("1"));
        QVERIFY(!f.at("oscSendPort")->property("invalid").toBool());
        f.type("oscSendHost", QStringLiteral("192.168.1.20"));
        QCOMPARE(stored("oscSendHost").toString(), QStringLiteral("192.168.1.20"));
    }

    // A preference the disk refuses, here a real file system filled to the last byte, is said
    // under the tabs, whichever is shown, until one is stored again; the file keeps its bytes.
    void aPreferenceTheDiskRefusesIsSaidUnderTheTabs()
    {
        SettingsFixture f;
        FullDisk disk(f.path() + QStringLiteral("/KaironTests"));
        FULL_DISK_OR_SKIP(disk);
        const QString file = f.path() + QStringLiteral("/KaironTests/Kairon.conf");
        const auto bytes = [&] {
            QFile stored(file);
            return stored.open(QIODevice::ReadOnly) ? stored.readAll() : QByteArray("(unreadable)");
        };
        f.openTab(1);
        f.type("oscSendHost", QStringLiteral("10.0.0.1"));
        QVERIFY(!f.shown("preferencesError"));
        const QByteArray before = bytes();
        QVERIFY2(before.contains("\noscSendHost=10.0.0.1\n"), before.constData());
        disk.fill();

        f.type("oscSendHost", QStringLiteral("10.0.0.2"));
        QVERIFY(f.shown("preferencesError"));
        QCOMPARE(f.text("preferencesErrorText"),
                 QStringLiteral("Échec d'enregistrement des réglages : impossible d'écrire « %1 » "
                                "(plus d'espace libre sur le disque)").arg(file));
        QCOMPARE(bytes(), before);
        keepScreenshot(f.shot(), QStringLiteral("settings-preference-refused"));
        f.openTab(2);
        QVERIFY(f.shown("preferencesError"));

        disk.makeRoom();
        f.openTab(1);
        f.type("oscSendHost", QStringLiteral("10.0.0.3"));
        QVERIFY(!f.shown("preferencesError"));
        QVERIFY2(bytes().contains("\noscSendHost=10.0.0.3\n"), bytes().constData());
        QCOMPARE(disk.files(), QStringList{QStringLiteral("Kairon.conf")});
    }

    void editingChangesNothingOnTheNetworkUntilApplied()
    {
        SettingsFixture f;
        f.network.attach(&f.engine, f.clock);
        const quint16 port = freeUdpPort();
        f.openTab(1);
        f.click("oscListenSwitch");
        f.type("oscListenPort", QString::number(port));
        QCOMPARE(stored("oscListenEnabled").toBool(), true);
        QVERIFY(portIsFree(port)); // nothing listens yet
        f.click("applyOsc");
        QTRY_VERIFY(!portIsFree(port));
        QVERIFY(f.shown("oscStatus"));
        QCOMPARE(f.text("oscStatusText"), QStringLiteral("Écoute OSC active sur le port %1").arg(port));
        QCOMPARE(f.at("oscStatusIcon")->property("symbol").toString(), QStringLiteral("checkmark.circle.fill"));
        keepScreenshot(f.shot(), QStringLiteral("settings-osc-listening"));
        // Turned off: the status line goes, the listener stays until applied.
        f.click("oscListenSwitch");
        QVERIFY(!f.shown("oscStatus"));
        QVERIFY(!portIsFree(port));
        f.click("applyOsc");
        QTRY_VERIFY(portIsFree(port));
    }

    // The stored-port rule of the coordinator against the shown default: the window shows
    // 53100, the coordinator sees no port and stops listening, and the line says 53100.
    void applyingWithThePortNeverEditedStopsTheListenerWhileTheLineReads53100()
    {
        const quint16 port = freeUdpPort();
        SettingsSandbox sandbox;
        QSettings().setValue("oscListenEnabled", true);
        AppFixture f;
        f.network.attach(&f.engine, f.clock);
        f.network.osc().startListening(port); // a listener from earlier
        QTRY_VERIFY(!portIsFree(port));
        QVERIFY(!f.network.oscStatus());
        QQuickWindow *window = f.window("settingsWindow");
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QTest::mouseClick(window, Qt::LeftButton, {}, SettingsFixture::centre(f.item("settingsTab1", window)));
        QTRY_VERIFY(f.item("oscListenPort", window)->isVisible());
        QCOMPARE(f.item("oscListenPort", window)->property("text").toString(), QStringLiteral("53100"));
        QQuickItem *apply = f.item("applyOsc", window);
        QTest::mouseClick(window, Qt::LeftButton, {}, SettingsFixture::centre(apply));
        QTRY_VERIFY(portIsFree(port));
        QVERIFY(f.item("oscStatus", window)->isVisible());
        QCOMPARE(f.item("oscStatusText", window)->property("text").toString(),
                 QStringLiteral("Écoute OSC active sur le port 53100"));
        QCOMPARE(f.item("oscStatusIcon", window)->property("symbol").toString(),
                 QStringLiteral("checkmark.circle.fill"));
    }

    // A real program holds the port: the line shows the warning and the coordinator's text.
    void aPortTakenByAnotherProgramShowsTheWarningAndItsText()
    {
        const quint16 port = freeUdpPort();
        QProcess peer;
        peer.start(QStringLiteral("oscdump"), {QStringLiteral("-L"), QString::number(port)});
        QVERIFY(peer.waitForStarted());
        QTRY_VERIFY(!portIsFree(port));
        SettingsFixture f;
        f.network.attach(&f.engine, f.clock);
        f.openTab(1);
        f.click("oscListenSwitch");
        f.type("oscListenPort", QString::number(port));
        f.click("applyOsc");
        const QString prefix = QStringLiteral("Port %1 indisponible (").arg(port);
        QTRY_VERIFY2(f.text("oscStatusText").startsWith(prefix), qPrintable(f.text("oscStatusText")));
        QVERIFY(f.text("oscStatusText").endsWith(QStringLiteral("). Déjà utilisé ? (QLab = 53000)")));
        QCOMPARE(f.text("oscStatusText"), *f.network.oscStatus());
        QCOMPARE(f.at("oscStatusIcon")->property("symbol").toString(),
                 QStringLiteral("exclamationmark.triangle.fill"));
        const QImage image = f.shot();
        keepScreenshot(image, QStringLiteral("settings-osc-port-taken"));
        const QQuickItem *icon = f.at("oscStatusIcon");
        const QRect iconRect = icon->mapRectToScene(QRectF(0, 0, icon->width(), icon->height())).toAlignedRect();
        KAIRON_COMPARE_COLOUR(dominantColour(image, iconRect, toQColor(AppTheme::bgMain)), toQColor(AppTheme::stateWarning));
        peer.kill();
        peer.waitForFinished();
        // Freed and applied again: listening.
        f.click("applyOsc");
        QTRY_COMPARE(f.text("oscStatusText"), QStringLiteral("Écoute OSC active sur le port %1").arg(port));
        QCOMPARE(f.at("oscStatusIcon")->property("symbol").toString(), QStringLiteral("checkmark.circle.fill"));
    }

    // Stored at once, in force when applied, like the rest of the tab; a real peer then gets the
    // current state, then each change.
    void theStateChangesSwitchTakesEffectWhenApplied()
    {
        QUdpSocket peer;
        QVERIFY(peer.bind(QHostAddress::LocalHost, 0));
        SettingsFixture f;
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        f.network.attach(&f.engine, f.clock);
        f.openTab(1);
        f.click("oscSendSwitch");
        f.type("oscSendPort", QString::number(peer.localPort()));
        f.click("oscStateChangesSwitch");
        QCOMPARE(stored("oscSendStateChanges").toBool(), true);
        QVERIFY(!f.network.sendsStateChanges());
        f.settle("oscStateChangesSwitch");
        keepScreenshot(f.shot(), QStringLiteral("settings-osc-state-changes"));
        f.click("applyOsc");
        QVERIFY(f.network.sendsStateChanges());
        f.engine.start();
        const auto stateMessages = [&] {
            QList<QByteArray> found;
            while (peer.hasPendingDatagrams()) {
                QByteArray datagram(peer.pendingDatagramSize(), Qt::Uninitialized);
                peer.readDatagram(datagram.data(), datagram.size());
                if (datagram.startsWith("/kairon/state"))
                    found << datagram;
            }
            return found;
        };
        QList<QByteArray> received;
        QTRY_VERIFY((received << stateMessages()).size() >= 2);
        QCOMPARE(received[0], OSCCodec::encode(QStringLiteral("/kairon/state"),
                                               {qint32(0), qint32(0), qint32(0), QString(), qint32(0),
                                                qint32(0), qint32(0)}));
        QCOMPARE(received[1], OSCCodec::encode(QStringLiteral("/kairon/state"),
                                               {qint32(1), qint32(0), qint32(1), QStringLiteral("Intro"),
                                                qint32(0), qint32(0), qint32(0)}));
        // Off, stored and applied: no more.
        f.click("oscStateChangesSwitch");
        QCOMPARE(stored("oscSendStateChanges").toBool(), false);
        f.click("applyOsc");
        QVERIFY(!f.network.sendsStateChanges());
    }

    void theAlertSoundsSwitchIsTheEngines()
    {
        SettingsFixture f;
        QQuickItem *sounds = f.at("alertSoundsSwitch");
        QCOMPARE(f.text("alertSoundsSwitch"), QStringLiteral("Alertes sonores aux seuils (warning / danger / fin)"));
        QVERIFY(sounds->property("checked").toBool());
        f.click("alertSoundsSwitch");
        QVERIFY(!f.engine.soundsEnabled());
        f.engine.setSoundsEnabled(true);
        QVERIFY(sounds->property("checked").toBool());
        QCOMPARE(keysStored(), QStringList{}); // not a stored preference
    }

    void theSplashSliderStaysWithin1And10WholeSeconds()
    {
        SettingsFixture f;
        QQuickItem *slider = f.at("splashSlider");
        QCOMPARE(slider->property("value").toDouble(), 10.0);
        QCOMPARE(f.text("splashSeconds"), QStringLiteral("10 s"));
        f.click("splashSlider");
        QTRY_VERIFY(slider->hasActiveFocus());
        for (int i = 0; i < 12; ++i) // past the top
            QTest::keyClick(f.settingsWindow, Qt::Key_Right);
        QCOMPARE(stored("splashDuration").toDouble(), 10.0);
        QCOMPARE(f.text("splashSeconds"), QStringLiteral("10 s"));
        for (int i = 0; i < 12; ++i) // past the bottom
            QTest::keyClick(f.settingsWindow, Qt::Key_Left);
        QCOMPARE(stored("splashDuration").toDouble(), 1.0);
        QCOMPARE(f.text("splashSeconds"), QStringLiteral("1 s"));
        QTest::keyClick(f.settingsWindow, Qt::Key_Right);
        QTest::keyClick(f.settingsWindow, Qt::Key_Right);
        QCOMPARE(stored("splashDuration").toDouble(), 3.0);
        QCOMPARE(f.text("splashSeconds"), QStringLiteral("3 s"));
        // A drag to either end and past it.
        const QPointF left = slider->mapToScene(QPointF(-40, slider->height() / 2));
        const QPointF right = slider->mapToScene(QPointF(slider->width() + 40, slider->height() / 2));
        QTest::mousePress(f.settingsWindow, Qt::LeftButton, {}, f.centre(slider));
        QTest::mouseMove(f.settingsWindow, right.toPoint());
        QTest::mouseRelease(f.settingsWindow, Qt::LeftButton, {}, right.toPoint());
        QCOMPARE(stored("splashDuration").toDouble(), 10.0);
        QTest::mousePress(f.settingsWindow, Qt::LeftButton, {}, f.centre(slider));
        QTest::mouseMove(f.settingsWindow, left.toPoint());
        QTest::mouseRelease(f.settingsWindow, Qt::LeftButton, {}, left.toPoint());
        QCOMPARE(stored("splashDuration").toDouble(), 1.0);
    }

    void aStoredSplashDurationOutsideTheRangeShowsAsItsNearestEnd()
    {
        QFETCH(double, seconds);
        QFETCH(int, shown);
        SettingsSandbox sandbox;
        QSettings().setValue("splashDuration", seconds);
        AppFixture f;
        QCOMPARE(f.settings.splashSeconds(), shown);
    }
    void aStoredSplashDurationOutsideTheRangeShowsAsItsNearestEnd_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("shown");
        QTest::newRow("0") << 0.0 << 1;
        QTest::newRow("0.5") << 0.5 << 1;
        QTest::newRow("4.4") << 4.4 << 4;
        QTest::newRow("25") << 25.0 << 10;
    }

    void theNotesAndTheKeysReadAsOnThisPlatform()
    {
        SettingsFixture f;
        QStringList notes;
        for (const char *group : {"alertOutputMenu", "alertSoundsSwitch", "splashSlider"}) {
            QQuickItem *column = f.at(group)->parentItem();
            while (column && !column->property("note").isValid())
                column = column->parentItem();
            notes << column->property("note").toString();
        }
        QCOMPARE(notes, (QStringList{
                            "Liste identique à Paramètres → Son. Mise à jour automatique au branchement. "
                            "Si la sortie choisie disparaît, repli sur la sortie système.",
                            "Sons système : Tink (warning), Ping (danger), Basso (temps écoulé).",
                            "Cliquer sur l'écran de démarrage le passe immédiatement."}));
        QStringList keys;
        QStringList actions;
        for (int i = 0; i < 8; ++i) {
            QQuickItem *row = f.at(qPrintable(QStringLiteral("shortcut%1").arg(i)));
            keys << findQuickItem(row, "keys")->property("text").toString();
            actions << findQuickItem(row, "action")->property("text").toString();
        }
        QCOMPARE(keys, (QStringList{"Espace", "Ctrl+.", "Ctrl+R", "Ctrl+→ / Ctrl+←", "Ctrl+B", "Ctrl+F",
                                    "Ctrl+K", "Ctrl+L"}));
        QCOMPARE(actions, (QStringList{"Play / Pause", "Stop", "Reset", "Cue suivant / précédent", "Blackout",
                                       "Freeze", "Mode horloge", "Blink — flash speaker"}));
    }

    void renamingGivesTheShowTheNameAsTypedAndAnEmptyFieldDoesNothing()
    {
        SettingsFixture f;
        TimerSession show = showOf({durationCue("Intro", 600)});
        show.name = QStringLiteral("Gala");
        f.engine.loadSession(show);
        f.openTab(4);
        QCOMPARE(f.text("sessionNameField"), QString()); // starts empty
        f.click("renameSession");
        QCOMPARE(f.engine.sessionName(), QStringLiteral("Gala"));
        f.type("sessionNameField", QStringLiteral(" Nuit 2026 "));
        f.click("renameSession");
        QCOMPARE(f.engine.sessionName(), QStringLiteral(" Nuit 2026 "));
        QCOMPARE(f.engine.session().cues.size(), 1);
        keepScreenshot(f.shot(), QStringLiteral("settings-session"));
    }

    void savingNamesTheFileOrTheError()
    {
        SettingsFixture f;
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        f.openTab(4);
        QVERIFY(!f.shown("saveResult"));
        f.click("saveProject");
        const QString file = QDir(f.store.folder()).filePath(UuidText::canonical(f.engine.session().id) + ".orvprjct");
        QVERIFY(QFileInfo::exists(file));
        QCOMPARE(f.text("saveResult"), QStringLiteral("Projet sauvegardé : ") + QFileInfo(file).fileName());
        QVERIFY(f.shown("saveResult"));
        keepScreenshot(f.shot(), QStringLiteral("settings-session-saved"));

        QVERIFY(QFile::remove(file));
        QVERIFY(QDir().mkpath(file)); // a folder where the file goes
        f.click("saveProject");
        QVERIFY2(f.text("saveResult").startsWith(QStringLiteral("Erreur : ")), qPrintable(f.text("saveResult")));
        QVERIFY(f.text("saveResult").size() > QStringLiteral("Erreur : ").size());
        keepScreenshot(f.shot(), QStringLiteral("settings-session-error"));
    }

    // Space stays the transport's key whatever control of the window has the focus; only a
    // text field keeps it as a space.
    void spacePlaysAndPausesWhateverControlHasTheFocus()
    {
        SettingsFixture f;
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        f.click("alertSoundsSwitch");
        QVERIFY(!f.engine.soundsEnabled());
        QTRY_VERIFY(f.at("alertSoundsSwitch")->hasActiveFocus());
        QTest::keyClick(f.settingsWindow, Qt::Key_Space);
        QVERIFY(f.engine.isRunning() && !f.engine.isPaused());
        QVERIFY(!f.engine.soundsEnabled()); // the switch kept its state
        f.openTab(1);
        QTRY_VERIFY(f.at("settingsTab1")->hasActiveFocus());
        QTest::keyClick(f.settingsWindow, Qt::Key_Space);
        QVERIFY(f.engine.isPaused());
        f.click("applyOsc");
        QTest::keyClick(f.settingsWindow, Qt::Key_Space);
        QVERIFY(!f.engine.isPaused());
        f.click("oscSendHost");
        QTRY_VERIFY(f.at("oscSendHost")->hasActiveFocus());
        QTest::keyClick(f.settingsWindow, Qt::Key_Space);
        QVERIFY(!f.engine.isPaused());
        QCOMPARE(f.text("oscSendHost"), QStringLiteral("127.0.0.1 "));
    }

    void theSettingsOpenFromTheGearAndFromCtrlComma()
    {
        SettingsSandbox sandbox;
        AppFixture f;
        QQuickWindow *settings = f.window("settingsWindow");
        QVERIFY(!settings->isVisible());
        QTest::keyClick(f.operatorWindow, Qt::Key_Comma, Qt::ControlModifier);
        QTRY_VERIFY(settings->isVisible());
        settings->close();
        QVERIFY(!settings->isVisible());
        f.engine.loadSession(showOf({durationCue("Intro", 600)}));
        f.flow.setStage(AppFlowState::Workspace);
        QTRY_VERIFY(f.item("openSettings"));
        QQuickItem *gear = f.item("openSettings");
        QTRY_VERIFY(gear->isVisible() && gear->window()->isExposed());
        QTest::mouseClick(f.operatorWindow, Qt::LeftButton, {},
                          gear->mapToScene(QPointF(gear->width() / 2, gear->height() / 2)).toPoint());
        QTRY_VERIFY(settings->isVisible());
    }
};

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
