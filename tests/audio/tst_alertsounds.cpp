#include "alertsynth.h"
#include "audiotestmain.h"

#include <QFile>
#include <QTest>
#include <QWaveDecoder>

#include <cmath>

namespace {

struct Levels {
    double seconds = 0;
    int peak = 0; // largest magnitude of a sample
    bool clipped = false;
    int firstMagnitude = 0;
    int lastMagnitude = 0;
};

Levels levelsOf(const QByteArray &pcm)
{
    Levels l;
    const auto *samples = reinterpret_cast<const qint16 *>(pcm.constData());
    const qsizetype count = pcm.size() / 2;
    l.seconds = double(count / AlertSynth::channels) / AlertSynth::sampleRate;
    for (qsizetype i = 0; i < count; ++i) {
        const int magnitude = std::abs(int(samples[i]));
        l.peak = std::max(l.peak, magnitude);
        l.clipped = l.clipped || samples[i] == 32767 || samples[i] == -32768;
    }
    l.firstMagnitude = std::abs(int(samples[0]));
    l.lastMagnitude = std::abs(int(samples[count - 1]));
    return l;
}

// The dominant frequency over the first 60 ms, by counting zero crossings of one channel.
double dominantFrequency(const QByteArray &pcm)
{
    const auto *samples = reinterpret_cast<const qint16 *>(pcm.constData());
    const int frames = AlertSynth::sampleRate * 60 / 1000;
    int crossings = 0;
    for (int i = 1; i < frames; ++i) {
        if ((samples[2 * (i - 1)] < 0) != (samples[2 * i] < 0))
            ++crossings;
    }
    return crossings / 2.0 / 0.060;
}

} // namespace

class TestAlertSounds : public QObject
{
    Q_OBJECT

private slots:
    void theFourNamesAreThoseTheEngineAsksFor()
    {
        QCOMPARE(AlertSynth::names(), (QStringList{"Tink", "Ping", "Basso", "Glass"}));
        QVERIFY(AlertSynth::render(QStringLiteral("Sosumi")).isEmpty());
    }

    void eachSoundHasItsLengthAndLevelAndNeverClips_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("peakDbfs");
        QTest::newRow("Tink") << "Tink" << 0.40 << -9.0;
        QTest::newRow("Ping") << "Ping" << 0.60 << -5.0;
        QTest::newRow("Basso") << "Basso" << 0.90 << -4.0;
        QTest::newRow("Glass") << "Glass" << 0.85 << -6.0;
    }

    void eachSoundHasItsLengthAndLevelAndNeverClips()
    {
        QFETCH(QString, name);
        QFETCH(double, seconds);
        QFETCH(double, peakDbfs);
        const QByteArray pcm = AlertSynth::render(name);
        const Levels l = levelsOf(pcm);
        QCOMPARE(l.seconds, seconds);
        QVERIFY(l.seconds < 1.0);
        QCOMPARE(AlertSynth::lengthOf(name), seconds);
        QCOMPARE(AlertSynth::peakDbfsOf(name), peakDbfs);
        const double measuredDbfs = 20 * std::log10(l.peak / 32767.0);
        QVERIFY2(std::abs(measuredDbfs - peakDbfs) < 0.01, qPrintable(QString::number(measuredDbfs)));
        QVERIFY(!l.clipped);
        // Starts and ends on silence: no click.
        QVERIFY(l.firstMagnitude < 50);
        QVERIFY(l.lastMagnitude < 50);
    }

    void theSoundsAreClearlyDifferent()
    {
        // Basso is low, Tink and Ping high, Glass a chime of two notes.
        QVERIFY(std::abs(dominantFrequency(AlertSynth::render(QStringLiteral("Basso"))) - 220) < 40);
        QVERIFY(std::abs(dominantFrequency(AlertSynth::render(QStringLiteral("Tink"))) - 1318) < 150);
        QVERIFY(std::abs(dominantFrequency(AlertSynth::render(QStringLiteral("Ping"))) - 1760) < 150);
        QVERIFY(std::abs(dominantFrequency(AlertSynth::render(QStringLiteral("Glass"))) - 1568) < 150);
        for (const QString &a : AlertSynth::names())
            for (const QString &b : AlertSynth::names())
                QVERIFY(a == b || AlertSynth::render(a) != AlertSynth::render(b));
    }

    void theEmbeddedFilesAreTheSynthesisedSounds()
    {
        for (const QString &name : AlertSynth::names()) {
            QFile file(QStringLiteral(":/sounds/") + name + QStringLiteral(".wav"));
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(name));
            QWaveDecoder wav(&file);
            QVERIFY(wav.open(QIODevice::ReadOnly));
            QCOMPARE(wav.audioFormat().sampleRate(), 48000);
            QCOMPARE(wav.audioFormat().channelCount(), 2);
            QCOMPARE(wav.audioFormat().sampleFormat(), QAudioFormat::Int16);
            QCOMPARE(wav.readAll(), AlertSynth::render(name));
        }
    }
};

KAIRON_AUDIO_TEST_MAIN(TestAlertSounds)
#include "tst_alertsounds.moc"
