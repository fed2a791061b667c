#include "spreadsheetimport.h"

#include "cuelistmodel.h"
#include "linkedrundown.h"
#include "localfile.h"
#include "sheetfile.h"
#include "timerengine.h"

#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

SpreadsheetImport::SpreadsheetImport(QObject *parent) : QAbstractListModel(parent)
{
    connect(&m_job, &QFutureWatcher<Outcome>::finished, this, &SpreadsheetImport::onDone);
}

SpreadsheetImport::~SpreadsheetImport()
{
    m_job.waitForFinished();
}

void SpreadsheetImport::setClock(DisplayClock *clock)
{
    if (m_clock == clock)
        return;
    m_clock = clock;
    emit clockChanged();
}

QString SpreadsheetImport::fileName() const
{
    return QFileInfo(m_path).fileName();
}

QString SpreadsheetImport::error() const
{
    if (m_busy)
        return {};
    return m_read.ok() ? m_preview.error : m_read.error;
}

QString SpreadsheetImport::summary() const
{
    if (m_busy)
        return QStringLiteral("Lecture du tableur…");
    return error().isEmpty() ? m_preview.summary() : QString();
}

QVariantList SpreadsheetImport::columns() const
{
    QVariantList list;
    if (m_busy || !m_read.ok())
        return list;
    for (const ImportColumn &column : m_preview.columns)
        list.append(QVariantMap{{QStringLiteral("column"), column.column},
                                {QStringLiteral("header"), column.header},
                                {QStringLiteral("field"), int(column.field)}});
    return list;
}

QStringList SpreadsheetImport::fieldLabels()
{
    QStringList labels;
    for (int field = int(ImportField::Ignore); field <= int(ImportField::Danger); ++field)
        labels.append(RundownImport::fieldLabel(ImportField(field)));
    return labels;
}

bool SpreadsheetImport::isSpreadsheet(const QUrl &file)
{
    static const QStringList extensions{QStringLiteral("xlsx"), QStringLiteral("ods"),
                                        QStringLiteral("csv"), QStringLiteral("tsv")};
    return extensions.contains(QFileInfo(localFileOf(file).value_or(QString())).suffix().toLower());
}

void SpreadsheetImport::load(const QUrl &file)
{
    m_path = localFileOf(file).value_or(QString());
    m_fieldByColumn.clear();
    read(std::nullopt);
}

void SpreadsheetImport::chooseSheet(const QString &name)
{
    if (name == sheetName() || !m_read.sheetNames.contains(name))
        return;
    m_fieldByColumn.clear();
    read(name);
}

void SpreadsheetImport::chooseField(int column, int field)
{
    if (field < int(ImportField::Ignore) || field > int(ImportField::Danger) || !m_read.ok())
        return;
    m_fieldByColumn.insert(column, ImportField(field));
    repreview();
}

QString SpreadsheetImport::projectName() const
{
    return QFileInfo(m_path).completeBaseName();
}

LinkedSpreadsheet SpreadsheetImport::link() const
{
    return LinkedRundown::linkFor(m_path, sheetName(), m_fieldByColumn);
}

QVariant SpreadsheetImport::newProject() const
{
    TimerSession session(m_clock ? m_clock->clock().now() : QDateTime::currentDateTimeUtc());
    session.name = projectName();
    session.cues = cues();
    session.linkedSpreadsheet = link();
    return QVariant::fromValue(session);
}

ImportContext SpreadsheetImport::context() const
{
    if (!m_clock)
        return {QDateTime::currentDateTime().date(), QTimeZone::systemTimeZone()};
    const Clock &clock = m_clock->clock();
    return {clock.now().toTimeZone(clock.timeZone()).date(), clock.timeZone()};
}

void SpreadsheetImport::read(const std::optional<QString> &sheet)
{
    run([path = m_path, sheet, context = context()] {
        Outcome outcome{SheetFile::read(path, sheet), {}};
        if (outcome.read.ok())
            outcome.preview = RundownImport::preview(outcome.read.table, context);
        return outcome;
    });
}

void SpreadsheetImport::repreview()
{
    run([read = m_read, fields = m_fieldByColumn, context = context()] {
        return Outcome{read, RundownImport::preview(read.table, context, fields)};
    });
}

void SpreadsheetImport::run(std::function<Outcome()> job)
{
    beginResetModel();
    m_busy = true;
    endResetModel();
    emit changed();
    m_job.setFuture(QtConcurrent::run(std::move(job)));
}

void SpreadsheetImport::onDone()
{
    const Outcome outcome = m_job.result();
    beginResetModel();
    m_read = outcome.read;
    m_preview = outcome.preview;
    m_busy = false;
    endResetModel();
    emit changed();
}

int SpreadsheetImport::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() || m_busy ? 0 : int(m_preview.rows.size());
}

QVariant SpreadsheetImport::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const ImportRow &row = m_preview.rows.at(index.row());
    const std::optional<Cue> &cue = row.cue;
    switch (role) {
    case LineRole: return row.line;
    case NameRole: return cue ? cue->name : row.label;
    case SpeakerRole: return cue ? cue->speaker : QString();
    case DurationTextRole: return cue ? TimerEngine::format(cue->duration, false) : QString();
    case EndTextRole: return cue ? CueListModel::endText(*cue) : QString();
    case ProblemRole: return row.problem;
    case KeptRole: return cue.has_value();
    }
    return {};
}

QHash<int, QByteArray> SpreadsheetImport::roleNames() const
{
    return {{LineRole, "line"},         {NameRole, "name"},       {SpeakerRole, "speaker"},
            {DurationTextRole, "durationText"}, {EndTextRole, "endText"}, {ProblemRole, "problem"},
            {KeptRole, "kept"}};
}
