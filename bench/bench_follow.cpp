// A main and its backup on loopback, each with its own engine on the system clock and the real
// network between them (the main's web server, the backup's follow session, one process):
//  1. main change → backup state: from a change made on the main (pause, resume, a message, an
//     adjustment, in turn) to the backup's engine holding it. Goal: median ≤ 5 ms, p99 ≤ 20 ms.
//  2. the remaining time of the two while a cue runs, read at the same instant, every 10 ms for
//     5 s. Goal: ≤ 20 ms apart.
//  3. takeover → first command obeyed: POST /api/takeover to the backup's own server, then POST
//     /api/pause, until the answer says paused. Goal: ≤ 50 ms.
// Usage: bench_follow [changes]   (400 by default)
#include "benchsupport.h"
#include "followsession.h"
#include "preferences.h"
#include "systemclock.h"
#include "timerengine.h"
#include "webserver.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTemporaryDir>

#include <cmath>
#include <functional>

namespace {
bool waitFor(const std::function<bool()> &done, int ms = 5000)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > ms)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    return true;
}

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

// Serves the engine on a port of its own (the preferences are read when it starts).
void serve(WebServer &server, quint16 port)
{
    Preferences::setWebEnabled(true);
    Preferences::setWebPort(port);
    Preferences::setWebInterface(QStringLiteral("127.0.0.1"));
    Preferences::setWebAccessCode(QStringLiteral("CODE2345"));
    server.applyWebSettings();
}

void printPercentiles(const char *what, std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    std::printf("%s: n=%zu median %.2f ms, p99 %.2f ms, max %.2f ms\n", what, ms.size(), ms[ms.size() / 2],
                ms[std::min(ms.size() - 1, ms.size() * 99 / 100)], ms.back());
}
} // namespace

int main(int argc, char **argv)
{
    QTemporaryDir home; // nothing of this machine's preferences is read or written
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    QCoreApplication app(argc, argv);
    const int changes = argc > 1 ? std::max(4, atoi(argv[1])) : 400;

    SystemClock clock;
    SilentPlayer sound;
    TimerEngine main(clock, sound);
    TimerSession show = showWithOneCue(3600);
    show.name = QStringLiteral("Banc d'essai");
    main.loadSession(show);
    WebServer mainServer(main, clock);
    serve(mainServer, freePort());
    TimerEngine backup(clock, sound);
    WebServer backupServer(backup, clock);
    FollowSession follow(backup, clock);
    backupServer.setFollowSession(&follow);
    serve(backupServer, freePort());
    main.start(0);
    follow.follow(QStringLiteral("127.0.0.1"), mainServer.serverPort(), QStringLiteral("CODE2345"));
    if (!waitFor([&] { return follow.role() == FollowSession::Role::Follower && backup.isRunning(); })) {
        std::fprintf(stderr, "the backup never followed: %s\n", qPrintable(follow.status()));
        return 1;
    }

    // 1. Each change, until the backup holds it.
    std::vector<double> delays;
    for (int i = 0; i < changes; ++i) {
        std::function<bool()> arrived;
        const qint64 start = steadyNs();
        switch (i % 4) {
        case 0:
            main.pause();
            arrived = [&] { return backup.isPaused(); };
            break;
        case 1:
            main.pause();
            arrived = [&] { return !backup.isPaused(); };
            break;
        case 2: {
            const QString text = QStringLiteral("Message %1").arg(i);
            main.sendMessage(text, false);
            arrived = [&, text] { return backup.currentMessage() == text; };
            break;
        }
        default: {
            const double planned = main.plannedDuration() + 1;
            main.adjust(1);
            arrived = [&, planned] { return backup.plannedDuration() == planned; };
            break;
        }
        }
        if (!waitFor(arrived)) {
            std::fprintf(stderr, "change %d never reached the backup\n", i);
            return 1;
        }
        delays.push_back(double(steadyNs() - start) / 1e6);
    }
    printPercentiles("main change -> backup state", delays);

    // 2. The two remaining times at the same instants.
    std::vector<double> apart;
    QElapsedTimer span;
    span.start();
    qint64 nextSample = 0;
    waitFor([&] {
        if (span.elapsed() >= nextSample) {
            nextSample += 10;
            apart.push_back(std::fabs(main.readClock().remaining - backup.readClock().remaining) * 1000);
        }
        return span.elapsed() >= 5000;
    }, 6000);
    printMedianAndMax("remaining time, main against backup", apart);
    std::printf("clock offset estimated: %.1f ms\n", follow.clockOffsetMs().value_or(NAN));

    // 3. Takeover, then the first command, over the backup's own HTTP API.
    QNetworkAccessManager network;
    network.setProxy(QNetworkProxy::NoProxy);
    const auto post = [&](const char *command) {
        QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1/api/%2").arg(backupServer.serverPort()).arg(QLatin1StringView(command))));
        request.setRawHeader("Authorization", "Bearer CODE2345");
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        QNetworkReply *reply = network.post(request, QByteArray("{}"));
        waitFor([reply] { return reply->isFinished(); });
        const QJsonObject answer = QJsonDocument::fromJson(reply->readAll()).object();
        reply->deleteLater();
        return answer;
    };
    post("state"); // a connection to the backup's server, as a control surface keeps one
    const qint64 start = steadyNs();
    const QJsonObject took = post("takeover");
    const QJsonObject paused = post("pause");
    const double ms = double(steadyNs() - start) / 1e6;
    if (took.value(QStringLiteral("follow")).toObject().value(QStringLiteral("role")).toString() != QStringLiteral("main")
        || !paused.value(QStringLiteral("paused")).toBool() || !backup.isPaused()) {
        std::fprintf(stderr, "the takeover or the pause failed\n");
        return 1;
    }
    std::printf("takeover -> first command obeyed (two HTTP requests): %.2f ms\n", ms);
    return 0;
}
