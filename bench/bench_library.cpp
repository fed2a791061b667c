// The project library and the exports on a large scale: listing a library of 5,000 projects with
// their listing entries, saving a 500-cue project, writing the rundown PDF of a 1,000-cue show.
// Run: QT_QPA_PLATFORM=offscreen build/bench/bench_library
#include "formatters.h"
#include "rundownpdfexporter.h"
#include "sessionstore.h"
#include "systemclock.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

TimerSession showOf(int cues, int number)
{
    TimerSession s;
    s.name = QStringLiteral("Projet %1").arg(number);
    s.client = QStringLiteral("Client %1").arg(number);
    s.venue = QStringLiteral("Salle Pleyel");
    s.eventDate = QDateTime(QDate(2026, 12, 1), QTime(19, 0), Qt::UTC);
    for (int i = 0; i < cues; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Intervention %1 — « sujet »").arg(i + 1);
        cue.speaker = QStringLiteral("Orateur %1").arg(i + 1);
        cue.notes = QStringLiteral("Micro HF, pupitre côté jardin");
        cue.duration = 600 + i;
        s.cues << cue;
    }
    return s;
}

// Median of a few runs, in milliseconds.
double medianMs(int runs, const std::function<void()> &work)
{
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        work();
        ms.push_back(t.nsecsElapsed() / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return ms[ms.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
    SystemClock clock;
    SessionStore store(clock);

    for (int i = 0; i < 5000; ++i)
        store.save(showOf(8, i));
    int entries = 0;
    const double listing = medianMs(5, [&] {
        entries = 0;
        for (const QString &path : store.listProjects())
            entries += store.meta(path).name.isEmpty() ? 0 : 1;
    });
    std::printf("listing 5000 projects with their entries: %.1f ms (%d entries)\n", listing, entries);

    const TimerSession big = showOf(500, 0);
    const double save = medianMs(21, [&] { store.save(big); });
    std::printf("saving a 500-cue project: %.2f ms\n", save);

    const TimerSession thousand = showOf(1000, 1);
    QByteArray pdf;
    const double rundown = medianMs(5, [&] {
        QBuffer buffer(&pdf);
        buffer.open(QIODevice::WriteOnly);
        RundownPDFExporter::write(thousand, &buffer, QDateTime::currentDateTimeUtc(), Fmt::locale(),
                                  Fmt::timeZone());
    });
    std::printf("rundown PDF of 1000 cues (42 pages): %.1f ms, %lld bytes\n", rundown,
                qint64(pdf.size()));
    return 0;
}
