// Alerts in a row on one output, as a long show plays them: each one, recorded from the output's
// monitor, against the first. Prints the length and the gaps of silence of the first and of the
// last alert, the spread over all of them, and the memory of the process before and after.
// Needs a PulseAudio server with an output named by the first argument;
// bench/run-alert-repetition.sh starts one.
#include "pcmscan.h"
#include "preferences.h"
#include "sinktap.h"
#include "soundmanager.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <cstdio>

namespace {

// Resident memory of this process, in kB.
long residentKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

void print(const char *which, int alert, const PcmScan::Sound &sound)
{
    std::printf("%s alert (%d): %.4f s, %lld gaps of 2 ms or more, longest silence inside %.2f ms\n",
                which, alert, sound.seconds(), qlonglong(sound.gaps), sound.longestGapMs());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("KaironBench"));
    const QString sink = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("kairon_stage");
    const int alerts = argc > 2 ? std::max(1, atoi(argv[2])) : 500;
    const QString name = argc > 3 ? QString::fromLocal8Bit(argv[3]) : QStringLiteral("Tink");
    Preferences::setAlertOutputUID(sink);

    SinkTap tap(sink);
    if (!tap.recordFor(0.2))
        return 1;
    SoundManager sounds;
    qsizetype from = PcmScan::frameCount(tap.pcm());
    PcmScan::Sound first;
    PcmScan::Sound last;
    double shortest = 1e9;
    double longest = 0;
    int withGaps = 0;
    long memoryAfterFirst = 0;
    for (int alert = 1; alert <= alerts; ++alert) {
        sounds.play(name);
        std::optional<PcmScan::Sound> heard;
        const bool over = QTest::qWaitFor(
            [&] { return (heard = PcmScan::nextSound(tap.pcm(), from, PcmScan::rate / 5)).has_value(); },
            30000);
        if (!over) {
            std::printf("alert %d on %s was not heard or never ended\n", alert, qPrintable(sink));
            return 1;
        }
        tap.drop(heard->last + 1);
        from = 0;
        last = *heard;
        if (alert == 1) {
            first = *heard;
            memoryAfterFirst = residentKb();
        }
        shortest = std::min(shortest, heard->seconds());
        longest = std::max(longest, heard->seconds());
        withGaps += heard->gaps > 0 ? 1 : 0;
        if (alert % 50 == 0) {
            std::printf(" %d", alert);
            std::fflush(stdout);
        }
    }
    std::printf("\n%d × %s on %s\n", alerts, qPrintable(name), qPrintable(sink));
    print("first", 1, first);
    print("last ", alerts, last);
    std::printf("all: %.4f s to %.4f s long, %d with gaps\n", shortest, longest, withGaps);
    std::printf("resident memory: %ld kB after the first, %ld kB after the last\n", memoryAfterFirst,
                residentKb());
    return 0;
}
