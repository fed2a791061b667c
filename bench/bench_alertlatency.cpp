// Latency of an alert: from SoundManager::play() on the main thread to the first sample of the
// sound reaching the chosen output, as recorded from its monitor by parec (whose own few
// milliseconds are included), with the cores idle or each held by an endless shell loop (the
// third argument: how many loops). Needs a PulseAudio server with an output named by the first
// argument; bench/run-alert-latency.sh starts one.
#include "preferences.h"
#include "soundmanager.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("KaironBench"));
    const QString sink = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("kairon_stage");
    const int rounds = argc > 2 ? std::max(1, atoi(argv[2])) : 20;
    const int busyLoops = argc > 3 ? std::max(0, atoi(argv[3])) : 0;
    Preferences::setAlertOutputUID(sink);

    std::vector<std::unique_ptr<QProcess>> loops;
    for (int i = 0; i < busyLoops; ++i) {
        loops.push_back(std::make_unique<QProcess>());
        loops.back()->start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("while :; do :; done")});
        if (!loops.back()->waitForStarted())
            return 1;
    }

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
    // Waits in the event loop, never in a sleep: each piece of the recording is looked at the
    // moment it comes.
    QEventLoop waiting;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &waiting, &QEventLoop::quit);
    QObject::connect(&parec, &QProcess::readyReadStandardOutput, [&] {
        const QByteArray chunk = parec.readAllStandardOutput();
        const auto *samples = reinterpret_cast<const qint16 *>(chunk.constData());
        for (qsizetype i = 0; i < chunk.size() / 2 && soundAt < 0; ++i) {
            if (std::abs(int(samples[i])) > 300)
                soundAt = clock.nsecsElapsed();
        }
        if (soundAt >= 0)
            waiting.quit();
    });

    SoundManager sounds;
    QTest::qWait(1000); // let the recorder settle
    std::vector<double> latencies;
    for (int round = 0; round < rounds; ++round) {
        soundAt = -1;
        const qint64 playedAt = clock.nsecsElapsed();
        sounds.play(QStringLiteral("Ping"));
        deadline.start(3000);
        waiting.exec();
        deadline.stop();
        if (soundAt < 0) {
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
    for (const auto &loop : loops) {
        loop->kill();
        loop->waitForFinished();
    }
    if (latencies.empty())
        return 1;
    std::printf("\n");
    std::sort(latencies.begin(), latencies.end());
    std::printf("%zu alerts on %s, %d busy loops: from play() to the first sample at the output: "
                "median %.1f ms, min %.1f ms, max %.1f ms\n",
                latencies.size(), qPrintable(sink), busyLoops, latencies[latencies.size() / 2],
                latencies.front(), latencies.back());
    return 0;
}
