// Latency of an alert: from SoundManager::play() on the main thread to the first sample of the
// sound reaching the chosen output, as recorded from its monitor by parec (whose own few
// milliseconds are included). Needs a PulseAudio server with an output named by the first
// argument; bench/run-alert-latency.sh starts one.
#include "preferences.h"
#include "soundmanager.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("KaironBench"));
    const QString sink = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("kairon_stage");
    const int rounds = argc > 2 ? std::max(1, atoi(argv[2])) : 20;
    Preferences::setAlertOutputUID(sink);

    QProcess parec;
    parec.start(QStringLiteral("parec"),
                {QStringLiteral("-d"), sink + QStringLiteral(".monitor"),
                 QStringLiteral("--format=s16le"), QStringLiteral("--rate=48000"),
                 QStringLiteral("--channels=2"), QStringLiteral("--latency-msec=1")});
    if (!parec.waitForStarted())
        return 1;

    QElapsedTimer clock;
    clock.start();
    qint64 soundAt = -1; // ns on `clock` when the first audible sample came in
    QObject::connect(&parec, &QProcess::readyReadStandardOutput, [&] {
        const QByteArray chunk = parec.readAllStandardOutput();
        const auto *samples = reinterpret_cast<const qint16 *>(chunk.constData());
        for (qsizetype i = 0; i < chunk.size() / 2 && soundAt < 0; ++i) {
            if (std::abs(int(samples[i])) > 300)
                soundAt = clock.nsecsElapsed();
        }
    });

    SoundManager sounds;
    QTest::qWait(1000); // let the recorder settle
    std::vector<double> latencies;
    for (int round = 0; round < rounds; ++round) {
        soundAt = -1;
        const qint64 playedAt = clock.nsecsElapsed();
        sounds.play(QStringLiteral("Ping"));
        if (!QTest::qWaitFor([&] { return soundAt >= 0; }, 3000)) {
            std::printf("round %d: no sound reached %s\n", round + 1, qPrintable(sink));
            continue;
        }
        latencies.push_back((soundAt - playedAt) / 1e6);
        std::printf(" %.1f", latencies.back());
        std::fflush(stdout);
        QTest::qWait(1500); // the rest of the alert and some silence
    }
    parec.kill();
    parec.waitForFinished();
    if (latencies.empty())
        return 1;
    std::printf("\n");
    std::sort(latencies.begin(), latencies.end());
    std::printf("%zu alerts on %s: from play() to the first sample at the output: median %.1f ms, "
                "min %.1f ms, max %.1f ms\n",
                latencies.size(), qPrintable(sink), latencies[latencies.size() / 2],
                latencies.front(), latencies.back());
    return 0;
}
