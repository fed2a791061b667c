#include "alertsynth.h"
#include "audiotestmain.h"
#include "pcmscan.h"
#include "preferences.h"
#include "sinktap.h"
#include "soundmanager.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>
#include <QThread>

#include <memory>
#include <vector>

// Alerts while every core of the machine is held by an endless shell loop (two on a machine of
// two cores), as when a show's machine is busy encoding or streaming. A fresh sound manager
// opens its stream on the chosen output before any alert; then each alert is recorded from the
// output and measured sample by sample: it reaches the output within 50 ms of its request (on
// the output's own clock, see SinkTap), holds no silence of 1 ms or more, and is the very
// samples of the sound. Runs against the private server of with-pulseaudio.sh, alone
// (RUN_SERIAL): the loops would slow the other tests down.
class TestAlertUnderLoad : public QObject
{
    Q_OBJECT

private:
    static constexpr int alerts = 50;
    static constexpr qint64 latestStartNs = 50'000'000;
    static constexpr qsizetype shortestGapFrames = PcmScan::rate / 1000; // 1 ms
    // Silence that tells an alert is over, as in tst_alertrepetition.
    static constexpr qsizetype closingFrames = PcmScan::rate / 5;
    const QString sink = QStringLiteral("kairon_stage");
    const QString sound = QStringLiteral("Tink"); // the shortest

    std::vector<std::unique_ptr<QProcess>> m_loops;

    static QJsonArray pactlJson(const QStringList &arguments)
    {
        QProcess pactl;
        pactl.start(QStringLiteral("pactl"), QStringList{QStringLiteral("--format=json")} + arguments);
        pactl.waitForFinished(10000);
        return QJsonDocument::fromJson(pactl.readAllStandardOutput()).array();
    }

    // How far ahead of its clock the output named `sinkName` takes what it plays: its configured
    // latency.
    static qint64 leadNs(const QString &sinkName)
    {
        for (const QJsonValue &sink : pactlJson({QStringLiteral("list"), QStringLiteral("sinks")})) {
            if (sink[QStringLiteral("name")].toString() == sinkName)
                return qint64(sink[QStringLiteral("latency")][QStringLiteral("configured")].toDouble() * 1000);
        }
        return -1;
    }

    // The playback streams this process has open on the output named `sinkName`.
    static int streamsOfOursOn(const QString &sinkName)
    {
        int sinkIndex = -1;
        for (const QJsonValue &sink : pactlJson({QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("sinks")})) {
            if (sink[QStringLiteral("name")].toString() == sinkName)
                sinkIndex = sink[QStringLiteral("index")].toInt();
        }
        const QString pid = QString::number(QCoreApplication::applicationPid());
        int count = 0;
        for (const QJsonValue &input : pactlJson({QStringLiteral("list"), QStringLiteral("sink-inputs")})) {
            count += input[QStringLiteral("sink")].toInt() == sinkIndex
                     && input[QStringLiteral("properties")][QStringLiteral("application.process.id")].toString() == pid;
        }
        return count;
    }

private slots:
    void initTestCase()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("KaironTests"));
        QCoreApplication::setApplicationName(QStringLiteral("tst_alertunderload"));
        Preferences::setAlertOutputUID(sink);
        const int cores = std::max(2, QThread::idealThreadCount());
        for (int i = 0; i < cores; ++i) {
            auto loop = std::make_unique<QProcess>();
            loop->start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("while :; do :; done")});
            QVERIFY(loop->waitForStarted());
            m_loops.push_back(std::move(loop));
        }
    }

    void cleanupTestCase()
    {
        for (const auto &loop : m_loops) {
            loop->kill();
            loop->waitForFinished();
        }
        m_loops.clear();
    }

    void everyAlertStartsOnTimeAndWholeOnBusyCores()
    {
        const QByteArray pcm = AlertSynth::render(sound);
        const PcmScan::Sound made = PcmScan::measure(pcm);
        const qsizetype frameBytes = PcmScan::channels * sizeof(qint16);
        const QByteArray madeSamples =
            pcm.mid(made.first * frameBytes, (made.last - made.first + 1) * frameBytes);
        SoundManager sounds; // a fresh one: the first alert is its first
        // The stream of the first alert is open before that alert is asked for.
        QVERIFY(QTest::qWaitFor([&] { return streamsOfOursOn(sink) == 1; }, 10000));

        SinkTap tap(sink);
        QVERIFY(tap.recordFor(0.3));
        tap.startClock();
        QVERIFY(tap.recordFor(0.6));
        QVERIFY2(PcmScan::measure(tap.pcm()).isEmpty(), "the output was not silent before the alerts");
        tap.drop(PcmScan::frameCount(tap.pcm()));
        const qint64 lead = leadNs(sink);
        QVERIFY(lead >= 0);

        qsizetype longestGap = 0;
        qint64 latestStart = 0;
        for (int alert = 1; alert <= alerts; ++alert) {
            const qint64 askedAt = SinkTap::steadyNs();
            sounds.play(sound);
            std::optional<PcmScan::Sound> heard;
            const bool over = tap.waitFor(
                [&] { return (heard = PcmScan::nextSound(tap.pcm(), 0, closingFrames)).has_value(); },
                8000);
            QVERIFY2(over, qPrintable(QStringLiteral("alert %1 was not heard or never ended").arg(alert)));
            // By when the output surely had the sound's first frame.
            const qint64 startNs = tap.nanosecondsAt(heard->first - made.first) + lead - askedAt;
            const bool whole =
                tap.pcm().mid(heard->first * frameBytes, (heard->last - heard->first + 1) * frameBytes)
                == madeSamples;
            tap.drop(heard->last + 1);
            longestGap = std::max(longestGap, heard->longestGap);
            latestStart = std::max(latestStart, startNs);
            const QString what =
                QStringLiteral("alert %1: started %2 ms after its request, %3 s long, longest silence %4 ms")
                    .arg(alert)
                    .arg(startNs / 1e6, 0, 'f', 1)
                    .arg(heard->seconds(), 0, 'f', 4)
                    .arg(heard->longestGapMs(), 0, 'f', 2);
            qInfo("%s", qPrintable(what));
            QVERIFY2(heard->longestGap < shortestGapFrames, qPrintable(what));
            QVERIFY2(whole, qPrintable(what + QStringLiteral(", not sample for sample the sound")));
            QVERIFY2(startNs <= latestStartNs, qPrintable(what));
        }
        for (const auto &loop : m_loops)
            QCOMPARE(loop->state(), QProcess::Running); // the cores were busy throughout
        QCOMPARE(leadNs(sink), lead); // the bound held for every alert
        // The streams that played are closed; the next alert's stays open.
        QVERIFY(QTest::qWaitFor([&] { return streamsOfOursOn(sink) == 1; }, 10000));
        qInfo("%d alerts: the latest start %.1f ms after its request (the output's latency, %.1f ms, "
              "included), the longest silence inside %.2f ms",
              alerts, latestStart / 1e6, lead / 1e6, longestGap * 1000.0 / PcmScan::rate);
    }
};

KAIRON_AUDIO_TEST_MAIN(TestAlertUnderLoad)
#include "tst_alertunderload.moc"
