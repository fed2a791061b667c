#include "showrecovery.h"

#include "diskwrite.h"
#include "userfolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaMethod>
#include <QStandardPaths>

#include <cerrno>
#include <utility>

ShowRecovery::ShowRecovery(TimerEngine &engine, const SessionStore &store, AppFlowState &flow,
                           ToastCenter &toasts, Clock &clock, const QString &filePath,
                           QObject *parent)
    : QObject(parent), m_engine(engine), m_store(store), m_flow(flow), m_toasts(toasts),
      m_path(filePath)
{
    // The file on disk is older than what this program captured: capture it all again.
    m_retry = clock.createTimer([this] {
        m_written.reset();
        scheduleCapture();
    });
    // Every signal of the engine may change the live state; a capture compares and writes
    // only a real change, so the ticks of a running clock write nothing.
    const QMetaObject *meta = m_engine.metaObject();
    const QMetaMethod onChange = metaObject()->method(metaObject()->indexOfMethod("scheduleCapture()"));
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        if (meta->method(i).methodType() == QMetaMethod::Signal)
            connect(&m_engine, meta->method(i), this, onChange);
    }
    connect(&m_flow, &AppFlowState::stageChanged, this, [this] {
        if (m_flow.stage() == AppFlowState::Sessions)
            showClosed();
        else
            scheduleCapture();
    });
}

ShowRecovery::~ShowRecovery() = default;

QString ShowRecovery::defaultPath()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    return QDir(folder).filePath(QStringLiteral("recovery.json"));
}

bool ShowRecovery::resumeIfInterrupted(const std::optional<QString> &requestedProject)
{
    QFile file(m_path);
    if (!file.exists())
        return false;
    errno = 0;
    if (!file.open(QIODevice::ReadOnly)) {
        setAside(DiskWrite::openFailure(m_path, errno));
        return false;
    }
    QString error;
    const std::optional<LiveState> state = LiveStateFile::decode(file.readAll(), &error);
    file.close();
    if (!state) {
        setAside(error);
        return false;
    }
    if (requestedProject && !sameShow(*requestedProject, *state)) {
        setAside(QStringLiteral("un autre projet a été ouvert"));
        return false;
    }
    // The show is saved in the library under its id; until its first save it is only where it
    // was opened from: the file the command line names again, or the one the recovery file
    // keeps (a relaunch from the desktop names none).
    const QString inLibrary = m_store.fileOf(state->sessionID);
    const bool saved = QFileInfo::exists(inLibrary);
    const QString project = saved ? inLibrary : requestedProject.value_or(state->projectFile);
    if (!saved && (project.isEmpty() || !sameShow(project, *state))) {
        setAside(QStringLiteral("le projet n'est plus là où il a été ouvert"));
        return false;
    }
    std::optional<TimerSession> session = m_store.read(project, &error);
    if (!session) {
        setAside(error);
        return false;
    }
    if (!saved) {
        // A file that does not write its show's id gets a new one at every read: the show
        // keeps the one it had, and its file is kept for the next interruption.
        session->id = state->sessionID;
        m_projectFile = QFileInfo(project).absoluteFilePath();
    }

    m_engine.loadSession(*session);
    m_engine.resumeLiveState(*state);
    m_outputsToReopen = state->outputs;
    // Straight to the console: the show is on.
    m_flow.setStageAfterSplash(AppFlowState::Workspace);
    m_flow.setStage(AppFlowState::Workspace);

    QString where = QStringLiteral("aucun cue en cours");
    if (const std::optional<int> index = m_engine.activeCueIndex()) {
        const Cue &cue = m_engine.session().cues[*index];
        const double remaining = m_engine.isRunning() ? m_engine.remaining() : state->remaining;
        where = QStringLiteral("cue %1 « %2 » à %3")
                    .arg(*index + 1)
                    .arg(cue.name, TimerEngine::format(remaining, true));
        if (m_engine.isPaused())
            where += QStringLiteral(" (en pause)");
    }
    m_toasts.showInfo(QStringLiteral("Reprise après interruption : ") + where);
    m_written = state;
    scheduleCapture();
    return true;
}

bool ShowRecovery::sameShow(const QString &path, const LiveState &state) const
{
    const std::optional<TimerSession> show = m_store.read(path);
    if (!show)
        return false;
    if (show->id == state.sessionID)
        return true;
    // A file that does not write its show's id is the same show when it is the file the show
    // was opened from.
    QFile file(path);
    const bool writesItsId = file.open(QIODevice::ReadOnly)
                             && QJsonDocument::fromJson(file.readAll()).object().contains(QLatin1StringView("id"));
    return !writesItsId && !state.projectFile.isEmpty()
           && QFileInfo(path).absoluteFilePath() == state.projectFile;
}

void ShowRecovery::showOpenedFrom(const QString &path)
{
    m_projectFile = QFileInfo::exists(m_store.fileOf(m_engine.session().id)) ? QString()
                                                                             : QFileInfo(path).absoluteFilePath();
    scheduleCapture();
}

void ShowRecovery::setAside(const QString &reason)
{
    const QString aside = m_path + QStringLiteral(".illisible-")
                          + QString::number(QDateTime::currentSecsSinceEpoch());
    QFile::remove(aside);
    QFile::rename(m_path, aside);
    m_toasts.showError(QStringLiteral("Reprise impossible, fichier de reprise mis de côté : ") + reason);
}

void ShowRecovery::scheduleCapture()
{
    if (m_captureQueued)
        return;
    m_captureQueued = true;
    QMetaObject::invokeMethod(this, &ShowRecovery::capture, Qt::QueuedConnection);
}

void ShowRecovery::capture()
{
    m_captureQueued = false;
    // A main's show followed is the main's to recover.
    if (m_flow.stage() != AppFlowState::Workspace || m_engine.isFollowing())
        return;
    LiveState state = m_engine.liveState();
    if (m_readOutputs)
        state.outputs = m_readOutputs();
    state.projectFile = m_projectFile;
    if (m_written && m_written->sameAs(state))
        return;
    m_written = state;
    const QString path = m_path;
    const QByteArray bytes = LiveStateFile::encode(state);
    m_disk.post(
        [path, bytes] {
            QString error;
            UserFolders::ensure(QFileInfo(path).path());
            return UserFolders::writeAtomically(path, bytes, &error) ? QString() : error;
        },
        [this](const QString &error) { written(error); });
}

void ShowRecovery::written(const QString &error)
{
    if (error.isEmpty()) {
        m_writeFailing = false;
        return;
    }
    if (m_flow.stage() != AppFlowState::Workspace)
        return; // the show was closed meanwhile, and its file removed
    // The file keeps the state it held before (the write is atomic). It is written again a
    // moment later rather than at every tick, and the operator is told once, not every time.
    if (!m_retry->isActive())
        m_retry->start(retryDelayMs);
    if (!std::exchange(m_writeFailing, true))
        m_toasts.showError(QStringLiteral("Échec de l'enregistrement de reprise : ") + error);
}

void ShowRecovery::showClosed()
{
    m_disk.waitForDone();
    m_retry->stop();
    m_written.reset();
    m_outputsToReopen.clear();
    m_projectFile.clear();
    QFile::remove(m_path);
}
