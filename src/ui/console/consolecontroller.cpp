#include "consolecontroller.h"

#include "localfile.h"

#include "reportexporter.h"
#include "rundownexport.h"
#include "rundownpdfexporter.h"

#include <utility>

ConsoleController::ConsoleController(TimerEngine &engine, const SessionStore &store,
                                     AppFlowState &flow, ToastCenter &toasts,
                                     Clock &clock, Reveal reveal, QObject *parent)
    : QObject(parent), m_engine(engine), m_store(store), m_flow(flow), m_toasts(toasts),
      m_clock(clock), m_reveal(std::move(reveal)), m_linkedSheet(engine, flow, toasts, clock)
{
    m_autosave = m_clock.createTimer([this] { autosave(); });
    connect(&m_engine, &TimerEngine::sessionChanged, this, &ConsoleController::showChanged);
    // A backup that took over saves the show it now runs.
    connect(&m_engine, &TimerEngine::followingChanged, this, &ConsoleController::showChanged);
    QQmlEngine::setObjectOwnership(&m_draft, QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(&m_linkedSheet, QQmlEngine::CppOwnership);
    connect(&m_flow, &AppFlowState::stageChanged, this, &ConsoleController::followFlow);
    followFlow();
}

ConsoleController::~ConsoleController() = default;

void ConsoleController::followFlow()
{
    if (m_flow.stage() != AppFlowState::Workspace)
        m_autosave->stop();
}

void ConsoleController::showChanged()
{
    // A main's show followed is never written here.
    if (m_engine.isFollowing()) {
        m_autosave->stop();
        return;
    }
    if (m_flow.stage() == AppFlowState::Workspace && !m_autosave->isActive())
        m_autosave->start(autosaveDelayMs);
}

void ConsoleController::autosave()
{
    if (m_flow.stage() != AppFlowState::Workspace)
        return;
    if (m_disk.isBusy()) {
        m_autosaveAgain = true; // saved again once this write is over
        return;
    }
    saveInBackground([this](const QString &error) {
        // Silent while it works; a failing disk is told once, not at every change.
        if (!error.isEmpty() && !m_autosaveFailing)
            m_toasts.showError(QStringLiteral("Échec de sauvegarde automatique : ") + error);
        m_autosaveFailing = !error.isEmpty();
        if (std::exchange(m_autosaveAgain, false))
            autosave();
    });
}

void ConsoleController::saveInBackground(DiskWorker::Done done)
{
    // The show as it stands now: the copy shares the engine's data until the engine changes it.
    const SessionStore *store = &m_store;
    m_disk.post(
        [store, session = m_engine.session()] {
            QString error;
            store->save(session, &error);
            return error;
        },
        std::move(done));
}

void ConsoleController::saveProject()
{
    save(QStringLiteral("Projet sauvegardé"));
}

bool ConsoleController::saveBeforeQuit()
{
    m_autosave->stop();
    if (m_engine.isFollowing())
        return true;
    m_disk.waitForDone();
    return bool(m_store.save(m_engine.session()));
}

void ConsoleController::saveProjectInfo(const QVariant &session)
{
    if (!session.canConvert<TimerSession>())
        return;
    m_engine.updateProjectInfo(session.value<TimerSession>());
    save(QStringLiteral("Fiche projet mise à jour"));
}

void ConsoleController::save(const QString &success)
{
    if (m_engine.isFollowing())
        return;
    saveInBackground([this, success](const QString &error) {
        if (error.isEmpty())
            m_toasts.showSuccess(success);
        else
            m_toasts.showError(QStringLiteral("Échec de sauvegarde : ") + error);
    });
}

void ConsoleController::backToProjects()
{
    if (m_engine.isFollowing())
        return; // the main's show stays until this machine takes over or stops following
    saveProject(); // the file holds the cues as they stood, the running one included
    // With no show open, the outputs and remote control show nothing of it.
    m_engine.returnToIdle();
    m_flow.setStage(AppFlowState::Sessions);
}

void ConsoleController::exportReport()
{
    ExportError error;
    const std::optional<QString> path = ReportExporter::exportCSV(
        m_engine.session(), m_engine.completedCueLog(), m_engine.totalOvertime(), &error);
    if (!path) {
        m_toasts.showError(QStringLiteral("Erreur export : ") + error.description);
        return;
    }
    m_toasts.showSuccess(QStringLiteral("Rapport CSV exporté"));
    if (m_reveal)
        m_reveal(*path);
}

void ConsoleController::exportRundownPDF()
{
    ExportError error;
    const std::optional<QString> path = RundownPDFExporter::exportPDF(m_engine.session(), &error);
    if (!path) {
        m_toasts.showError(QStringLiteral("Erreur export PDF : ") + error.description);
        return;
    }
    m_toasts.showSuccess(QStringLiteral("Rundown PDF exporté"));
    if (m_reveal)
        m_reveal(*path);
}

QUrl ConsoleController::rundownSheetProposal() const
{
    const QString name = ReportFiles::fileName(QStringLiteral("Conducteur"), m_engine.session(),
                                               m_clock.now(), m_clock.timeZone(), QStringLiteral("xlsx"));
    const std::optional<QString> path = ReportFiles::pathFor(name, nullptr);
    return path ? QUrl::fromLocalFile(*path) : QUrl();
}

void ConsoleController::exportRundownSheet(const QUrl &file, bool csv)
{
    const std::optional<QString> named = localFileOf(file);
    if (!named)
        return;
    QString path = *named;
    if (path.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive))
        csv = true;
    else if (path.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive))
        csv = false;
    else
        path += csv ? QLatin1String(".csv") : QLatin1String(".xlsx");
    QString error;
    const bool written = csv ? RundownExport::writeCsv(m_engine.session(), m_clock.timeZone(), path, &error)
                             : RundownExport::writeXlsx(m_engine.session(), m_clock.timeZone(), path, &error);
    if (!written) {
        m_toasts.showError(QStringLiteral("Erreur export : ") + error);
        return;
    }
    m_toasts.showSuccess(QStringLiteral("Conducteur exporté"));
    if (m_reveal)
        m_reveal(path);
}

void ConsoleController::addCuesFromSpreadsheet(SpreadsheetImport *importer, bool replace)
{
    if (!importer)
        return;
    if (m_engine.showLocked()) {
        m_toasts.showError(QStringLiteral("Import refusé : le conducteur est verrouillé"));
        return;
    }
    const QList<Cue> imported = importer->cues();
    if (imported.isEmpty())
        return;
    m_engine.replaceCues(replace ? imported : m_engine.session().cues + imported);
    // A running order replaced by a sheet follows that sheet from now on; cues added from
    // one stay the show's own.
    if (replace)
        m_engine.setLinkedSpreadsheet(importer->link());
    const QString count = imported.size() == 1 ? QStringLiteral("1 cue")
                                               : QStringLiteral("%1 cues").arg(imported.size());
    m_toasts.showSuccess(replace ? QStringLiteral("Conducteur remplacé : ") + count
                                 : count + (imported.size() == 1 ? QStringLiteral(" ajouté") : QStringLiteral(" ajoutés")));
}

bool ConsoleController::sendCustom(const QString &text, bool urgent)
{
    const QString message = text.trimmed();
    if (message.isEmpty())
        return false;
    m_engine.sendMessage(message, urgent);
    return true;
}

void ConsoleController::sendPreset(int index)
{
    const QList<PresetMessage> presets = m_engine.presetMessages();
    if (index >= 0 && index < presets.size())
        m_engine.sendMessage(presets[index].text, presets[index].urgent);
}

void ConsoleController::clearMessage()
{
    m_engine.sendMessage(std::nullopt, false); // also tells remote control
}

void ConsoleController::playPause()
{
    if (m_engine.isRunning())
        m_engine.pause(); // the engine pauses or resumes
    else
        m_engine.start();
}

void ConsoleController::startCue(int index)
{
    m_engine.start(index);
}

void ConsoleController::selectCue(int index)
{
    m_engine.setSelectedCueIndex(index);
}

void ConsoleController::notifyRemote()
{
    m_engine.notifyStateChange();
}

void ConsoleController::toggleBlackout()
{
    m_engine.setBlackout(!m_engine.blackout());
    notifyRemote();
}

void ConsoleController::toggleClockMode()
{
    m_engine.setClockMode(!m_engine.clockMode());
    notifyRemote();
}

void ConsoleController::toggleShowLock()
{
    m_engine.setShowLocked(!m_engine.showLocked());
}

void ConsoleController::addBlankCue()
{
    m_engine.addCue();
}

void ConsoleController::addCueFromTemplate(int index)
{
    const QList<CueTemplate> templates = m_engine.templates();
    if (index >= 0 && index < templates.size())
        m_engine.addCue(templates[index]);
}

void ConsoleController::startDoors(int hour, int minute)
{
    m_engine.startDoorsAt(QTime(hour, minute));
}

void ConsoleController::cancelDoors()
{
    m_engine.cancelDoors();
}

void ConsoleController::setTriggerSender(TriggerSend send)
{
    m_sendTrigger = send;
    m_draft.setTriggerSender(std::move(send));
}

void ConsoleController::sendShowTriggersWith(TriggerList *list)
{
    if (!list)
        return;
    list->setSender([this](const CueTrigger &trigger, auto done) {
        if (!m_sendTrigger)
            return;
        const QList<Cue> &cues = m_engine.session().cues;
        const int row = m_engine.activeCueIndex().value_or(m_engine.selectedCueIndex().value_or(0));
        TriggerContext context;
        if (row >= 0 && row < cues.size())
            context = {cues[row].name, cues[row].speaker, row + 1, qint64(cues[row].duration)};
        m_sendTrigger(trigger, context, std::move(done));
    });
}

bool ConsoleController::editCue(int index)
{
    const QList<Cue> &cues = m_engine.session().cues;
    if (index < 0 || index >= cues.size())
        return false;
    m_draft.load(cues[index], m_clock);
    m_draft.setRow(index);
    return true;
}

void ConsoleController::saveCueDraft()
{
    m_engine.updateCue(m_draft.result());
}

void ConsoleController::proposeDoorsTime()
{
    QDateTime at;
    if (const std::optional<QDateTime> target = m_engine.doorsTarget())
        at = target->toTimeZone(m_clock.timeZone());
    else {
        // The next quarter of an hour at least five minutes away: a usual doors time.
        const QDateTime now = m_clock.now().toTimeZone(m_clock.timeZone()).addSecs(5 * 60);
        const int minutes = now.time().hour() * 60 + now.time().minute();
        at = now.addSecs(qint64((15 - minutes % 15) % 15) * 60);
    }
    setDoorsTime(at.time().hour(), at.time().minute());
}

void ConsoleController::setDoorsTime(int hour, int minute)
{
    m_doorsHour = std::clamp(hour, 0, 23);
    m_doorsMinute = std::clamp(minute, 0, 59);
    emit doorsProposalChanged();
}
