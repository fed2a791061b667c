#include "rundownpdfexporter.h"

#include "brand.h"
#include "formatters.h"
#include "textfit.h"
#include "userfolders.h"
#include "timerengine.h"
#include "walltime.h"

#include <QBuffer>
#include <QDir>
#include <QFont>
#include <QFontMetricsF>
#include <QPageSize>
#include <QPdfWriter>
#include <QStringList>

namespace {

constexpr double pageWidth = 595;
constexpr double pageHeight = 842;
const QColor accent = QColor::fromRgbF(1.0, 0.42, 0.0);
// The least blank between a column's text and the next column: small, so that every text the
// character limits let through in ordinary letters stays whole.
constexpr double columnGap = 2;
const QString infoSeparator = QStringLiteral("   ·   ");

QColor grey(double white)
{
    return QColor::fromRgbF(white, white, white);
}

} // namespace

QString RundownPDFExporter::fileName(const TimerSession &session, const QDateTime &now,
                                     const QTimeZone &zone)
{
    return ReportFiles::fileName(QStringLiteral("Rundown"), session, now, zone, QStringLiteral("pdf"));
}

QDateTime RundownPDFExporter::showStart(const TimerSession &session, const QDateTime &now,
                                        const QTimeZone &zone)
{
    if (session.eventDate) {
        const QDateTime local = session.eventDate->toTimeZone(zone);
        if (local.time().hour() != 0 || local.time().minute() != 0)
            return *session.eventDate;
        return WallTime::instantAt(local.date(), 20, 0, zone).value_or(now);
    }
    return WallTime::instantAt(now.toTimeZone(zone).date(), 20, 0, zone).value_or(now);
}

QFont RundownPDFExporter::fontOf(double size, Weight weight)
{
    QFont font(QStringLiteral("DejaVu Sans")); // its digits are all the same width
    font.setPointSizeF(size);
    font.setWeight(weight == Weight::Bold ? QFont::Bold
                   : weight == Weight::Medium ? QFont::Medium
                                              : QFont::Normal);
    return font;
}

TextFit::Advance RundownPDFExporter::advanceOf(const QFont &font) const
{
    return [metrics = QFontMetricsF(font, m_painter.device())](const QString &s) {
        return metrics.horizontalAdvance(s);
    };
}

void RundownPDFExporter::text(const QString &string, double x, double y, double size,
                              Weight weight, const QColor &colour, double right)
{
    const QFont font = fontOf(size, weight);
    m_painter.setFont(font);
    m_painter.setPen(colour);
    // The baseline at (x, y); a text that would reach `right` is cut short by its width.
    m_painter.drawText(QPointF(x, pageHeight - y), TextFit::toWidth(string, right - x, advanceOf(font)));
}

double RundownPDFExporter::drawHeader(const TimerSession &session, double y)
{
    m_painter.fillRect(QRectF(0, pageHeight - (836 + 6), pageWidth, 6), accent); // (0, 836) up
    text(QStringLiteral("RUNDOWN"), 46, y - 24, 26, Weight::Bold, accent);
    text(session.name, 46, y - 46, 16, Weight::Bold, Qt::black);

    QStringList info;
    if (session.client && !session.client->isEmpty())
        info << QStringLiteral("Client : ") + *session.client;
    if (session.venue && !session.venue->isEmpty())
        info << QStringLiteral("Lieu : ") + *session.venue;
    if (session.operatorName && !session.operatorName->isEmpty())
        info << QStringLiteral("Régie : ") + *session.operatorName;
    double running = y - 54;
    if (!info.isEmpty() || session.eventDate) {
        // The date is kept whole: the client, venue and operator share the rest of the line.
        const TextFit::Advance advance = advanceOf(fontOf(10, Weight::Regular));
        const QString date = session.eventDate
            ? m_locale.toString(session.eventDate->toTimeZone(m_zone).date(), QLocale::LongFormat)
            : QString();
        const qsizetype separators = info.size() - (session.eventDate ? 0 : 1);
        const double room = rightEdge - 46 - double(separators) * advance(infoSeparator)
            - (session.eventDate ? advance(date) : 0);
        info = TextFit::sharingWidth(info, room, advance);
        if (session.eventDate)
            info << date;
        text(info.join(infoSeparator), 46, y - 65, 10, Weight::Regular, grey(0.3));
        running -= 18;
    }

    double total = 0;
    for (const Cue &cue : session.cues)
        total += cue.duration;
    // "cues" whatever the number, unlike the library listing.
    text(QString::number(session.cues.size()) + QStringLiteral(" cues — durée totale ")
             + TimerEngine::format(total, false),
         46, running - 10, 9, Weight::Regular, grey(0.45));
    return running - 22;
}

void RundownPDFExporter::drawTableHeader(double y)
{
    const std::pair<const char *, double> titles[] = {
        {"DÉBUT", 46}, {"FIN", 98}, {"CUE", 156}, {"INTERVENANT", 336}, {"DURÉE", 466}};
    for (const auto &[title, x] : titles)
        text(QString::fromUtf8(title), x, y, 9, Weight::Bold, grey(0.35));
    m_painter.setPen(QPen(accent, 1.2));
    m_painter.drawLine(QPointF(46, pageHeight - (y - 5)), QPointF(549, pageHeight - (y - 5)));
}

void RundownPDFExporter::drawRow(const Cue &cue, const QDateTime &start, const QDateTime &end, double y)
{
    const DateFormatter hhmm(QStringLiteral("HH:mm"), m_locale, m_zone);
    text(hhmm.string(start), 46, y, 10, Weight::Medium, Qt::black, 98 - columnGap);
    text(hhmm.string(end), 98, y, 10, Weight::Regular, grey(0.4), 156 - columnGap);
    text(TextFit::toCharacters(cue.name, 34), 156, y, 10, Weight::Regular, Qt::black, 336 - columnGap);
    text(TextFit::toCharacters(cue.speaker, 22), 336, y, 10, Weight::Regular, grey(0.3), 466 - columnGap);
    text(TimerEngine::format(cue.duration, false), 466, y, 10, Weight::Medium, Qt::black);
}

void RundownPDFExporter::drawFooter(const QDateTime &now)
{
    const QDateTime local = now.toTimeZone(m_zone);
    text(Brand::productName() + QStringLiteral(" — ") + Brand::companyName() + QStringLiteral(" · ")
             + Brand::webAddress() + QStringLiteral(" · Généré le ")
             + Fmt::mediumDate(now, m_locale, m_zone) + u' '
             + m_locale.toString(local.time(), QLocale::ShortFormat),
         46, 32, 8, Weight::Regular, grey(0.45));
}

bool RundownPDFExporter::write(const TimerSession &session, QIODevice *device,
                               const QDateTime &now, const QLocale &locale, const QTimeZone &zone)
{
    QPdfWriter pdf(device);
    pdf.setPageSize(QPageSize(QSizeF(pageWidth, pageHeight), QPageSize::Point));
    pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
    pdf.setResolution(72); // one unit is one point
    pdf.setTitle(QStringLiteral("Rundown — ") + session.name);
    pdf.setCreator(Brand::productName());

    QPainter painter;
    if (!painter.begin(&pdf))
        return false;
    painter.setRenderHint(QPainter::TextAntialiasing);
    RundownPDFExporter page(painter, locale, zone);

    QDateTime clock = showStart(session, now, zone);
    const qsizetype pages = std::max<qsizetype>(1, (session.cues.size() + cuesPerPage - 1) / cuesPerPage);
    for (qsizetype p = 0; p < pages; ++p) {
        if (p > 0)
            pdf.newPage();
        double tableY;
        if (p == 0) {
            tableY = page.drawHeader(session, 796) - 8;
        } else {
            // White on the plain page: the continuation title is there, but unseen.
            const QString before = QStringLiteral("RUNDOWN — "), after = QStringLiteral(" (suite)");
            const TextFit::Advance advance = page.advanceOf(fontOf(13, Weight::Bold));
            const QString name = TextFit::toWidth(session.name, rightEdge - 46 - advance(before + after), advance);
            page.text(before + name + after, 46, 782, 13, Weight::Bold, Qt::white);
            tableY = 754;
        }
        page.drawTableHeader(tableY);
        double rowY = tableY - 24;
        const qsizetype last = std::min<qsizetype>(session.cues.size(), (p + 1) * cuesPerPage);
        for (qsizetype i = p * cuesPerPage; i < last; ++i) {
            const Cue &cue = session.cues[i];
            const QDateTime end = clock.addMSecs(qint64(std::llround(cue.duration * 1000)));
            page.drawRow(cue, clock, end, rowY);
            clock = end;
            rowY -= 22;
        }
        page.drawFooter(now);
    }
    return painter.end();
}

std::optional<QString> RundownPDFExporter::exportPDF(const TimerSession &session, ExportError *error)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const std::optional<QString> path = ReportFiles::pathFor(fileName(session, now, Fmt::timeZone()), error);
    if (!path)
        return std::nullopt;
    // Drawn in memory, then written as any file of ours: the PDF writer does not check what
    // the disk does with its bytes.
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    QString reason = QStringLiteral("Impossible de créer le PDF");
    if (write(session, &pdf, now, Fmt::locale(), Fmt::timeZone())
        && UserFolders::writeAtomically(*path, pdf.data(), &reason))
        return *path;
    if (error)
        *error = ExportError{QStringLiteral("Kairon"), 1, reason};
    return std::nullopt;
}
