#include "audiodevicemanager.h"
#include "audiodevicewatcher.h"
#include "audiotestmain.h"
#include "soundmanager.h"

#include <QSignalSpy>
#include <QTest>

// Runs with no sound server reachable at all.
class TestAudioWithoutServer : public QObject
{
    Q_OBJECT

private slots:
    void thereIsNoOutputAndTheSystemEntryHasNoName()
    {
        QVERIFY(AudioDeviceManager::outputDevices().isEmpty());
        QVERIFY(!AudioDeviceManager::deviceForUID(QStringLiteral("kairon_main")));
        QCOMPARE(AudioDeviceManager::systemOutputLabel(), QStringLiteral("Sortie système"));
    }

    void alertsPlayNowhereAndNothingFails()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("KaironTests"));
        SoundManager sounds;
        for (const char *name : {"Tink", "Ping", "Basso", "Glass", "Inconnu"})
            sounds.play(QString::fromLatin1(name));
        QCoreApplication::processEvents();
    }

    void theWatcherStaysQuiet()
    {
        AudioDeviceWatcher watcher;
        QSignalSpy changed(&watcher, &AudioDeviceWatcher::audioDevicesChanged);
        watcher.startListeningForChanges();
        QVERIFY(!changed.wait(3 * AudioDeviceWatcher::pollIntervalMs));
    }
};

KAIRON_AUDIO_TEST_MAIN(TestAudioWithoutServer)
#include "tst_audio_noserver.moc"
