// Remote control under load, with the real clock, sockets and event loop:
//  1. command latency: from a datagram leaving a peer's socket to the engine operation running
//     on the main thread, over 10,000 commands;
//  2. a flood of 100,000 datagrams at full speed: how many were handled, and how late the main
//     loop's 0.1 s ticks ran meanwhile;
//  3. from a /kairon/play datagram to the /kairon/running 1 datagram reaching the peer;
//  4. 5,000 commands a second for 10 s: how many were lost;
//  5. floods of malformed datagrams holding one valid /kairon/adjust in twenty, with a cue
//     running: the longest gap between the engine's own ticks (goal: none above 105 ms).
// Run: build/bench/bench_osc
#include "benchsupport.h"
#include "networkcoordinator.h"
#include "preferences.h"
#include "systemclock.h"
#include "timerengine.h"

#include <QCoreApplication>
#include <QNetworkDatagram>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QUdpSocket>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

constexpr quint16 listenPort = 53391, sendPort = 53392;

void report(const char *what, std::vector<double> values, const char *unit)
{
    std::sort(values.begin(), values.end());
    const auto at = [&](double q) { return values[std::min(values.size() - 1, size_t(q * values.size()))]; };
    std::printf("%s: n=%zu median %.3f %s, p99 %.3f %s, max %.3f %s\n", what, values.size(), at(0.5),
                unit, at(0.99), unit, values.back(), unit);
}

void waitFor(const std::atomic<bool> &flag)
{
    while (!flag.load())
        std::this_thread::yield();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir settingsDir;
    QCoreApplication::setOrganizationName(QStringLiteral("KaironBench"));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());
    Preferences::setOscListenEnabled(true);
    Preferences::setOscListenPort(listenPort);
    Preferences::setOscSendEnabled(true);
    Preferences::setOscSendPort(sendPort);

    SystemClock clock;
    SilentPlayer sound;
    TimerEngine engine(clock, sound);
    engine.loadSession(showWithOneCue(36000));
    NetworkCoordinator coordinator;
    coordinator.attach(&engine, clock);

    // The engine operation is seen through the state hook, which goes on to the coordinator.
    std::atomic<qint64> operationAt{0};
    std::atomic<long> adjustments{0};
    bool lastPaused = false;
    // /kairon/adjust i 0 leaves the remaining time as it is: a new value is a tick's.
    double lastRemaining = 0;
    qint64 lastEngineTick = 0;
    std::atomic<bool> watchEngineTicks{false};
    std::atomic<qint64> longestTickGapNs{0};
    engine.setOnStateChange([&](const TimerStateSnapshot &s) {
        if (s.paused != lastPaused) {
            lastPaused = s.paused;
            operationAt = steadyNs();
        }
        if (s.remaining != lastRemaining) {
            lastRemaining = s.remaining;
            const qint64 t = steadyNs();
            if (watchEngineTicks && lastEngineTick)
                longestTickGapNs = std::max<qint64>(longestTickGapNs, t - lastEngineTick);
            lastEngineTick = t;
        }
        coordinator.emitState(s);
    });
    // Counts /kairon/adjust i 0, which changes nothing but still reaches the engine.
    auto countingOnCommand = coordinator.osc().onCommand;
    coordinator.osc().onCommand = [&, countingOnCommand](const OSCMessage &m) {
        if (m.address == QLatin1StringView("/kairon/adjust"))
            ++adjustments;
        countingOnCommand(m);
    };

    // The main loop's own 0.1 s tick, to see how late it runs under the flood.
    std::vector<double> tickLateMs;
    std::atomic<bool> watchTicks{false};
    qint64 lastTick = 0;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(100);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 t = steadyNs();
        if (watchTicks && lastTick)
            tickLateMs.push_back((t - lastTick) / 1e6 - 100.0);
        lastTick = t;
    });
    ticker.start();

    std::atomic<bool> listening{false};
    QObject::connect(&coordinator, &NetworkCoordinator::oscStatusChanged, [&] { listening = !coordinator.oscStatus(); });

    std::thread peer([&] {
        waitFor(listening);
        QUdpSocket out, in;
        in.bind(QHostAddress::LocalHost, sendPort);
        const QHostAddress to = QHostAddress::LocalHost;
        const QByteArray pause = OSCCodec::encode(QStringLiteral("/kairon/pause"), {});
        const QByteArray play = OSCCodec::encode(QStringLiteral("/kairon/play"), {});
        const QByteArray stop = OSCCodec::encode(QStringLiteral("/kairon/stop"), {});
        const QByteArray adjust = OSCCodec::encode(QStringLiteral("/kairon/adjust"), {qint32(0)});

        // 3. play → running 1 at the peer (before the cue runs for good).
        std::vector<double> playToRunning;
        for (int round = 0; round < 1000; ++round) {
            while (in.hasPendingDatagrams())
                in.receiveDatagram();
            const qint64 sent = steadyNs();
            out.writeDatagram(play, to, listenPort);
            for (bool seen = false; !seen && in.waitForReadyRead(2000);) {
                while (in.hasPendingDatagrams()) {
                    const auto m = OSCCodec::decode(in.receiveDatagram().data());
                    if (m && m->address == QLatin1StringView("/kairon/running") && m->intArg == 1) {
                        playToRunning.push_back((steadyNs() - sent) / 1e6);
                        seen = true;
                    }
                }
            }
            out.writeDatagram(stop, to, listenPort);
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
        report("play datagram to running 1 at the peer", playToRunning, "ms");
        out.writeDatagram(play, to, listenPort);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));

        // 1. command latency, one command at a time.
        std::vector<double> latency;
        for (int i = 0; i < 10000; ++i) {
            const qint64 before = operationAt;
            const qint64 sent = steadyNs();
            out.writeDatagram(pause, to, listenPort);
            while (operationAt == before)
                std::this_thread::yield();
            latency.push_back((operationAt - sent) / 1e6);
        }
        report("command latency, datagram sent to engine operation", latency, "ms");

        // 2. flood.
        watchTicks = true;
        adjustments = 0;
        const qint64 floodStart = steadyNs();
        for (int i = 0; i < 100000; ++i)
            out.writeDatagram(adjust, to, listenPort);
        const double sendMs = (steadyNs() - floodStart) / 1e6;
        std::this_thread::sleep_for(std::chrono::seconds(2));
        watchTicks = false;
        std::printf("flood: 100000 datagrams sent in %.0f ms, %ld handled\n", sendMs, adjustments.load());

        // 4. 5,000 a second for 10 s.
        adjustments = 0;
        const qint64 paceStart = steadyNs();
        for (int i = 0; i < 50000; ++i) {
            const qint64 due = paceStart + qint64(i) * 200'000;
            while (steadyNs() < due)
                std::this_thread::yield();
            out.writeDatagram(adjust, to, listenPort);
        }
        std::this_thread::sleep_for(std::chrono::seconds(1));
        std::printf("5000/s for 10 s: 50000 sent, %ld handled, %ld lost\n", adjustments.load(),
                    50000 - adjustments.load());

        // 5. malformed floods with valid adjustments among them, the cue running.
        const QByteArray garbage("\x01garbage without any zero byte");
        for (const int total : {100000, 1100000}) {
            adjustments = 0;
            longestTickGapNs = 0;
            lastEngineTick = 0;
            watchEngineTicks = true;
            const qint64 start = steadyNs();
            for (int i = 0; i < total; ++i)
                out.writeDatagram(i % 20 == 0 ? adjust : garbage, to, listenPort);
            const double sendMs = (steadyNs() - start) / 1e6;
            std::this_thread::sleep_for(std::chrono::seconds(2));
            watchEngineTicks = false;
            std::printf("flood of %d datagrams (%d adjustments) sent in %.0f ms: %ld adjustments "
                        "handled, longest gap between ticks %.1f ms\n",
                        total, total / 20, sendMs, adjustments.load(), longestTickGapNs / 1e6);
        }
        QMetaObject::invokeMethod(&app, &QCoreApplication::quit);
    });

    app.exec();
    peer.join();
    if (!tickLateMs.empty())
        report("0.1 s tick lateness during the flood", tickLateMs, "ms");
    return 0;
}
