#include "audiodevicemanager.h"
#include "audiodevicewatcher.h"
#include "audiotestmain.h"
#include "sinkrecorder.h"

#include <QSignalSpy>
#include <QTest>

// Runs against the private server of with-pulseaudio.sh: outputs kairon_main (the default,
// "Régie") and kairon_stage ("Retour scène"), input kairon_micro.
class TestAudioDevices : public QObject
{
    Q_OBJECT

private:
    static QString loadSink(const QString &name, const QString &description)
    {
        return pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                      QStringLiteral("sink_name=") + name,
                      QStringLiteral("sink_properties='device.description=\"%1\"'").arg(description)});
    }

    // The server's own order of its outputs.
    static QStringList platformOrder()
    {
        QStringList names;
        const QStringList lines =
            pactl({QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("sinks")})
                .split(u'\n');
        for (const QString &line : lines)
            names << line.section(u'\t', 1, 1);
        return names;
    }

    static QStringList uids()
    {
        QStringList list;
        for (const AudioOutputDevice &d : AudioDeviceManager::outputDevices())
            list << d.uid;
        return list;
    }

private slots:
    void listsTheOutputsInThePlatformsOrder()
    {
        const QList<AudioOutputDevice> devices = AudioDeviceManager::outputDevices();
        QCOMPARE(devices.size(), 2);
        QCOMPARE(devices[0], (AudioOutputDevice{0, QStringLiteral("kairon_main"), QStringLiteral("Régie")}));
        QCOMPARE(devices[1],
                 (AudioOutputDevice{1, QStringLiteral("kairon_stage"), QStringLiteral("Retour scène")}));
        QCOMPARE(uids(), platformOrder());
    }

    void anInputOnlyDeviceIsNeverListed()
    {
        QVERIFY(pactl({QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("sources")})
                    .contains(QStringLiteral("kairon_micro")));
        for (const AudioOutputDevice &d : AudioDeviceManager::outputDevices()) {
            QVERIFY(!d.uid.contains(QStringLiteral("micro")));
            QVERIFY(!d.uid.endsWith(QStringLiteral(".monitor")));
        }
        QVERIFY(!AudioDeviceManager::deviceForUID(QStringLiteral("kairon_micro")));
    }

    void findsADeviceByItsExactUid()
    {
        const auto stage = AudioDeviceManager::deviceForUID(QStringLiteral("kairon_stage"));
        QVERIFY(stage);
        QCOMPARE(stage->name, QStringLiteral("Retour scène"));
        QVERIFY(!AudioDeviceManager::deviceForUID(QStringLiteral("KAIRON_STAGE")));
        QVERIFY(!AudioDeviceManager::deviceForUID(QStringLiteral("kairon_sta")));
        QVERIFY(!AudioDeviceManager::deviceForUID(QString()));
        QVERIFY(AudioDeviceManager::platformDevice(QStringLiteral("kairon_stage")).mode()
                == QAudioDevice::Output);
        QVERIFY(AudioDeviceManager::platformDevice(QStringLiteral("absent")).isNull());
    }

    void theSystemOutputEntryNamesTheDefaultOutput()
    {
        QCOMPARE(AudioDeviceManager::systemOutputLabel(), QStringLiteral("Sortie système (Régie)"));
    }

    void loadingAndUnloadingAnOutputAreAnnounced()
    {
        AudioDeviceWatcher watcher;
        QSignalSpy changed(&watcher, &AudioDeviceWatcher::audioDevicesChanged);
        watcher.startListeningForChanges();
        watcher.startListeningForChanges(); // once per process: a second call changes nothing
        QVERIFY(watcher.isListening());

        const QString module = loadSink(QStringLiteral("kairon_usb"), QStringLiteral("USB"));
        QVERIFY(changed.wait(10000));
        QCOMPARE(changed.count(), 1);
        QVERIFY(uids().contains(QStringLiteral("kairon_usb")));

        pactl({QStringLiteral("unload-module"), module});
        QVERIFY(changed.wait(10000));
        QCOMPARE(changed.count(), 2);
        QVERIFY(!uids().contains(QStringLiteral("kairon_usb")));
    }

    void outputsWithTheSameNameAreToldApartByUid()
    {
        const QString module = loadSink(QStringLiteral("kairon_stage_2"), QStringLiteral("Retour scène"));
        QVERIFY(QTest::qWaitFor([] { return AudioDeviceManager::outputDevices().size() == 3; }, 10000));
        const QList<AudioOutputDevice> devices = AudioDeviceManager::outputDevices();
        QCOMPARE(devices[1].name, devices[2].name);
        QVERIFY(devices[1].uid != devices[2].uid);
        QCOMPARE(AudioDeviceManager::deviceForUID(QStringLiteral("kairon_stage_2"))->id, 2u);
        pactl({QStringLiteral("unload-module"), module});
    }
};

KAIRON_AUDIO_TEST_MAIN(TestAudioDevices)
#include "tst_audiodevices.moc"
