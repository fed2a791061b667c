#include "alertsynth.h"
#include "audiotestmain.h"
#include "pcmscan.h"
#include "preferences.h"
#include "sinktap.h"
#include "soundmanager.h"

#include <QTest>

// Alerts played one after the other on the same output, for as long as the application runs,
// each recorded from the output and measured sample by sample: every one must sound like the
// first. Runs against the private server of with-pulseaudio.sh: kairon_main is the default
// output.
class TestAlertRepetition : public QObject
{
    Q_OBJECT

private:
    static constexpr int alerts = 30;
    // Silence that tells an alert is over: far longer than any dropout, far shorter than the
    // time between alerts in a show.
    static constexpr qsizetype closingFrames = PcmScan::rate / 5; // 200 ms
    const QString sound = QStringLiteral("Tink"); // the shortest

    // Plays the alerts on `sink`, each once the previous one has played out, and checks each
    // as it comes: no gap inside it, the length of the first, the very samples of the sound.
    void playInARowOn(const QString &sink)
    {
        const QByteArray pcm = AlertSynth::render(sound);
        const PcmScan::Sound made = PcmScan::measure(pcm);
        SinkTap tap(sink);
        QVERIFY(tap.recordFor(0.2));
        QVERIFY2(PcmScan::measure(tap.pcm()).isEmpty(), "the output was not silent before the alerts");

        qsizetype from = PcmScan::frameCount(tap.pcm());
        double firstLength = 0;
        for (int alert = 1; alert <= alerts; ++alert) {
            m_sounds->play(sound);
            std::optional<PcmScan::Sound> heard;
            // Much longer than the sound, to measure a stretched one rather than give up on it.
            const bool over = QTest::qWaitFor(
                [&] { return (heard = PcmScan::nextSound(tap.pcm(), from, closingFrames)).has_value(); },
                8000);
            QVERIFY2(over, qPrintable(QStringLiteral("alert %1 on %2 was not heard or never ended")
                                          .arg(alert).arg(sink)));
            from = heard->last + 1;
            qInfo("alert %2d on %s: %.4f s, %lld gaps, longest silence %.2f ms", alert,
                  qPrintable(sink), heard->seconds(), qlonglong(heard->gaps), heard->longestGapMs());
            const QString what = QStringLiteral("alert %1 on %2: %3 s with %4 gaps (the longest %5 ms)")
                                     .arg(alert)
                                     .arg(sink)
                                     .arg(heard->seconds(), 0, 'f', 4)
                                     .arg(heard->gaps)
                                     .arg(heard->longestGapMs(), 0, 'f', 2);
            QVERIFY2(heard->gaps == 0, qPrintable(what));
            if (alert == 1) {
                firstLength = heard->seconds();
                QVERIFY2(std::abs(firstLength - made.seconds()) <= 0.010, qPrintable(what));
            }
            QVERIFY2(std::abs(heard->seconds() - firstLength) <= 0.010, qPrintable(what));
            // Full volume, mixed with nothing but silence: the sink gets the sound untouched.
            const qsizetype frameBytes = PcmScan::channels * sizeof(qint16);
            QVERIFY2(tap.pcm().mid(heard->first * frameBytes, (heard->last - heard->first + 1) * frameBytes)
                         == pcm.mid(made.first * frameBytes, (made.last - made.first + 1) * frameBytes),
                     qPrintable(what + QStringLiteral(", not sample for sample the sound")));
        }
    }

    std::unique_ptr<SoundManager> m_sounds;

private slots:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("KaironTests"));
        QCoreApplication::setApplicationName(QStringLiteral("tst_alertrepetition"));
    }

    void init() { m_sounds = std::make_unique<SoundManager>(); }
    void cleanup() { m_sounds.reset(); }

    // What the measures below rest on: a sound as made holds no gap, and its length is its own.
    void noSoundHoldsASilenceOfItsOwn_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : AlertSynth::names())
            QTest::newRow(qPrintable(name)) << name;
    }

    void noSoundHoldsASilenceOfItsOwn()
    {
        QFETCH(QString, name);
        const QByteArray pcm = AlertSynth::render(name);
        const PcmScan::Sound made = PcmScan::measure(pcm);
        QCOMPARE(made.gaps, qsizetype(0));
        // Where a sound has decayed, a few frames may round to zero: far from a gap.
        QVERIFY2(made.longestGap * 4 < PcmScan::minGapFrames,
                 qPrintable(QString::number(made.longestGap)));
        QVERIFY(std::abs(made.seconds() - AlertSynth::lengthOf(name)) < 0.001);

        // The same sound with 3 ms cut out of its middle shows one gap of exactly that.
        QByteArray chopped = pcm;
        const qsizetype middle = PcmScan::frameCount(pcm) / 2 * 4;
        chopped.replace(middle, 144 * 4, QByteArray(144 * 4, '\0'));
        const PcmScan::Sound cut = PcmScan::measure(chopped);
        QCOMPARE(cut.gaps, qsizetype(1));
        QVERIFY(cut.longestGap >= 144 && cut.longestGap <= 146); // a crossing may touch it
        QCOMPARE(cut.seconds(), made.seconds());
    }

    void everyAlertOnTheChosenOutputSoundsLikeTheFirst()
    {
        Preferences::setAlertOutputUID(QStringLiteral("kairon_stage"));
        playInARowOn(QStringLiteral("kairon_stage"));
    }

    void everyAlertOnTheSystemOutputSoundsLikeTheFirst()
    {
        Preferences::setAlertOutputUID(QString());
        playInARowOn(QStringLiteral("kairon_main"));
    }
};

KAIRON_AUDIO_TEST_MAIN(TestAlertRepetition)
#include "tst_alertrepetition.moc"
