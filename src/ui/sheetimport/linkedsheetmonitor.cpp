#include "linkedsheetmonitor.h"

#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

LinkedSheetMonitor::LinkedSheetMonitor(TimerEngine &engine, AppFlowState &flow,
                                       ToastCenter &toasts, Clock &clock, QObject *parent)
    : QAbstractListModel(parent), m_engine(engine), m_flow(flow), m_toasts(toasts), m_clock(clock)
{
    m_settle = m_clock.createTimer([this] { readFile(); });
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &LinkedSheetMonitor::onDiskEvent);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &LinkedSheetMonitor::onDiskEvent);
    connect(&m_job, &QFutureWatcher<Reading>::finished, this, &LinkedSheetMonitor::onRead);
    connect(&m_engine, &TimerEngine::sessionChanged, this, &LinkedSheetMonitor::follow);
    connect(&m_flow, &AppFlowState::stageChanged, this, &LinkedSheetMonitor::follow);
    follow();
}

LinkedSheetMonitor::~LinkedSheetMonitor()
{
    m_job.waitForFinished();
}

QString LinkedSheetMonitor::text() const
{
    if (!m_error.isEmpty())
        return m_error;
    return QStringLiteral("Le conducteur a changé : ") + m_merge.counts();
}

QString LinkedSheetMonitor::fileName() const
{
    return QFileInfo(m_path).fileName();
}

void LinkedSheetMonitor::follow()
{
    const std::optional<LinkedSpreadsheet> &link = m_engine.session().linkedSpreadsheet;
    const QString path = m_flow.stage() == AppFlowState::Workspace && link ? link->path : QString();
    if (path == m_path) {
        if (m_shown)
            compare(); // the show changed under the banner: its counts follow
        return;
    }
    if (!m_watcher.files().isEmpty())
        m_watcher.removePaths(m_watcher.files());
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    m_settle->stop();
    m_path = path;
    m_read = {};
    show(false);
    if (m_path.isEmpty())
        return;
    // The folder too: a file saved aside and renamed over this one is a new file, which the
    // watch on the old one does not see.
    m_watcher.addPath(QFileInfo(m_path).absolutePath());
    if (QFileInfo::exists(m_path))
        m_watcher.addPath(m_path);
    // Read once as the show opens: the producer may have saved it since the show was closed.
    m_settle->start(settleMs);
}

LinkedSheetMonitor::Stamp LinkedSheetMonitor::stampOf() const
{
    const QFileInfo file(m_path);
    return file.exists() ? Stamp{true, file.size(), file.lastModified()} : Stamp{};
}

void LinkedSheetMonitor::onDiskEvent()
{
    if (m_path.isEmpty())
        return;
    if (!m_watcher.files().contains(m_path) && QFileInfo::exists(m_path))
        m_watcher.addPath(m_path);
    // Another file of the folder (a lock file, a backup) leaves this one as it was.
    if (stampOf() != m_stamp)
        m_settle->start(settleMs);
}

void LinkedSheetMonitor::readFile()
{
    if (m_path.isEmpty())
        return;
    if (m_job.isRunning()) {
        m_readAgain = true;
        return;
    }
    m_stamp = stampOf();
    const LinkedSpreadsheet link = *m_engine.session().linkedSpreadsheet;
    const QTimeZone zone = m_clock.timeZone();
    const ImportContext context{m_clock.now().toTimeZone(zone).date(), zone};
    const bool exists = m_stamp.exists;
    m_readPath = m_path;
    m_job.setFuture(QtConcurrent::run([link, context, exists]() -> Reading {
        const QString name = QFileInfo(link.path).fileName();
        if (!exists)
            return {QStringLiteral("Le tableur lié « %1 » est introuvable.").arg(name), {}};
        Reading reading = LinkedRundown::read(link, context);
        if (!reading.error.isEmpty())
            reading.error = QStringLiteral("Le tableur lié « %1 » ne se lit plus. %2").arg(name, reading.error);
        return reading;
    }));
}

void LinkedSheetMonitor::onRead()
{
    if (std::exchange(m_readAgain, false)) {
        readFile();
        return;
    }
    if (m_path.isEmpty() || m_readPath != m_path)
        return; // another show, or none, since the read began
    m_read = m_job.result();
    compare();
    emit fileRead();
}

void LinkedSheetMonitor::compare()
{
    beginResetModel();
    m_error = m_read.error;
    m_merge = m_error.isEmpty()
                  ? RundownMerging::merge(m_engine.session().cues, m_read.cues, m_clock.timeZone())
                  : RundownMerge();
    endResetModel();
    show(!m_error.isEmpty() || !m_merge.isEmpty());
}

void LinkedSheetMonitor::show(bool on)
{
    m_shown = on;
    emit changed();
}

void LinkedSheetMonitor::update()
{
    if (!canUpdate())
        return;
    if (m_engine.showLocked()) {
        m_toasts.showError(QStringLiteral("Mise à jour refusée : le conducteur est verrouillé"));
        return;
    }
    const QString counts = m_merge.counts();
    m_engine.replaceCues(m_merge.cues);
    m_toasts.showSuccess(QStringLiteral("Conducteur mis à jour : ") + counts);
}

void LinkedSheetMonitor::dismiss()
{
    show(false);
}

int LinkedSheetMonitor::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_merge.changes.size());
}

QVariant LinkedSheetMonitor::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const RundownMerge::Change &change = m_merge.changes.at(index.row());
    switch (role) {
    case KindRole:
        switch (change.kind) {
        case RundownMerge::Change::Added: return QStringLiteral("ajouté");
        case RundownMerge::Change::Removed: return QStringLiteral("supprimé");
        case RundownMerge::Change::Changed: return QStringLiteral("modifié");
        case RundownMerge::Change::Moved: return QStringLiteral("déplacé");
        }
        return {};
    case NameRole: return change.name;
    case FieldsRole: return change.fields.join(QStringLiteral(", "));
    }
    return {};
}

QHash<int, QByteArray> LinkedSheetMonitor::roleNames() const
{
    return {{KindRole, "kind"}, {NameRole, "name"}, {FieldsRole, "fields"}};
}
