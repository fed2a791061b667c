#include "rundownexport.h"

#include "reportexporter.h"
#include "userfolders.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTime>

#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr double secondsPerDay = 86400;

// One cue's row, as values: a time as a fraction of a day (nullopt: an empty cell).
struct Row {
    int number;
    QString name;
    QString speaker;
    double duration;
    std::optional<double> end;
    double warning;
    double danger;
    QString autoFollow;
    QString colour;
    QString notes;
};

Row rowOf(const Cue &cue, int number, const QTimeZone &zone)
{
    std::optional<double> end;
    if (cue.mode == TimerMode::HardOut && cue.hardOutTime) {
        // Only the hour and the minute of an end time count.
        const QTime time = cue.hardOutTime->toTimeZone(zone).time();
        end = (time.hour() * 3600 + time.minute() * 60) / secondsPerDay;
    }
    return Row{number,
               cue.name,
               cue.speaker,
               cue.duration / secondsPerDay,
               end,
               cue.warningThreshold / secondsPerDay,
               cue.dangerThreshold / secondsPerDay,
               cue.autoFollow ? QStringLiteral("oui") : QStringLiteral("non"),
               cue.colorHex.value_or(QString()),
               cue.notes};
}

QList<Row> rowsOf(const TimerSession &session, const QTimeZone &zone)
{
    QList<Row> rows;
    rows.reserve(session.cues.size());
    for (int i = 0; i < session.cues.size(); ++i)
        rows.append(rowOf(session.cues[i], i + 1, zone));
    return rows;
}

// A length as "h:mm:ss", hours not wrapped; a fraction of a second, which the editor never
// makes, as ".mmm".
QString clockText(double days)
{
    const qint64 ms = std::isfinite(days) ? std::llround(std::clamp(days, 0.0, 1e6) * secondsPerDay * 1000) : 0;
    const qint64 seconds = ms / 1000;
    QString text = QStringLiteral("%1:%2:%3")
                       .arg(seconds / 3600)
                       .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
                       .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    if (ms % 1000)
        text += QStringLiteral(".%1").arg(ms % 1000, 3, 10, QLatin1Char('0'));
    return text;
}

QString timeOfDayText(double days)
{
    const int minutes = int(std::lround(days * 24 * 60));
    return QStringLiteral("%1:%2").arg(minutes / 60, 2, 10, QLatin1Char('0')).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QStringList textsOf(const Row &row)
{
    return {QString::number(row.number), row.name, row.speaker, clockText(row.duration),
            row.end ? timeOfDayText(*row.end) : QString(), clockText(row.warning),
            clockText(row.danger), row.autoFollow, row.colour, row.notes};
}

// The width of a column in characters: its longest line, within reason.
double fittedWidth(const QStringList &texts)
{
    qsizetype longest = 0;
    for (const QString &text : texts) {
        for (const QStringView line : QStringView(text).split(u'\n'))
            longest = std::max(longest, line.size());
    }
    return double(std::clamp<qsizetype>(longest, 4, 60)) + 2;
}

class XlsxWriter
{
public:
    explicit XlsxWriter(const QString &path)
        : m_book(workbook_new(QFile::encodeName(path).constData()))
    {
        if (!m_book)
            return;
        m_sheet = workbook_add_worksheet(m_book, "Conducteur");
        m_bold = workbook_add_format(m_book);
        format_set_bold(m_bold);
        m_length = workbook_add_format(m_book);
        format_set_num_format(m_length, "[h]:mm:ss");
        m_timeOfDay = workbook_add_format(m_book);
        format_set_num_format(m_timeOfDay, "hh:mm");
        m_wrapped = workbook_add_format(m_book);
        format_set_text_wrap(m_wrapped);
    }
    ~XlsxWriter()
    {
        if (m_book && !m_closed)
            workbook_close(m_book);
    }

    bool opened() const { return m_sheet != nullptr; }

    void text(int row, int column, const QString &value, lxw_format *format = nullptr)
    {
        if (value.isEmpty())
            return;
        if (!format && value.contains(u'\n'))
            format = m_wrapped;
        remember(worksheet_write_string(m_sheet, row, lxw_col_t(column), value.toUtf8().constData(), format));
    }
    void number(int row, int column, double value, lxw_format *format = nullptr)
    {
        remember(worksheet_write_number(m_sheet, row, lxw_col_t(column), value, format));
    }
    void write(const QList<Row> &rows)
    {
        const QStringList header = RundownExport::headers();
        QList<QStringList> columnTexts(header.size());
        for (int c = 0; c < header.size(); ++c) {
            text(0, c, header[c], m_bold);
            columnTexts[c].append(header[c]);
        }
        for (int r = 0; r < rows.size(); ++r) {
            const Row &row = rows[r];
            const int line = r + 1;
            number(line, 0, row.number);
            text(line, 1, row.name);
            text(line, 2, row.speaker);
            number(line, 3, row.duration, m_length);
            if (row.end)
                number(line, 4, *row.end, m_timeOfDay);
            number(line, 5, row.warning, m_length);
            number(line, 6, row.danger, m_length);
            text(line, 7, row.autoFollow);
            text(line, 8, row.colour);
            text(line, 9, row.notes);
            const QStringList texts = textsOf(row);
            for (int c = 0; c < texts.size(); ++c)
                columnTexts[c].append(texts[c]);
        }
        for (int c = 0; c < header.size(); ++c)
            worksheet_set_column(m_sheet, lxw_col_t(c), lxw_col_t(c), fittedWidth(columnTexts[c]), nullptr);
        worksheet_freeze_panes(m_sheet, 1, 0);
    }
    // Writes the file; the first error met, if any, as libxlsxwriter words it.
    std::optional<QString> close()
    {
        m_closed = true;
        remember(workbook_close(m_book));
        if (m_error == LXW_NO_ERROR)
            return std::nullopt;
        return QString::fromUtf8(lxw_strerror(m_error));
    }

private:
    void remember(lxw_error error)
    {
        if (m_error == LXW_NO_ERROR)
            m_error = error;
    }

    lxw_workbook *m_book = nullptr;
    lxw_worksheet *m_sheet = nullptr;
    lxw_format *m_bold = nullptr;
    lxw_format *m_length = nullptr;
    lxw_format *m_timeOfDay = nullptr;
    lxw_format *m_wrapped = nullptr;
    lxw_error m_error = LXW_NO_ERROR;
    bool m_closed = false;
};

bool fail(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
    return false;
}

} // namespace

namespace RundownExport {

QStringList headers()
{
    return {QStringLiteral("N°"),       QStringLiteral("Nom"),    QStringLiteral("Intervenant"),
            QStringLiteral("Durée"),    QStringLiteral("Fin"),    QStringLiteral("Alerte"),
            QStringLiteral("Danger"),   QStringLiteral("Enchaînement"), QStringLiteral("Couleur"),
            QStringLiteral("Notes")};
}

bool writeXlsx(const TimerSession &session, const QTimeZone &zone, const QString &path,
               QString *error)
{
    // libxlsxwriter writes only to a path: the workbook is made in a private folder, then put in
    // place by the same atomic write as every other file.
    QTemporaryDir folder;
    if (!folder.isValid())
        return fail(error, QStringLiteral("impossible de créer un dossier temporaire (%1)").arg(folder.errorString()));
    const QString draft = folder.filePath(QStringLiteral("conducteur.xlsx"));
    {
        XlsxWriter writer(draft);
        if (!writer.opened())
            return fail(error, QStringLiteral("impossible de préparer le classeur"));
        writer.write(rowsOf(session, zone));
        if (const std::optional<QString> reason = writer.close())
            return fail(error, QStringLiteral("impossible d’écrire le classeur (%1)").arg(*reason));
    }
    QFile made(draft);
    if (!made.open(QIODevice::ReadOnly))
        return fail(error, QStringLiteral("impossible de relire le classeur (%1)").arg(made.errorString()));
    return UserFolders::writeAtomically(path, made.readAll(), error);
}

QByteArray csvBytes(const TimerSession &session, const QTimeZone &zone)
{
    QString text = QStringLiteral("\uFEFF");
    const auto appendLine = [&text](const QStringList &fields) {
        for (qsizetype i = 0; i < fields.size(); ++i) {
            if (i)
                text += u';';
            text += ReportExporter::escape(fields[i]);
        }
        text += QStringLiteral("\r\n");
    };
    appendLine(headers());
    for (const Row &row : rowsOf(session, zone))
        appendLine(textsOf(row));
    return text.toUtf8();
}

bool writeCsv(const TimerSession &session, const QTimeZone &zone, const QString &path,
              QString *error)
{
    return UserFolders::writeAtomically(path, csvBytes(session, zone), error);
}

} // namespace RundownExport
