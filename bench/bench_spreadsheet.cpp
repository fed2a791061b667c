// A running order of 2,000 cues through the spreadsheet paths, as the operator meets them:
// a workbook (.xlsx, then .ods) read and previewed, and the show exported as .xlsx. Prints the
// median and the slowest of 20 runs of each, and how far the resident memory peaked above the
// program at rest while importing.
#include "rundownexport.h"
#include "rundownimport.h"
#include "sheetfile.h"
#include "ziparchive.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int cueCount = 2000;
constexpr int runs = 20;

TimerSession showOf2000(const QTimeZone &zone)
{
    TimerSession show;
    show.name = QStringLiteral("Festival");
    for (int i = 1; i <= cueCount; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Séquence %1 — présentation du programme").arg(i);
        cue.speaker = QStringLiteral("Claire Dubois");
        cue.duration = 300 + i % 40 * 15;
        cue.notes = QStringLiteral("Pupitre côté jardin, micro HF %1").arg(i % 4 + 1);
        cue.colorHex = QStringLiteral("#2ECC71");
        cue.autoFollow = i % 2;
        if (i % 50 == 0) {
            cue.mode = TimerMode::HardOut;
            cue.hardOutTime = QDateTime(QDate(2026, 3, 14), QTime(22, 30), zone);
        }
        show.cues << cue;
    }
    return show;
}

// The same running order as LibreOffice saves it: content.xml with a string, a time and a
// float per cell as needed.
QByteArray odsOf(const TimerSession &show)
{
    QByteArray rows = "<table:table-row><table:table-cell office:value-type=\"string\"><text:p>Nom</text:p>"
                      "</table:table-cell><table:table-cell office:value-type=\"string\"><text:p>Intervenant"
                      "</text:p></table:table-cell><table:table-cell office:value-type=\"string\"><text:p>"
                      "Durée</text:p></table:table-cell><table:table-cell office:value-type=\"string\">"
                      "<text:p>Notes</text:p></table:table-cell></table:table-row>";
    for (const Cue &cue : show.cues) {
        const int seconds = int(cue.duration);
        rows += "<table:table-row><table:table-cell office:value-type=\"string\"><text:p>" + cue.name.toUtf8()
                + "</text:p></table:table-cell><table:table-cell office:value-type=\"string\"><text:p>"
                + cue.speaker.toUtf8() + "</text:p></table:table-cell><table:table-cell office:value-type="
                  "\"time\" office:time-value=\"PT" + QByteArray::number(seconds / 3600) + "H"
                + QByteArray::number(seconds / 60 % 60) + "M" + QByteArray::number(seconds % 60)
                + "S\"><text:p>x</text:p></table:table-cell><table:table-cell office:value-type=\"string\">"
                  "<text:p>" + cue.notes.toUtf8() + "</text:p></table:table-cell></table:table-row>";
    }
    const QByteArray content =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><office:document-content "
        "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
        "xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\" "
        "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\"><office:body><office:spreadsheet>"
        "<table:table table:name=\"Conducteur\">" + rows
        + "</table:table></office:spreadsheet></office:body></office:document-content>";
    return zipOf({{QStringLiteral("mimetype"), "application/vnd.oasis.opendocument.spreadsheet"},
                  {QStringLiteral("content.xml"), content}});
}

qint64 memoryStatus(const QByteArray &field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).trimmed().split(' ').first().toLongLong() * 1024;
    return 0;
}

// The peak resident memory brought down to the memory resident now.
void resetMemoryPeak()
{
    malloc_trim(0);
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
}

void measure(const char *what, double goalMs, const std::function<void()> &run)
{
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        run();
        ms.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    std::printf("%-34s median %7.1f ms, slowest %7.1f ms (goal %.0f ms)\n", what, ms[ms.size() / 2],
                ms.back(), goalMs);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QTimeZone zone(QByteArrayLiteral("Europe/Paris"));
    const ImportContext context{QDate(2026, 3, 14), zone};
    const TimerSession show = showOf2000(zone);
    QTemporaryDir dir;
    const QString xlsx = dir.filePath(QStringLiteral("festival.xlsx"));
    const QString ods = dir.filePath(QStringLiteral("festival.ods"));
    RundownExport::writeXlsx(show, zone, xlsx);
    QFile odsFile(ods);
    odsFile.open(QIODevice::WriteOnly);
    odsFile.write(odsOf(show));
    odsFile.close();

    const auto preview = [&](const QString &path) {
        const SheetReadResult read = SheetFile::read(path);
        const ImportPreview result = RundownImport::preview(read.table, context);
        if (result.cueCount() != cueCount)
            qFatal("%s: %d cues", qPrintable(path), result.cueCount());
    };
    measure("2,000-row .xlsx to the preview", 300, [&] { preview(xlsx); });
    measure("2,000-row .ods to the preview", 300, [&] { preview(ods); });
    measure("2,000 cues exported as .xlsx", 200, [&] { RundownExport::writeXlsx(show, zone, xlsx); });
    measure("2,000 cues exported as .csv", 200, [&] { RundownExport::writeCsv(show, zone, dir.filePath("f.csv")); });

    for (const QString &path : {xlsx, ods}) {
        resetMemoryPeak();
        const qint64 before = memoryStatus("VmRSS");
        preview(path);
        std::printf("%-34s peak memory %+6.1f MiB above rest (goal 50 MiB)\n",
                    qPrintable(QStringLiteral("import of ") + QFileInfo(path).fileName()),
                    (memoryStatus("VmHWM") - before) / 1048576.0);
    }
    return 0;
}
