#include "alertsynth.h"
#include "audiodevicemanager.h"
#include "audiotestmain.h"
#include "preferences.h"
#include "sinkrecorder.h"
#include "soundmanager.h"

#include <QTest>

// Runs against the private server of with-pulseaudio.sh: kairon_main is the default output.
class TestSoundManager : public QObject
{
    Q_OBJECT

private:
    // What reached each output while alerts were played.
    struct Heard {
        QMap<QString, SinkRecorder::Measure> outputs;
        double peak(const QString &sink) const { return outputs.value(sink).peak; }
        double length(const QString &sink) const { return outputs.value(sink).soundLength; }
    };

    // Plays the alerts, `gapMs` apart, and records the outputs until they have surely played
    // out.
    Heard playAndRecord(const QStringList &names, const QStringList &sinks, int gapMs = 0)
    {
        std::vector<std::unique_ptr<SinkRecorder>> recorders;
        for (const QString &sink : sinks)
            recorders.push_back(std::make_unique<SinkRecorder>(sink));
        recorders.front()->recordFor(0.2);
        for (qsizetype i = 0; i < names.size(); ++i) {
            if (i > 0)
                QTest::qWait(gapMs);
            m_sounds->play(names[i]);
        }
        for (auto &recorder : recorders)
            recorder->recordFor(1.6);
        Heard heard;
        for (qsizetype i = 0; i < sinks.size(); ++i) {
            heard.outputs.insert(sinks[i], recorders[i]->stopAndMeasure());
            qInfo("%s on %s: peak %.4f, %.3f s", qPrintable(names.join('+')), qPrintable(sinks[i]),
                  heard.peak(sinks[i]), heard.length(sinks[i]));
        }
        return heard;
    }

    Heard playAndRecord(const QString &name, const QStringList &sinks)
    {
        return playAndRecord(QStringList{name}, sinks);
    }

    static double level(double dbfs) { return std::pow(10.0, dbfs / 20.0); }

    // A third output, plugged in by the test: returns the module to unplug it with, once the
    // application sees the output.
    static QString plugEars()
    {
        const QString module =
            pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                   QStringLiteral("sink_name=kairon_ears"), QStringLiteral("rate=48000"),
                   QStringLiteral("format=s16le"), QStringLiteral("channels=2"),
                   QStringLiteral("norewinds=1"),
                   QStringLiteral("sink_properties=device.description=Oreillettes")});
        if (!QTest::qWaitFor([] { return AudioDeviceManager::deviceForUID(QStringLiteral("kairon_ears")).has_value(); }, 10000))
            qFatal("the plugged output never showed");
        return module;
    }
    static void unplug(const QString &module)
    {
        pactl({QStringLiteral("unload-module"), module});
        if (!QTest::qWaitFor([] { return !AudioDeviceManager::deviceForUID(QStringLiteral("kairon_ears")).has_value(); }, 10000))
            qFatal("the unplugged output never went");
    }

    std::unique_ptr<SoundManager> m_sounds;
    const QString main = QStringLiteral("kairon_main");
    const QString stage = QStringLiteral("kairon_stage");
    const QString ears = QStringLiteral("kairon_ears");

private slots:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("KaironTests"));
        QCoreApplication::setApplicationName(QStringLiteral("tst_soundmanager"));
    }

    void init()
    {
        Preferences::setAlertOutputUID(QString());
        m_sounds = std::make_unique<SoundManager>();
    }

    void cleanup() { m_sounds.reset(); }

    void withNoChoiceTheAlertReachesTheDefaultOutputOnly()
    {
        const Heard heard = playAndRecord(QStringLiteral("Basso"), {main, stage});
        QVERIFY2(std::abs(heard.peak(main) - level(-4)) < 0.02,
                 qPrintable(QString::number(heard.peak(main))));
        QCOMPARE(heard.peak(stage), 0.0);
    }

    void theChosenOutputAloneGetsTheAlert()
    {
        Preferences::setAlertOutputUID(stage);
        const Heard heard = playAndRecord(QStringLiteral("Basso"), {main, stage});
        QVERIFY(std::abs(heard.peak(stage) - level(-4)) < 0.02);
        QCOMPARE(heard.peak(main), 0.0);
    }

    void anUnpluggedOutputFallsBackAndIsUsedAgainOnceBack()
    {
        QString module = plugEars();
        QVERIFY(!module.isEmpty());
        Preferences::setAlertOutputUID(ears);
        Heard heard = playAndRecord(QStringLiteral("Ping"), {main, ears});
        QVERIFY(heard.peak(ears) > 0.5);
        QCOMPARE(heard.peak(main), 0.0);

        unplug(module);
        heard = playAndRecord(QStringLiteral("Ping"), {main, stage});
        QVERIFY(std::abs(heard.peak(main) - level(-5)) < 0.02);
        QCOMPARE(heard.peak(stage), 0.0);

        module = plugEars(); // no other action: the preference still names it
        heard = playAndRecord(QStringLiteral("Ping"), {main, ears});
        QVERIFY(std::abs(heard.peak(ears) - level(-5)) < 0.02);
        QCOMPARE(heard.peak(main), 0.0);
        unplug(module);
    }

    void aSecondAlertCutsTheFirstOnTheChosenOutput()
    {
        Preferences::setAlertOutputUID(stage);
        const Heard alone = playAndRecord(QStringLiteral("Basso"), {stage});
        QVERIFY2(alone.length(stage) > 0.8, qPrintable(QString::number(alone.length(stage))));

        // Basso (0.9 s) then Tink (0.4 s) 50 ms later: about half a second of sound in all.
        const Heard cut =
            playAndRecord({QStringLiteral("Basso"), QStringLiteral("Tink")}, {stage}, 50);
        QVERIFY2(cut.length(stage) > 0.4 && cut.length(stage) < 0.7,
                 qPrintable(QString::number(cut.length(stage))));
        QVERIFY(std::abs(cut.peak(stage) - level(-4)) < 0.02); // Basso was heard, then cut
    }

    void changingTheChoiceRoutesTheNextAlertThere()
    {
        const QString module = plugEars();
        Preferences::setAlertOutputUID(stage);
        Heard heard = playAndRecord(QStringLiteral("Glass"), {main, stage, ears});
        QVERIFY(heard.peak(stage) > 0.4);
        QCOMPARE(heard.peak(ears), 0.0);

        Preferences::setAlertOutputUID(ears);
        heard = playAndRecord(QStringLiteral("Glass"), {main, stage, ears});
        QVERIFY(std::abs(heard.peak(ears) - level(-6)) < 0.02);
        QCOMPARE(heard.peak(stage), 0.0);
        QCOMPARE(heard.peak(main), 0.0);
        unplug(module);
    }

    void anUnknownOutputFallsBackToTheSystemOutput()
    {
        Preferences::setAlertOutputUID(QStringLiteral("alsa_output.usb-absent"));
        const Heard heard = playAndRecord(QStringLiteral("Tink"), {main, stage});
        QVERIFY(std::abs(heard.peak(main) - level(-9)) < 0.02);
        QCOMPARE(heard.peak(stage), 0.0);
    }

    void eachSoundReachesTheOutputWithItsLengthAndLevel_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"Tink", "Ping", "Basso", "Glass"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void eachSoundReachesTheOutputWithItsLengthAndLevel()
    {
        QFETCH(QString, name);
        Preferences::setAlertOutputUID(stage);
        const Heard heard = playAndRecord(name, {stage});
        const double expectedPeak = level(AlertSynth::peakDbfsOf(name));
        QVERIFY2(std::abs(heard.peak(stage) - expectedPeak) < 0.02,
                 qPrintable(QString::number(heard.peak(stage))));
        QVERIFY(heard.peak(stage) < 0.99); // never clips
        // The last 20 ms fade below the trimming threshold.
        const double length = heard.length(stage);
        QVERIFY2(length > AlertSynth::lengthOf(name) - 0.06 && length <= AlertSynth::lengthOf(name) + 0.01,
                 qPrintable(QString::number(length)));
    }
};

KAIRON_AUDIO_TEST_MAIN(TestSoundManager)
#include "tst_soundmanager.moc"
