#pragma once

#include "reportfiles.h"
#include "textfit.h"
#include "timersession.h"

#include <QDateTime>
#include <QFont>
#include <QLocale>
#include <QPainter>
#include <QString>
#include <QTimeZone>

#include <optional>

class QIODevice;

// The rundown handed out before the event: an A4 PDF (595 × 842 points) of the running order,
// each cue with its planned start and end times, under a branded header, 24 cues a page.
// Positions are given in points from the bottom-left corner of the page, as in the PDF.
class RundownPDFExporter
{
public:
    // Writes "Rundown_<name>_<yyyy-MM-dd_HH-mm>.pdf" into Documents/Kairon/Reports (replacing a
    // file of that name, atomically) and returns its path. A PDF that cannot be drawn gives the
    // error "Impossible de créer le PDF", a file that cannot be written "impossible d'écrire
    // « path » (reason)" (both domain "Kairon", code 1).
    static std::optional<QString> exportPDF(const TimerSession &session, ExportError *error = nullptr);

    // The parts of it, for the tests.
    static QString fileName(const TimerSession &session, const QDateTime &now, const QTimeZone &zone);
    // When the first cue starts: the event date's own time, or 20:00 on the event's day (or
    // today) when it has none or it is exactly midnight.
    static QDateTime showStart(const TimerSession &session, const QDateTime &now, const QTimeZone &zone);
    static bool write(const TimerSession &session, QIODevice *device, const QDateTime &now,
                      const QLocale &locale, const QTimeZone &zone);

    static constexpr int cuesPerPage = 24;
    // The right end of the table's rule: no text goes past it, as none starts left of 46.
    static constexpr double rightEdge = 549;

private:
    RundownPDFExporter(QPainter &painter, const QLocale &locale, const QTimeZone &zone)
        : m_painter(painter), m_locale(locale), m_zone(zone)
    {
    }

    // The first page's top part from `y` down; returns where the table may start.
    double drawHeader(const TimerSession &session, double y);
    void drawTableHeader(double y);
    void drawRow(const Cue &cue, const QDateTime &start, const QDateTime &end, double y);
    void drawFooter(const QDateTime &now);

    enum class Weight { Regular, Medium, Bold };
    static QFont fontOf(double size, Weight weight);
    // The width of a text in that font, in points.
    TextFit::Advance advanceOf(const QFont &font) const;
    // Draws the text with its baseline at (x, y), shortened with "…" where it would pass `right`.
    void text(const QString &text, double x, double y, double size, Weight weight, const QColor &colour,
              double right = rightEdge);

    QPainter &m_painter;
    QLocale m_locale;
    QTimeZone m_zone;
};
