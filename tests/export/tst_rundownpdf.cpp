#include "formatters.h"
#include "fulldisk.h"
#include "rundownpdfexporter.h"
#include "temphome.h"

#include <QBuffer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QLocale french(QLocale::French, QLocale::France);
const QTimeZone paris("Europe/Paris");
const QDateTime now(QDate(2026, 11, 21), QTime(22, 15, 30), Qt::UTC); // 23:15 in Paris

// One word of `pdftotext -bbox`, with its box in points from the top-left corner.
struct Word {
    QString text;
    double xMin, yMin, xMax, yMax;
    double height() const { return yMax - yMin; }
};

struct Page {
    QList<Word> words;
    // The words of one line beginning at x, in order, joined by blanks.
    QString lineAt(double x, double baseline) const
    {
        QStringList parts;
        for (const Word &w : words)
            if (std::abs(baselineOf(w) - baseline) < 0.5 && w.xMin >= x - 0.5)
                parts << w.text;
        return parts.join(u' ');
    }
    const Word *find(const QString &text) const
    {
        for (const Word &w : words)
            if (w.text == text)
                return &w;
        return nullptr;
    }
    // The baseline of a word, in points from the bottom of the page, for DejaVu Sans:
    // pdftotext's box runs from the ascent (0.928 em) to the descent (0.236 em).
    static double baselineOf(const Word &w) { return 842 - (w.yMax - 0.236 * w.height() / 1.164); }
    static double sizeOf(const Word &w) { return w.height() / 1.164; }
};

QList<Page> pagesOf(const QString &pdf)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), pdf, QStringLiteral("-")});
    p.waitForFinished(30000);
    const QString html = QString::fromUtf8(p.readAllStandardOutput());
    QList<Page> pages;
    static const QRegularExpression page(QStringLiteral("<page "));
    static const QRegularExpression word(QStringLiteral(
        "<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" yMax=\"([\\d.]+)\">([^<]*)</word>"));
    for (const QString &chunk : html.split(page).mid(1)) {
        Page pg;
        auto it = word.globalMatch(chunk);
        while (it.hasNext()) {
            const auto m = it.next();
            pg.words << Word{m.captured(5).replace(QStringLiteral("&amp;"), QStringLiteral("&"))
                                 .replace(QStringLiteral("&quot;"), QStringLiteral("\"")),
                             m.captured(1).toDouble(), m.captured(2).toDouble(),
                             m.captured(3).toDouble(), m.captured(4).toDouble()};
        }
        pages << pg;
    }
    return pages;
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

TimerSession showOf(int cues)
{
    TimerSession s;
    s.name = QStringLiteral("Gala des Lumières");
    for (int i = 0; i < cues; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Intervention %1").arg(i + 1);
        cue.speaker = QStringLiteral("Orateur %1").arg(i + 1);
        cue.duration = 600;
        s.cues << cue;
    }
    return s;
}

} // namespace

class TestRundownPdf : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString render(const TimerSession &session, const QString &name)
    {
        const QString path = m_dir.filePath(name + QStringLiteral(".pdf"));
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        if (!RundownPDFExporter::write(session, &file, now, french, paris))
            qFatal("the PDF was not written");
        file.close();
        if (qEnvironmentVariableIsSet("KAIRON_SCREENSHOT_DIR")) {
            QProcess::execute(QStringLiteral("pdftoppm"),
                              {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("100"), path,
                               qEnvironmentVariable("KAIRON_SCREENSHOT_DIR") + u'/' + name});
        }
        return path;
    }

    // The words whose baseline is at `baseline` and which begin in [from, to), left to right.
    static QList<Word> wordsAt(const Page &page, double baseline, double from, double to)
    {
        QList<Word> found;
        for (const Word &w : page.words)
            if (std::abs(Page::baselineOf(w) - baseline) < 0.5 && w.xMin >= from - 0.5 && w.xMin < to - 0.5)
                found << w;
        std::sort(found.begin(), found.end(), [](const Word &a, const Word &b) { return a.xMin < b.xMin; });
        return found;
    }

    // Text starting at (x, baseline), in points from the bottom-left corner, of the given size.
    static void expectText(const Page &page, double x, double baseline, double size,
                           const QString &text, double to = 600)
    {
        const QList<Word> words = wordsAt(page, baseline, x, to);
        QStringList parts;
        for (const Word &w : words) {
            parts << w.text;
            QVERIFY2(std::abs(Page::sizeOf(w) - size) < 0.1,
                     qPrintable(QStringLiteral("%1 is %2 points").arg(w.text).arg(Page::sizeOf(w))));
        }
        QCOMPARE(parts.join(u' '), text);
        QVERIFY2(std::abs(words.first().xMin - x) < 0.5, qPrintable(QString::number(words.first().xMin)));
    }

    static void expectLine(const Page &page, double x, double baseline, double size, const QString &text)
    {
        expectText(page, x, baseline, size, text);
    }

    // A line of the table: one text per column (start, end, cue, speaker, duration).
    static void expectColumns(const Page &page, double y, double size, const QStringList &cells)
    {
        const double columns[] = {46, 98, 156, 336, 466, 600};
        for (int i = 0; i < 5; ++i)
            expectText(page, columns[i], y, size, cells[i], columns[i + 1]);
    }

    static void expectTableHeader(const Page &page, double y)
    {
        expectColumns(page, y, 9, {QStringLiteral("DÉBUT"), QStringLiteral("FIN"), QStringLiteral("CUE"),
                                   QStringLiteral("INTERVENANT"), QStringLiteral("DURÉE")});
    }

    static void expectRow(const Page &page, double y, const QList<const char *> &cells)
    {
        QStringList texts;
        for (const char *cell : cells)
            texts << QString::fromUtf8(cell);
        expectColumns(page, y, 10, texts);
    }

    static void expectFooter(const Page &page)
    {
        expectLine(page, 46, 32, 8,
                   QStringLiteral("Kairon — Orv Audiovisual · www.orv-audiovisual.fr · Généré le 21 nov. 2026 23:15"));
    }

    // How many words lie between two heights, in points from the bottom of the page.
    static int wordsBetween(const Page &page, double low, double high)
    {
        return int(std::count_if(page.words.cbegin(), page.words.cend(), [&](const Word &w) {
            return Page::baselineOf(w) > low && Page::baselineOf(w) < high;
        }));
    }

private slots:
    void initTestCase()
    {
        Fmt::setLocale(french);
        Fmt::setTimeZone(paris);
    }

    void thePagesOfARundownOfTwentySixCues()
    {
        TimerSession s = showOf(26);
        s.client = QStringLiteral("Maison Lumière");
        s.venue = QStringLiteral("Salle Pleyel");
        s.operatorName = QStringLiteral("Régie A");
        s.eventDate = QDateTime(QDate(2026, 11, 20), QTime(23, 30), paris);
        s.cues[1].name = QStringLiteral("Une intervention au titre vraiment très long");
        s.cues[1].speaker = QStringLiteral("Marie-Hélène de La Tour d'Auvergne");
        const QList<Page> pages = pagesOf(render(s, QStringLiteral("rundown")));
        QCOMPARE(pages.size(), 2);
        const Page &first = pages[0];

        expectLine(first, 46, 772, 26, QStringLiteral("RUNDOWN"));
        expectLine(first, 46, 750, 16, QStringLiteral("Gala des Lumières"));
        expectLine(first, 46, 731, 10,
                   QStringLiteral("Client : Maison Lumière · Lieu : Salle Pleyel · Régie : Régie A · "
                                  "vendredi 20 novembre 2026"));
        expectLine(first, 46, 714, 9, QStringLiteral("26 cues — durée totale 4:20:00"));
        expectTableHeader(first, 694);
        expectRow(first, 670, {"23:30", "23:40", "Intervention 1", "Orateur 1", "10:00"});
        expectRow(first, 648, {"23:40", "23:50", "Une intervention au titre vraimen…",
                               "Marie-Hélène de La To…", "10:00"});
        expectRow(first, 626, {"23:50", "00:00", "Intervention 3", "Orateur 3", "10:00"});
        expectRow(first, 164, {"03:20", "03:30", "Intervention 24", "Orateur 24", "10:00"});
        expectFooter(first);

        const Page &second = pages[1];
        expectLine(second, 46, 782, 13, QStringLiteral("RUNDOWN — Gala des Lumières (suite)"));
        expectTableHeader(second, 754);
        expectRow(second, 730, {"03:30", "03:40", "Intervention 25", "Orateur 25", "10:00"});
        expectRow(second, 708, {"03:40", "03:50", "Intervention 26", "Orateur 26", "10:00"});
        expectFooter(second);
        QCOMPARE(wordsBetween(second, 40, 700), 0); // nothing after the last row
    }

    void theBandIsOrangeAndTheContinuationTitleWhite()
    {
        const QString pdf = render(showOf(25), QStringLiteral("colours"));
        QProcess::execute(QStringLiteral("pdftoppm"), {QStringLiteral("-png"), QStringLiteral("-r"),
                                                       QStringLiteral("72"), pdf, m_dir.filePath(QStringLiteral("colours"))});
        const QImage first(m_dir.filePath(QStringLiteral("colours-1.png")));
        const QImage second(m_dir.filePath(QStringLiteral("colours-2.png")));
        QCOMPARE(first.size(), QSize(595, 842));
        QCOMPARE(first.pixelColor(300, 2), QColor(255, 107, 0));
        QCOMPARE(first.pixelColor(300, 8), QColor(Qt::white));
        QCOMPARE(second.pixelColor(300, 2), QColor(Qt::white)); // no band on later pages
        for (int x = 40; x < 400; ++x)
            for (int y = 45; y < 65; ++y)
                QCOMPARE(second.pixelColor(x, y), QColor(Qt::white));
        // The table rule, orange, 5 points under the column titles.
        QCOMPARE(first.pixelColor(300, 842 - 707 - 1).red(), 255);
    }

    void withoutInformationTheTableComesHigher()
    {
        const QList<Page> pages = pagesOf(render(showOf(1), QStringLiteral("plain")));
        QCOMPARE(pages.size(), 1);
        expectLine(pages[0], 46, 732, 9, QStringLiteral("1 cues — durée totale 10:00"));
        expectTableHeader(pages[0], 712);
        expectRow(pages[0], 688, {"20:00", "20:10", "Intervention 1", "Orateur 1", "10:00"});
    }

    void anEmptyShowHasOnePageWithoutRows()
    {
        const QList<Page> pages = pagesOf(render(showOf(0), QStringLiteral("empty")));
        QCOMPARE(pages.size(), 1);
        expectLine(pages[0], 46, 732, 9, QStringLiteral("0 cues — durée totale 00:00"));
        expectTableHeader(pages[0], 712);
        QCOMPARE(wordsBetween(pages[0], 40, 700), 0); // no rows
    }

    void twentyFourCuesFitOnOnePage()
    {
        QCOMPARE(pagesOf(render(showOf(24), QStringLiteral("24"))).size(), 1);
        QCOMPARE(pagesOf(render(showOf(25), QStringLiteral("25"))).size(), 2);
        QCOMPARE(pagesOf(render(showOf(49), QStringLiteral("49"))).size(), 3);
    }

    void longNamesAreCutAfterThirtyThreeCharacters()
    {
        TimerSession s = showOf(2);
        s.cues[0].name = QStringLiteral("Présentation des résultats annuel"); // 33
        s.cues[0].name += u's';                                              // 34
        s.cues[1].name = s.cues[0].name + u'!';                              // 35
        s.cues[0].speaker = QStringLiteral("Jean-Éric de Montréal"); // 21
        s.cues[0].speaker += u'x';                                   // 22
        s.cues[1].speaker = s.cues[0].speaker + u'y';               // 23
        const Page page = pagesOf(render(s, QStringLiteral("names")))[0];
        QCOMPARE(page.lineAt(156, 688).section(u' ', 0, 3), QStringLiteral("Présentation des résultats annuels"));
        QCOMPARE(page.lineAt(156, 666).section(u' ', 0, 3), QStringLiteral("Présentation des résultats annuel…"));
        QVERIFY(page.lineAt(336, 688).startsWith(QStringLiteral("Jean-Éric de Montréalx ")));
        QVERIFY(page.lineAt(336, 666).startsWith(QStringLiteral("Jean-Éric de Montréal… ")));
    }

    // A gala of 20 cues with wide French names, and a client, venue and operator that fill the
    // information line: every word stays on the page and inside its column, no two words touch,
    // and what is cut is cut by its width, with "…".
    void wideNamesNeverOverprint()
    {
        TimerSession s;
        s.name = QStringLiteral("Grand Gala des Lumières de la Fondation Œttinger pour la Musique et les Arts");
        s.client = QStringLiteral("Fondation Œttinger pour la Musique");
        s.venue = QStringLiteral("Théâtre des Champs-Élysées, Grande Salle");
        s.operatorName = QStringLiteral("Léo Würm");
        s.eventDate = QDateTime(QDate(2026, 11, 21), QTime(19, 30), paris);
        const QStringList names = {
            QStringLiteral("Hommage à Geneviève Œttinger (1932–2024)"), QStringLiteral("MÉMOIRES D'ŒUVRES — MOZART"),
            QStringLiteral("WWW — ŒUVRES MAJEURES DU XXᵉ SIÈCLE"), QStringLiteral("Ouverture"),
            QStringLiteral("Œuvres de Dvořák, Wagner et Mendelssohn"), QString(33, u'M'),
            QStringLiteral("Récital : « Élégies » de Gabriel Fauré"), QStringLiteral("Entracte"),
            QStringLiteral("ÉCHANGES AVEC LES MÉCÈNES ÀÉÈÊÔÛÇŒÆ"), QStringLiteral("Remise du Prix Œttinger-Würmser"),
            QStringLiteral("Quatuor Ébène — Schubert, « La Jeune Fille »"), QStringLiteral("Témoignages"),
            QStringLiteral("Lecture : Marguerite Yourcenar"), QStringLiteral("WAGNER, MAHLER, MOZART & MONTEVERDI"),
            QStringLiteral("Chœur de l'Opéra — « Va, pensiero »"), QStringLiteral("Pause"),
            QStringLiteral("Danse : « Le Mépris » (création mondiale)"), QStringLiteral("Remerciements"),
            QStringLiteral("Finale — Boléro de Maurice Ravel"), QStringLiteral("Clôture"),
        };
        const QStringList speakers = {
            QStringLiteral("Anaïs Château"), QStringLiteral("WOLFGANG-MAXIMILIEN WÜRM"),
            QStringLiteral("Mme Geneviève Dœuvre"), QStringLiteral("Léa"),
            QStringLiteral("Ensemble Œuvres Vives"), QString(22, u'M'),
            QStringLiteral("Hélène Grimaud-Wœrth"), QString(),
            QStringLiteral("ÉMILE & MAËLLE ŒHMANN"), QStringLiteral("Jean-Édouard Würmser"),
            QStringLiteral("Quatuor Ébène"), QStringLiteral("Témoins"),
            QStringLiteral("Guillaume Gallienne"), QStringLiteral("ORCHESTRE NATIONAL WWW"),
            QStringLiteral("Chœur de l'Opéra"), QString(),
            QStringLiteral("Compagnie Maguy Marin"), QStringLiteral("Maëlle Château-Würmser"),
            QStringLiteral("Orchestre de Paris"), QStringLiteral("Anaïs Château"),
        };
        for (int i = 0; i < 20; ++i) {
            Cue cue;
            cue.name = names[i];
            cue.speaker = speakers[i];
            cue.duration = i == 5 ? 5400 : 600;
            s.cues << cue;
        }
        const QList<Page> pages = pagesOf(render(s, QStringLiteral("wide-names")));
        QCOMPARE(pages.size(), 1);
        const Page &page = pages[0];
        QVERIFY(page.words.size() > 150);

        // On the page, and within the table's width (46 to 549).
        for (const Word &w : page.words) {
            QVERIFY2(w.xMin >= 46 - 0.5 && w.xMax <= 549 + 0.5 && w.yMin >= 0 && w.yMax <= 842,
                     qPrintable(QStringLiteral("%1 at %2..%3").arg(w.text).arg(w.xMin).arg(w.xMax)));
        }
        // No two words overlap.
        for (qsizetype i = 0; i < page.words.size(); ++i) {
            for (qsizetype j = i + 1; j < page.words.size(); ++j) {
                const Word &a = page.words[i], &b = page.words[j];
                const bool apart = a.xMax <= b.xMin + 0.01 || b.xMax <= a.xMin + 0.01
                                   || a.yMax <= b.yMin + 0.01 || b.yMax <= a.yMin + 0.01;
                QVERIFY2(apart, qPrintable(QStringLiteral("« %1 » (%2..%3) over « %4 » (%5..%6)")
                                               .arg(a.text).arg(a.xMin).arg(a.xMax)
                                               .arg(b.text).arg(b.xMin).arg(b.xMax)));
            }
        }
        // Each cell ends before the next column begins.
        const double columns[] = {46, 98, 156, 336, 466, 549};
        for (int row = 0; row < 20; ++row) {
            const double y = 670 - 22 * row;
            for (int c = 0; c < 5; ++c)
                for (const Word &w : wordsAt(page, y, columns[c], columns[c + 1]))
                    QVERIFY2(w.xMax <= columns[c + 1] - 2 + 0.01,
                             qPrintable(QStringLiteral("row %1: %2 ends at %3").arg(row + 1).arg(w.text).arg(w.xMax)));
        }

        // The date is whole; the longest pieces before it are cut, by their width.
        const QString info = page.lineAt(46, 731);
        QVERIFY2(info.endsWith(QStringLiteral(" · samedi 21 novembre 2026")), qPrintable(info));
        QVERIFY2(info.startsWith(QStringLiteral("Client : Fondation")) && info.contains(QStringLiteral("… · Lieu : Théâtre")),
                 qPrintable(info));
        QVERIFY2(info.contains(QStringLiteral("· Régie : Léo Würm ·")), qPrintable(info));
        const QString title = page.lineAt(46, 750);
        QVERIFY2(title.startsWith(QStringLiteral("Grand Gala des Lumières")) && title.endsWith(QStringLiteral("…")),
                 qPrintable(title));

        // A wide name is cut further than its 34 characters, a short one is whole, and the
        // speaker beside it is whole.
        const QString first = page.lineAt(156, 670).section(QStringLiteral(" Anaïs"), 0, 0);
        QVERIFY2(first.endsWith(QStringLiteral("…")) && first.size() < 34
                     && QStringLiteral("Hommage à Geneviève Œttinger (1932–2024)").startsWith(first.chopped(1)),
                 qPrintable(first));
        expectRow(page, 670 - 22 * 3, {"20:00", "20:10", "Ouverture", "Léa", "10:00"});
        QVERIFY(page.lineAt(336, 670).startsWith(QStringLiteral("Anaïs Château 10:00")));
        // "M" is 8.62 points wide at 10 points and "…" 10: 19 of them and "…" in the cue's 178
        // points (180 less a blank of 2), 13 in the speaker's 128.
        expectRow(page, 670 - 22 * 5, {"20:20", "21:50", "MMMMMMMMMMMMMMMMMMM…", "MMMMMMMMMMMMM…", "1:30:00"});
    }

    void theShowStartsAtTheEventTimeOrAtEightPm_data()
    {
        QTest::addColumn<std::optional<QDateTime>>("eventDate");
        QTest::addColumn<QDateTime>("start");
        QTest::newRow("none: today at 20:00") << std::optional<QDateTime>()
                                               << QDateTime(QDate(2026, 11, 21), QTime(20, 0), paris);
        QTest::newRow("midnight: that day at 20:00")
            << std::optional(QDateTime(QDate(2026, 12, 31), QTime(0, 0), paris))
            << QDateTime(QDate(2026, 12, 31), QTime(20, 0), paris);
        QTest::newRow("14:30") << std::optional(QDateTime(QDate(2026, 12, 31), QTime(14, 30), paris))
                               << QDateTime(QDate(2026, 12, 31), QTime(14, 30), paris);
        QTest::newRow("00:05 is not midnight") << std::optional(QDateTime(QDate(2026, 12, 31), QTime(0, 5), paris))
                                               << QDateTime(QDate(2026, 12, 31), QTime(0, 5), paris);
    }

    void theShowStartsAtTheEventTimeOrAtEightPm()
    {
        QFETCH(std::optional<QDateTime>, eventDate);
        QFETCH(QDateTime, start);
        TimerSession s;
        s.eventDate = eventDate;
        QCOMPARE(RundownPDFExporter::showStart(s, now, paris), start);
    }

    void timesWrapPastMidnight()
    {
        TimerSession s = showOf(2);
        s.eventDate = QDateTime(QDate(2026, 11, 20), QTime(23, 50), paris);
        s.cues[0].duration = 1200;
        s.cues[1].mode = TimerMode::HardOut; // its stored duration counts all the same
        s.cues[1].hardOutTime = QDateTime(QDate(2026, 11, 20), QTime(1, 0), paris);
        s.cues[1].duration = 5400;
        const Page page = pagesOf(render(s, QStringLiteral("midnight")))[0];
        expectRow(page, 670, {"23:50", "00:10", "Intervention 1", "Orateur 1", "20:00"});
        expectRow(page, 648, {"00:10", "01:40", "Intervention 2", "Orateur 2", "1:30:00"});
    }

    void theFileNameKeepsColonsAndReplacesSlashes()
    {
        TimerSession s;
        s.name = QStringLiteral("Gala 12/03 20:00");
        QCOMPARE(RundownPDFExporter::fileName(s, now, paris),
                 QStringLiteral("Rundown_Gala 12-03 20:00_2026-11-21_23-15.pdf"));
    }

    void exportingWritesIntoTheReportsFolder()
    {
        TempHome home;
        ExportError error;
        const auto path = RundownPDFExporter::exportPDF(showOf(3), &error);
        QVERIFY2(path, qPrintable(error.description));
        QCOMPARE(QFileInfo(*path).absolutePath(), home.file(QStringLiteral("Documents/Kairon/Reports")));
        QVERIFY(QFileInfo(*path).fileName().startsWith(QStringLiteral("Rundown_Gala des Lumières_")));
        QCOMPARE(pagesOf(*path).size(), 1);
    }

    void aFileThatCannotBeCreatedIsTheDocumentedError()
    {
        TempHome home;
        const QString folder = home.file(QStringLiteral("Documents/Kairon/Reports"));
        const TimerSession s = showOf(1);
        // A folder stands where the file would go, for this minute and the next.
        const QDateTime current = QDateTime::currentDateTimeUtc();
        QStringList expected;
        for (const QDateTime &t : {current, current.addSecs(60)}) {
            const QString path = folder + u'/' + RundownPDFExporter::fileName(s, t, paris);
            QVERIFY(QDir().mkpath(path));
            expected << QStringLiteral("impossible d'écrire « %1 » (un dossier porte ce nom)").arg(path);
        }
        ExportError error;
        QVERIFY(!RundownPDFExporter::exportPDF(s, &error));
        QCOMPARE(error.domain, QStringLiteral("Kairon"));
        QCOMPARE(error.code, 1);
        QVERIFY2(expected.contains(error.description), qPrintable(error.description));
    }

    // On a real file system filled to the last byte: the export fails with the reason, the
    // earlier rundown keeps its bytes, nothing is left behind, and with room again it succeeds.
    void aFullDiskFailsTheExportAndKeepsTheEarlierRundown()
    {
        TempHome home;
        const QString folder = home.file(QStringLiteral("Documents/Kairon/Reports"));
        FullDisk disk(folder);
        FULL_DISK_OR_SKIP(disk);
        const TimerSession s = showOf(3);
        const std::optional<QString> earlier = RundownPDFExporter::exportPDF(s);
        QVERIFY(earlier);
        const QByteArray before = bytesOf(*earlier);
        disk.fill();

        const QDateTime current = QDateTime::currentDateTimeUtc();
        ExportError error;
        QVERIFY(!RundownPDFExporter::exportPDF(s, &error));
        QCOMPARE(error.code, 1);
        QStringList expected;
        for (const QDateTime &t : {current, current.addSecs(60)})
            expected << QStringLiteral("impossible d'écrire « %1/%2 » (plus d'espace libre sur le disque)")
                            .arg(folder, RundownPDFExporter::fileName(s, t, paris));
        QVERIFY2(expected.contains(error.description), qPrintable(error.description));
        QCOMPARE(bytesOf(*earlier), before);
        QCOMPARE(disk.files(), QStringList{QFileInfo(*earlier).fileName()});

        disk.makeRoom();
        const std::optional<QString> later = RundownPDFExporter::exportPDF(s, &error);
        QVERIFY2(later, qPrintable(error.description));
        QCOMPARE(pagesOf(*later).size(), 1);
    }

    void aReportsFolderThatCannotBeMadeIsAnError()
    {
        TempHome home;
        home.blockWithAFile(QStringLiteral("Documents/Kairon/Reports"));
        ExportError error;
        QVERIFY(!RundownPDFExporter::exportPDF(showOf(1), &error));
        QVERIFY(error.description.startsWith(QStringLiteral("impossible de créer le dossier « ")));
    }
};

QTEST_MAIN(TestRundownPdf)
#include "tst_rundownpdf.moc"
