#include "rundownexport.h"

#include "reportexporter.h"
#include "showschedule.h"
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

// One cell of a row, as a value and the way it is shown.
struct Cell {
    enum class Kind {
        Empty,
        Count,     // a whole number
        Text,
        Length,    // a time value shown [h]:mm:ss, `number` a fraction of a day
        TimeOfDay, // a time value shown hh:mm, `number` a fraction of a day
    };
    Kind kind = Kind::Empty;
    double number = 0;
    QString text;
};

using Row = QList<Cell>;

Cell countCell(int count)
{
    return Cell{Cell::Kind::Count, double(count), {}};
}

Cell textCell(const QString &text)
{
    return Cell{Cell::Kind::Text, 0, text};
}

Cell lengthCell(double seconds)
{
    return Cell{Cell::Kind::Length, seconds / secondsPerDay, {}};
}

// A moment as its time of day in `zone`: only its hour and minute count, as for an end time.
Cell timeOfDayCell(const QDateTime &moment, const QTimeZone &zone)
{
    const QTime time = moment.toTimeZone(zone).time();
    return Cell{Cell::Kind::TimeOfDay, (time.hour() * 3600 + time.minute() * 60) / secondsPerDay, {}};
}

// A cue's row; `plannedStart` fills the "Début prévu" column, left out when the show has no start.
Row rowOf(const Cue &cue, int number, const std::optional<QDateTime> &plannedStart,
          const QTimeZone &zone)
{
    Row row{countCell(number)};
    if (plannedStart)
        row.append(timeOfDayCell(*plannedStart, zone));
    const bool hasEnd = cue.mode == TimerMode::HardOut && cue.hardOutTime;
    row << textCell(cue.name) << textCell(cue.speaker) << lengthCell(cue.duration)
        << (hasEnd ? timeOfDayCell(*cue.hardOutTime, zone) : Cell{})
        << lengthCell(cue.warningThreshold) << lengthCell(cue.dangerThreshold)
        << textCell(cue.autoFollow ? QStringLiteral("oui") : QStringLiteral("non"))
        << textCell(cue.colorHex.value_or(QString())) << textCell(cue.notes);
    return row;
}

// The header and the cues' rows, with a "Début prévu" column when the show has a start: the
// show's own timetable gives each cue's planned start.
struct Table {
    QStringList header;
    QList<Row> rows;
};

Table tableOf(const TimerSession &session, const QTimeZone &zone)
{
    const std::optional<ShowPlan> plan = ShowSchedule::plan(session, zone);
    Table table{RundownExport::headers(plan.has_value()), {}};
    table.rows.reserve(session.cues.size());
    for (int i = 0; i < session.cues.size(); ++i) {
        const std::optional<QDateTime> start =
            plan ? std::optional<QDateTime>(plan->cues.at(i).start) : std::nullopt;
        table.rows.append(rowOf(session.cues[i], i + 1, start, zone));
    }
    return table;
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

QString textOf(const Cell &cell)
{
    switch (cell.kind) {
    case Cell::Kind::Empty: return {};
    case Cell::Kind::Count: return QString::number(qint64(cell.number));
    case Cell::Kind::Text: return cell.text;
    case Cell::Kind::Length: return clockText(cell.number);
    case Cell::Kind::TimeOfDay: return timeOfDayText(cell.number);
    }
    return {};
}

QStringList textsOf(const Row &row)
{
    QStringList texts;
    texts.reserve(row.size());
    for (const Cell &cell : row)
        texts.append(textOf(cell));
    return texts;
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
    void cell(int row, int column, const Cell &value)
    {
        switch (value.kind) {
        case Cell::Kind::Empty: return;
        case Cell::Kind::Count: return number(row, column, value.number);
        case Cell::Kind::Text: return text(row, column, value.text);
        case Cell::Kind::Length: return number(row, column, value.number, m_length);
        case Cell::Kind::TimeOfDay: return number(row, column, value.number, m_timeOfDay);
        }
    }
    void write(const Table &table)
    {
        const QStringList &header = table.header;
        const QList<Row> &rows = table.rows;
        QList<QStringList> columnTexts(header.size());
        for (int c = 0; c < header.size(); ++c) {
            text(0, c, header[c], m_bold);
            columnTexts[c].append(header[c]);
        }
        for (int r = 0; r < rows.size(); ++r) {
            const Row &row = rows[r];
            for (int c = 0; c < row.size(); ++c) {
                cell(r + 1, c, row[c]);
                columnTexts[c].append(textOf(row[c]));
            }
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

QStringList headers(bool withPlannedStart)
{
    QStringList header{QStringLiteral("N°")};
    if (withPlannedStart)
        header.append(QStringLiteral("Début prévu"));
    header << QStringLiteral("Nom") << QStringLiteral("Intervenant") << QStringLiteral("Durée")
           << QStringLiteral("Fin") << QStringLiteral("Alerte") << QStringLiteral("Danger")
           << QStringLiteral("Enchaînement") << QStringLiteral("Couleur") << QStringLiteral("Notes");
    return header;
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
        writer.write(tableOf(session, zone));
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
    const Table table = tableOf(session, zone);
    appendLine(table.header);
    for (const Row &row : table.rows)
        appendLine(textsOf(row));
    return text.toUtf8();
}

bool writeCsv(const TimerSession &session, const QTimeZone &zone, const QString &path,
              QString *error)
{
    return UserFolders::writeAtomically(path, csvBytes(session, zone), error);
}

} // namespace RundownExport
