#pragma once

#include "appflowstate.h"
#include "clock.h"
#include "cuedraft.h"
#include "diskworker.h"
#include "linkedsheetmonitor.h"
#include "sessionstore.h"
#include "spreadsheetimport.h"
#include "timerengine.h"
#include "toastcenter.h"

#include <QObject>
#include <QQmlEngine>

#include <functional>
#include <memory>

// The console's verbs: each operator action is one call here, which runs the engine operation,
// the save or the export and reports the outcome as a toast. While the console is shown the
// project is saved silently within a second of each change of the show.
//
// Saves are encoded and written on a thread of their own (a show of 100,000 cues takes
// seconds to write): the clock and the windows never wait on the disk.
class ConsoleController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application with its engine, store and toasts")

    // The working copy the cue editor edits.
    Q_PROPERTY(CueDraft *cueDraft READ cueDraft CONSTANT FINAL)
    // The spreadsheet the open show follows, and its banner when the file changes.
    Q_PROPERTY(LinkedSheetMonitor *linkedSheet READ linkedSheet CONSTANT FINAL)
    // The time the doors popover proposes: the running countdown's target, else the next
    // quarter of an hour.
    Q_PROPERTY(int doorsHour READ doorsHour NOTIFY doorsProposalChanged FINAL)
    Q_PROPERTY(int doorsMinute READ doorsMinute NOTIFY doorsProposalChanged FINAL)

public:
    // From the first change of the show to its save; later changes do not push it back.
    static constexpr qint64 autosaveDelayMs = 1'000;

    // Shows an exported file to the operator (in the file manager).
    using Reveal = std::function<void(const QString &path)>;

    ConsoleController(TimerEngine &engine, const SessionStore &store, AppFlowState &flow,
                      ToastCenter &toasts, Clock &clock, Reveal reveal,
                      QObject *parent = nullptr);
    ~ConsoleController() override;

    CueDraft *cueDraft() { return &m_draft; }
    LinkedSheetMonitor *linkedSheet() { return &m_linkedSheet; }
    int doorsHour() const { return m_doorsHour; }
    int doorsMinute() const { return m_doorsMinute; }

    // How "Envoyer maintenant" sends a trigger, for the cue editor and the project sheet.
    void setTriggerSender(TriggerSend send);
    // The project sheet's show-wide triggers sent by hand as they would fire for the cue on
    // air, else the selected one, else the first (its duration as {remaining}).
    Q_INVOKABLE void sendShowTriggersWith(TriggerList *list);

    // Loads the cue at `index` into the editor's working copy; false for no such cue.
    Q_INVOKABLE bool editCue(int index);
    // The editor's "Enregistrer": the edited cue goes back into the show.
    Q_INVOKABLE void saveCueDraft();
    // Fills the doors popover's time as it opens; the operator's wheels then set it.
    Q_INVOKABLE void proposeDoorsTime();
    Q_INVOKABLE void setDoorsTime(int hour, int minute);

    // The project sheet's "Enregistrer": the project data of `session` (a TimerSession) goes into
    // the open show, which is saved: "Fiche projet mise à jour", or "Échec de sauvegarde : …".
    Q_INVOKABLE void saveProjectInfo(const QVariant &session);

    // Saves with a toast once written: "Projet sauvegardé", or "Échec de sauvegarde : " and
    // the reason.
    Q_INVOKABLE void saveProject();
    // Saves the open show before the program quits, waiting for the write. False on failure.
    bool saveBeforeQuit();
    // Whether a save is being written.
    bool isSaving() const { return m_disk.isBusy(); }
    // Saves (with its toast), stops the engine, leaves it idle (no cue, message, blackout,
    // freeze… on the outputs) and goes back to the project library.
    Q_INVOKABLE void backToProjects();
    Q_INVOKABLE void exportReport();
    Q_INVOKABLE void exportRundownPDF();
    // Where "Exporter le conducteur (.xlsx / .csv)" proposes to write: the reports folder,
    // "Conducteur_<show>_<date>.xlsx".
    Q_INVOKABLE QUrl rundownSheetProposal() const;
    // Writes the running order to `file`: CSV when it ends in ".csv", a workbook when it ends
    // in ".xlsx", else as the dialog's filter chose (`csv`), that ending added. "Conducteur
    // exporté", or "Erreur export : " and why.
    Q_INVOKABLE void exportRundownSheet(const QUrl &file, bool csv);
    // The previewed cues of a spreadsheet added after the show's, or in place of them, in one
    // undo step; refused while the show is locked.
    Q_INVOKABLE void addCuesFromSpreadsheet(SpreadsheetImport *importer, bool replace);

    // Sends the custom message trimmed of blanks; false (nothing sent, the field kept) when
    // nothing is left of it.
    Q_INVOKABLE bool sendCustom(const QString &text, bool urgent);
    Q_INVOKABLE void sendPreset(int index);
    Q_INVOKABLE void clearMessage();

    // Play/pause as the console's big button does it: pause or resume while a cue runs, else
    // start the selected cue.
    Q_INVOKABLE void playPause();
    Q_INVOKABLE void startCue(int index);
    Q_INVOKABLE void selectCue(int index);
    Q_INVOKABLE void toggleBlackout();
    Q_INVOKABLE void toggleClockMode();
    Q_INVOKABLE void toggleShowLock();

    // The cue list's add menu: a blank cue, or one from the template at `index`.
    Q_INVOKABLE void addBlankCue();
    Q_INVOKABLE void addCueFromTemplate(int index);

    // The doors countdown to the next `hour`:`minute` of the user's day.
    Q_INVOKABLE void startDoors(int hour, int minute);
    // "Lancer" of the doors popover: the countdown to the time it shows.
    Q_INVOKABLE void launchDoors() { startDoors(m_doorsHour, m_doorsMinute); }
    Q_INVOKABLE void cancelDoors();

signals:
    void doorsProposalChanged();

private:
    void save(const QString &success);
    void autosave();
    void saveInBackground(DiskWorker::Done done);
    void showChanged();
    void notifyRemote(); // a fresh snapshot to the state hook, for remote control
    void followFlow();

    TimerEngine &m_engine;
    const SessionStore &m_store;
    AppFlowState &m_flow;
    ToastCenter &m_toasts;
    Clock &m_clock;
    Reveal m_reveal;
    std::unique_ptr<ClockTimer> m_autosave;
    DiskWorker m_disk;
    bool m_autosaveAgain = false; // a change came while a save was being written
    bool m_autosaveFailing = false; // told once, until a save succeeds again
    CueDraft m_draft;
    TriggerSend m_sendTrigger;
    LinkedSheetMonitor m_linkedSheet;
    int m_doorsHour = 0;
    int m_doorsMinute = 0;
};
