// The cues' triggers on loopback, with the real engine on the system clock:
//  1. zero crossed → OSC trigger received: cues of 1 s, one after another, each with a zero
//     trigger to a UDP port read on a thread of its own; from the instant the cue's clock
//     reaches zero (its start plus its length, on the monotonic clock) to the datagram's
//     arrival. Goal: median ≤ 2 ms, max ≤ 10 ms.
//  2. the main thread's time per trigger: a moment with 10 OSC and 10 HTTP triggers, the time
//     the engine's signal spends in the dispatcher, divided by 20. Goal: under 1 ms.
// Usage: bench_triggers [cues]   (20 by default)
#include "benchsupport.h"
#include "oscservice.h"
#include "systemclock.h"
#include "timerengine.h"
#include "triggerdispatcher.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>
#include <QNetworkDatagram>
#include <QUdpSocket>

#include <atomic>

namespace {
double ms(qint64 ns) { return double(ns) / 1e6; }

void print(const char *what, std::vector<qint64> ns)
{
    std::sort(ns.begin(), ns.end());
    std::printf("%s: median %.3f ms, max %.3f ms (%zu)\n", what, ms(ns[ns.size() / 2]), ms(ns.back()),
                ns.size());
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // The refused HTTP triggers of the second measure would log each failure.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
        if (!message.startsWith(QLatin1StringView("kairon-trigger:")))
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    const int cues = argc > 1 ? std::max(1, atoi(argv[1])) : 20;

    // The receiver, on its own thread, stamps each datagram as it comes.
    QThread receiverThread;
    receiverThread.start();
    auto *receiver = new QUdpSocket;
    receiver->bind(QHostAddress::LocalHost, 0);
    const quint16 port = receiver->localPort();
    std::atomic<qint64> receivedAt{0};
    QObject::connect(receiver, &QUdpSocket::readyRead, receiver, [receiver, &receivedAt] {
        while (receiver->hasPendingDatagrams()) {
            receiver->receiveDatagram();
            receivedAt = steadyNs();
        }
    });
    receiver->moveToThread(&receiverThread);

    SystemClock clock;
    SilentPlayer sound;
    TimerEngine engine(clock, sound);
    TimerSession show;
    for (int i = 0; i < cues; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Cue %1").arg(i + 1);
        cue.duration = 1;
        cue.warningThreshold = cue.dangerThreshold = 0;
        cue.triggers = {{TriggerMoment::Zero, QStringLiteral("Zéro"),
                         OscTriggerTarget{QStringLiteral("127.0.0.1"), port, QStringLiteral("/zero"),
                                          {{'i', QStringLiteral("{index}")}}}}};
        show.cues << cue;
    }
    engine.loadSession(show);
    OSCService osc;
    TriggerDispatcher dispatcher(osc);
    dispatcher.attach(engine);

    // 1. Each cue started, then its zero awaited.
    std::vector<qint64> latencies;
    for (int i = 0; i < cues; ++i) {
        receivedAt = 0;
        const qint64 startedAt = steadyNs();
        engine.start(i);
        const qint64 zeroAt = startedAt + 1'000'000'000;
        while (receivedAt == 0 && steadyNs() < zeroAt + 2'000'000'000LL)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        if (receivedAt == 0) {
            std::fprintf(stderr, "cue %d: no trigger received\n", i + 1);
            return 1;
        }
        latencies.push_back(receivedAt - zeroAt);
        if (qEnvironmentVariableIsSet("KAIRON_BENCH_VERBOSE"))
            std::printf("cue %d: %.3f ms\n", i + 1, ms(latencies.back()));
    }
    engine.stop();
    print("Zero crossed → OSC trigger received", latencies);

    // 2. One moment with 20 triggers, 200 times: the signal's time in the dispatcher.
    Cue busy;
    busy.name = QStringLiteral("Keynote");
    for (int i = 0; i < 10; ++i) {
        busy.triggers.append({TriggerMoment::Start, QStringLiteral("OSC %1").arg(i),
                              OscTriggerTarget{QStringLiteral("127.0.0.1"), port, QStringLiteral("/go/{index}"),
                                               {{'i', QStringLiteral("{index}")}, {'s', QStringLiteral("{cue}")}}}});
        busy.triggers.append({TriggerMoment::Start, QStringLiteral("HTTP %1").arg(i),
                              HttpTriggerTarget{QStringLiteral("GET"),
                                                QStringLiteral("http://127.0.0.1:9/go?cue={cue}&n={index}"), {}}});
    }
    std::vector<qint64> perTrigger;
    for (int round = 0; round < 200; ++round) {
        const qint64 t0 = steadyNs();
        emit engine.cueMoment(TriggerMoment::Start, busy, 0, 600);
        perTrigger.push_back((steadyNs() - t0) / qint64(busy.triggers.size()));
        // Let the answers (refused connections) come back, so that the queue stays short.
        while (dispatcher.pending() > 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    }
    print("Main thread per trigger (10 OSC + 10 HTTP per moment)", perTrigger);

    QMetaObject::invokeMethod(receiver, [receiver] { delete receiver; }, Qt::BlockingQueuedConnection);
    receiverThread.quit();
    receiverThread.wait();
    return 0;
}
