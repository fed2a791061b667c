#pragma once

#include "alertplayer.h"
#include "clock.h"
#include "cue.h"
#include "cuelogentry.h"
#include "cuetemplate.h"
#include "livestate.h"
#include "presetmessage.h"
#include "showschedule.h"
#include "timersession.h"
#include "timerstatesnapshot.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

// The one engine of the application: it owns the open show, runs the cue clock, fires the
// threshold alerts, follows on to the next cue, and publishes its state to the views (as
// properties) and to remote control (through the state hook).
//
// Everything runs on the thread that owns it, the main thread. Operations never report
// errors: an index out of range, an unknown id, an empty undo stack or a locked show makes
// them do nothing.
//
// An operation emits its signals, and calls the state hook, only once it is over, each signal
// once, with every derived value (the active index, the next cue, the day's durations)
// recomputed: an observer, whatever it reads inside its handler, never sees a state half
// changed. An observer may call operations from its handler; each runs and notifies in turn.
//
// Time comes from the injected clock. The elapsed time of a cue is measured on the monotonic
// clock, so a step of the wall clock (an NTP correction, the operator setting the time) never
// makes a duration cue jump; hard-out and doors targets are times of day, so they follow the
// wall clock like the clock on the wall of the venue.
class TimerEngine : public QObject
{
    Q_OBJECT

    Q_PROPERTY(TimerSession session READ session NOTIFY sessionChanged FINAL)
    Q_PROPERTY(QString sessionName READ sessionName NOTIFY sessionChanged FINAL)
    // -1 when nothing is selected
    Q_PROPERTY(int selectedCueIndex READ selectedCueRow WRITE setSelectedCueRow
                   NOTIFY selectedCueIndexChanged FINAL)
    // Canonical id text, empty when no cue is active.
    Q_PROPERTY(QString activeCueID READ activeCueIDText NOTIFY activeCueChanged FINAL)
    Q_PROPERTY(int activeCueIndex READ activeCueRow NOTIFY activeCueChanged FINAL) // -1: none
    Q_PROPERTY(QVariant activeCue READ activeCueVariant NOTIFY activeCueChanged FINAL)
    Q_PROPERTY(QVariant nextCue READ nextCueVariant NOTIFY activeCueChanged FINAL)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY runStateChanged FINAL)
    Q_PROPERTY(bool isPaused READ isPaused NOTIFY runStateChanged FINAL)
    // Seconds; these change together on every tick.
    Q_PROPERTY(double remaining READ remaining NOTIFY clockChanged FINAL)
    Q_PROPERTY(double elapsed READ elapsed NOTIFY clockChanged FINAL)
    Q_PROPERTY(double plannedDuration READ plannedDuration NOTIFY clockChanged FINAL)
    Q_PROPERTY(double totalOvertime READ totalOvertime NOTIFY clockChanged FINAL)
    Q_PROPERTY(double remainingDayDuration READ remainingDayDuration NOTIFY clockChanged FINAL)
    Q_PROPERTY(QDateTime projectedDayEnd READ projectedDayEnd NOTIFY clockChanged FINAL)
    Q_PROPERTY(QVariant currentMessage READ currentMessageVariant NOTIFY messageChanged FINAL)
    Q_PROPERTY(bool messageUrgent READ messageUrgent NOTIFY messageChanged FINAL)
    Q_PROPERTY(QList<PresetMessage> presetMessages READ presetMessages
                   NOTIFY presetMessagesChanged FINAL)
    Q_PROPERTY(bool blackout READ blackout WRITE setBlackout NOTIFY blackoutChanged FINAL)
    Q_PROPERTY(bool freeze READ freeze NOTIFY freezeChanged FINAL)
    Q_PROPERTY(double frozenRemaining READ frozenRemaining NOTIFY freezeChanged FINAL)
    Q_PROPERTY(bool clockMode READ clockMode WRITE setClockMode NOTIFY clockModeChanged FINAL)
    Q_PROPERTY(bool blinkActive READ blinkActive NOTIFY blinkActiveChanged FINAL)
    Q_PROPERTY(QVariant doorsTarget READ doorsTargetVariant NOTIFY doorsChanged FINAL)
    Q_PROPERTY(bool doorsActive READ doorsActive NOTIFY doorsChanged FINAL)
    Q_PROPERTY(double doorsRemaining READ doorsRemaining NOTIFY doorsChanged FINAL)
    Q_PROPERTY(bool showLocked READ showLocked WRITE setShowLocked NOTIFY showLockedChanged FINAL)
    Q_PROPERTY(bool soundsEnabled READ soundsEnabled WRITE setSoundsEnabled
                   NOTIFY soundsEnabledChanged FINAL)
    Q_PROPERTY(QList<CueLogEntry> completedCueLog READ completedCueLog
                   NOTIFY completedCueLogChanged FINAL)
    Q_PROPERTY(QList<CueTemplate> templates READ templates NOTIFY templatesChanged FINAL)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoStateChanged FINAL)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY undoStateChanged FINAL)
    // The show mirrors a main machine: the operator's and remote control's commands are refused.
    Q_PROPERTY(bool following READ isFollowing NOTIFY followingChanged FINAL)

public:
    using StateHook = std::function<void(const TimerStateSnapshot &)>;

    // The engine keeps references to both; they must outlive it.
    TimerEngine(Clock &clock, AlertPlayer &sound, QObject *parent = nullptr);
    ~TimerEngine() override;

    // The countdown text of a number of seconds: "05:07" under an hour, "1:02:03" from an hour
    // on, whole seconds rounded down in magnitude; "-" in front of a negative value only with
    // `showSign` (so -0.4 reads "-00:00"). A value that is not a finite number reads "--:--".
    static QString format(double seconds, bool showSign);

    // ---- State ----------------------------------------------------------------------------
    const TimerSession &session() const { return m_session; }
    QString sessionName() const { return m_session.name; }
    std::optional<int> selectedCueIndex() const { return m_selectedCueIndex; }
    void setSelectedCueIndex(std::optional<int> index);
    std::optional<QUuid> activeCueID() const { return m_activeCueID; }
    std::optional<int> activeCueIndex() const { return m_activeCueIndex; }
    std::optional<Cue> activeCue() const;
    std::optional<Cue> nextCue() const;
    bool isRunning() const { return m_isRunning; }
    bool isPaused() const { return m_isPaused; }
    double remaining() const { return m_remaining; }  // seconds, negative in overtime
    double elapsed() const { return m_elapsed; }      // seconds, pauses excluded
    double plannedDuration() const { return m_plannedDuration; }
    // The overtime of the cues left, and that of the cue running now.
    double totalOvertime() const
    {
        return m_loggedOvertime + (m_isRunning && m_remaining < 0 ? -m_remaining : 0.0);
    }
    // What the day has left to play: the running cue's remaining time (none in overtime) and the
    // durations of the cues after the base cue (the active one, else the selected one; every cue
    // without either). "Fin journée" is now plus this.
    double remainingDayDuration() const;
    // The second part alone: the durations of the cues after the base cue.
    double laterCuesDuration() const { return m_durationsAfterBase; }
    // Where the show stands for its timetable: the cue running or paused and when it was
    // started (or last reset), else the last cue left and when.
    ShowPosition showPosition() const;
    // The show's timetable, kept until the show is edited; none while it has no planned start.
    const std::optional<ShowPlan> &schedulePlan() const;
    // The show against its timetable now; none while it has no planned start.
    std::optional<ScheduleStatus> scheduleStatus() const;
    // Its offset alone (seconds, positive when late), without walking the cues to come.
    std::optional<double> scheduleOffset() const;
    QDateTime projectedDayEnd() const;
    std::optional<QString> currentMessage() const { return m_currentMessage; }
    bool messageUrgent() const { return m_messageUrgent; }
    QList<PresetMessage> presetMessages() const { return m_presetMessages; }
    bool blackout() const { return m_blackout; }
    bool freeze() const { return m_freeze; }
    double frozenRemaining() const { return m_frozenRemaining; }
    bool clockMode() const { return m_clockMode; }
    bool blinkActive() const { return m_blinkActive; }
    // Seconds until the blink running now ends; 0 when none runs.
    double blinkSecondsLeft() const;
    std::optional<QDateTime> doorsTarget() const;
    bool doorsActive() const { return m_doorsTargetMs.has_value(); }
    double doorsRemaining() const { return m_doorsRemaining; }
    bool showLocked() const { return m_showLocked; }
    bool soundsEnabled() const { return m_soundsEnabled; }
    QList<CueLogEntry> completedCueLog() const { return m_completedCueLog; }
    QList<CueTemplate> templates() const { return m_templates; }
    bool canUndo() const { return !m_undoStack.isEmpty(); }
    bool canRedo() const { return !m_redoStack.isEmpty(); }
    // Whether the 0.1 s ticker runs (started by start and startDoors, cancelled by stop).
    bool isTickerRunning() const { return m_tickerOn; }

    // Flags the console and remote control set directly; they show on the next redraw or
    // snapshot and do not call the state hook.
    void setBlackout(bool on);
    void setClockMode(bool on);
    void setShowLocked(bool on);
    void setSoundsEnabled(bool on);

    // ---- State hook -----------------------------------------------------------------------
    // Receives a fresh snapshot after each operation that changes displayable state and on
    // the ticks that move the clock.
    void setOnStateChange(StateHook hook) { m_onStateChange = std::move(hook); }
    const StateHook &onStateChange() const { return m_onStateChange; }
    TimerStateSnapshot snapshot() const;
    // The cue clock read at this instant rather than at the last tick: what a tick now would
    // publish. While the clock stands (stopped, paused, no cue) it is the published value.
    struct ClockReading {
        double remaining = 0; // seconds, negative in overtime; the live value even while frozen
        double elapsed = 0;   // seconds
    };
    ClockReading readClock() const;

    // ---- Transport --------------------------------------------------------------------------
    // Without an index: the selected cue, else the active one, else the first.
    void start(std::optional<int> cueIndex = std::nullopt);
    Q_INVOKABLE void pause(); // toggles pause and resume
    Q_INVOKABLE void stop();
    Q_INVOKABLE void reset();
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();
    Q_INVOKABLE void adjust(double seconds);
    void loadSession(const TimerSession &session);
    // The show is left (the console goes back to the library): the clock stops as with stop(),
    // and nothing stays on the displays nor in remote control's state: no active or selected
    // cue, no message, blackout, freeze, clock mode, blink or doors. The show itself, its log
    // and its undo steps are kept.
    void returnToIdle();
    // Takes the project data of `edited` (name, client, venue, operator, event date, notes, the
    // show's planned start) and its show-wide triggers (an undo step when they change): the
    // running order and the clock are left as they are.
    void updateProjectInfo(const TimerSession &edited);
    // The spreadsheet the running order follows from now on, or none. Not an undo step: undoing
    // an import brings back the cues, the link to the file stays as last chosen.
    void setLinkedSpreadsheet(const std::optional<LinkedSpreadsheet> &link);

    // What the recovery file keeps of the show now (its outputs aside).
    LiveState liveState() const;
    // Puts the loaded show back where `state` left it: a running cue has run on in wall-clock
    // time since, a paused one stands at its value; the thresholds already passed stay silent.
    void resumeLiveState(const LiveState &state);

    // ---- Following a main machine ---------------------------------------------------------------
    // While following, every operation from outside (the console, OSC, the web, a project
    // opened) does nothing: the show is the main's, put here by mirror(). The engine's own
    // work goes on (the clock, alerts, auto-follow, doors zero), so that a follower that loses
    // its main keeps the show running by itself.
    bool isFollowing() const { return m_following; }
    void setFollowing(bool on);
    // Takes the main's show (when given) and its live state at once, in one change: observers
    // never see the show loaded but not yet resumed. A blink the main shows for `blinkSeconds`
    // more is started when none runs; one the main no longer shows (0) ends.
    void mirror(const TimerSession *show, const LiveState &state, double blinkSeconds);

    // Calls the state hook with a fresh snapshot. Operations call it themselves; the flags set
    // directly (blackout, clock mode) do not, so whoever sets them tells remote control here.
    void notifyStateChange();

    // ---- Show controls ----------------------------------------------------------------------
    void sendMessage(const std::optional<QString> &text, bool urgent);
    Q_INVOKABLE void toggleFreeze();
    Q_INVOKABLE void triggerBlink(double duration);
    static constexpr double blinkSeconds = 3.0; // a blink asked by the operator or a remote
    void startDoors(const QDateTime &at);
    // The doors countdown to that time of day in the clock's time zone (today's, or tomorrow's
    // once it is past).
    void startDoorsAt(QTime timeOfDay);
    Q_INVOKABLE void cancelDoors();

    // ---- Cue list editing ---------------------------------------------------------------------
    void addCue(); // a freshly made cue
    void addCue(const Cue &cue);
    void addCue(const CueTemplate &from);
    void updateCue(const Cue &cue);
    Q_INVOKABLE void moveCue(int from, int offset); // exchanges the cues at from and from + offset
    Q_INVOKABLE void deleteCue(int at);
    // The whole running order at once (an import, a linked spreadsheet's update): one undo
    // step, refused while the show is locked. The active cue stays active if its id is still
    // there, its clock untouched (a changed length applies from its next start); a running cue
    // that is gone is logged and the clock stops, as when it is deleted.
    void replaceCues(const QList<Cue> &cues);
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();

    // One step of the clock; the ticker calls it ten times a second, tests call it directly.
    void tick();

signals:
    void sessionChanged();
    void selectedCueIndexChanged();
    void activeCueChanged();
    void runStateChanged();
    void clockChanged();
    void messageChanged();
    void presetMessagesChanged();
    void blackoutChanged();
    void freezeChanged();
    void clockModeChanged();
    void blinkActiveChanged();
    void doorsChanged();
    void showLockedChanged();
    void soundsEnabledChanged();
    void completedCueLogChanged();
    void templatesChanged();
    void undoStateChanged();
    void followingChanged();
    // An operation has ended and its signals are about to be emitted: the state is whole, so
    // remote viewers can be told the whole change at once, before the views react to it.
    // `sessionChanged` when the show itself (its name or its cues) is among the changes.
    void aboutToNotify(bool sessionChanged);
    // Something happened to a cue that its triggers answer: it started, crossed a threshold or
    // zero, or was left. Emitted at once, within the operation or the tick, when the rest of
    // the state may not be whole yet: a receiver reads only what it is given and the show's
    // triggers. `cueIndex` is the cue's row, or -1 for a cue deleted as it was left;
    // `remaining` its remaining time then.
    void cueMoment(TriggerMoment moment, const Cue &cue, int cueIndex, double remaining);

private:
    class Batch;
    friend class Batch;
    using Signal = void (TimerEngine::*)();
    // Records a signal to emit when the outermost running operation ends.
    void notify(Signal signal);
    // Emits what the operations recorded, then calls the state hook if one asked for it.
    void flushChanges();
    // Recomputes the cached active index and the day's remaining durations; true if either moved.
    bool recomputeDerived();

    // QML-facing forms of the optional values.
    int selectedCueRow() const { return m_selectedCueIndex.value_or(-1); }
    void setSelectedCueRow(int row);
    QString activeCueIDText() const;
    int activeCueRow() const { return m_activeCueIndex.value_or(-1); }
    QVariant activeCueVariant() const;
    QVariant nextCueVariant() const;
    QVariant currentMessageVariant() const;
    QVariant doorsTargetVariant() const;

    const Cue *activeCuePtr() const;
    const Cue *nextCuePtr() const;
    std::optional<int> baseIndex() const; // the active cue, else the selected one

    // Clock.
    // `monotonicUs` from the clock's monotonic time, `wallMs` from its wall time.
    void loadClock(const Cue &cue, const QDateTime &now, qint64 monotonicUs);
    void refreshClock(qint64 monotonicUs, qint64 wallMs);
    void liveClock(qint64 monotonicUs, qint64 wallMs, double &elapsed, double &remaining) const;
    void fireAlerts(const Cue &cue);
    void clearAlertLatches();
    void setRunState(bool running, bool paused);
    void setFlag(bool &flag, bool on, void (TimerEngine::*changed)());
    void runTick();

    // Ticker.
    void startTicker();
    void stopTicker();
    void armTicker();

    // Transport internals.
    void logCue(const Cue &cue, std::optional<int> writeBackIndex);
    void logActiveCue();
    void halt(); // stops the clock and the ticker and calls the hook, logging nothing
    // No active cue, a clock at zero, no show control on; records the signals.
    void clearLiveState();
    void postJob(std::function<void()> job);
    // Whether a command from outside is refused now: while following, unless it is the
    // engine's own work (inside an operation, or a job it posted).
    bool refusesCommands() const { return m_following && m_batchDepth == 0 && m_ownJobs == 0; }

    // Editing internals.
    void pushUndo();
    void cuesEdited(); // after every change of the list: caches, notifications, updatedAt
    void clampIndices(const QList<Cue> &previousCues);
    void clampSelection();
    void leaveRemovedActiveCue(const Cue &removed);
    // What an undo step puts back: the running order and the show-wide triggers.
    struct EditStep {
        QList<Cue> cues;
        QList<CueTrigger> showTriggers;
    };
    void restoreFrom(QList<EditStep> &from, QList<EditStep> &to);
    // recomputeDerived, then records the active cue and the clock as changed
    void refreshDerived();
    void setActiveCueID(std::optional<QUuid> id);

    Clock &m_clock;
    AlertPlayer &m_sound;
    std::unique_ptr<ClockTimer> m_ticker;
    std::unique_ptr<ClockTimer> m_blinkTimer;
    bool m_tickerOn = false;
    qint64 m_tickDueUs = 0; // monotonic deadline of the armed tick
    StateHook m_onStateChange;

    TimerSession m_session;
    std::optional<int> m_selectedCueIndex;
    std::optional<QUuid> m_activeCueID;
    std::optional<int> m_activeCueIndex; // where m_activeCueID is in the list; kept current
    double m_durationsAfterBase = 0;     // sum of the cue durations after the base cue
    bool m_isRunning = false;
    bool m_isPaused = false;
    double m_remaining = 0;
    double m_elapsed = 0;
    std::optional<QString> m_currentMessage;
    bool m_messageUrgent = false;
    QList<PresetMessage> m_presetMessages;
    bool m_blackout = false;
    bool m_freeze = false;
    double m_frozenRemaining = 0;
    bool m_clockMode = false;
    bool m_blinkActive = false;
    qint64 m_blinkEndsUs = 0; // monotonic
    std::optional<qint64> m_doorsTargetMs; // wall clock, ms since the epoch
    double m_doorsRemaining = 0;
    bool m_showLocked = false;
    QList<EditStep> m_undoStack; // newest last, at most 50
    QList<EditStep> m_redoStack;
    bool m_soundsEnabled = true;
    bool m_firedWarning = false;
    bool m_firedDanger = false;
    bool m_firedZero = false;
    TriggerWatch m_triggerWatch;
    QList<CueLogEntry> m_completedCueLog;
    QList<CueTemplate> m_templates;

    double m_plannedDuration = 0;
    std::optional<qint64> m_cueStartUs;     // monotonic, µs
    qint64 m_pausedAccumUs = 0;             // monotonic length of the pauses so far, µs
    std::optional<qint64> m_pauseStartedUs; // monotonic, µs
    std::optional<qint64> m_hardOutTargetMs; // wall clock, ms since the epoch
    double m_loggedOvertime = 0;
    QDateTime m_cueStartedAt;               // wall clock: when the active cue was last started or reset
    std::optional<QUuid> m_lastLeftCueID;   // the cue last left, and when
    QDateTime m_lastLeftAt;
    // The timetable as last worked out, for the time zone it was worked out in; stale once the
    // show is edited.
    mutable std::optional<ShowPlan> m_plan;
    mutable QByteArray m_planZone;
    mutable bool m_planStale = true;
    int m_batchDepth = 0;      // operations running, nested
    int m_ownJobs = 0;         // jobs the engine posted, running
    bool m_following = false;
    quint32 m_pendingSignals = 0; // one bit per signal, in the order they are emitted
    bool m_pendingHook = false;

    // Changes each time the clock is loaded or stopped, so that a follow-on job scheduled for
    // one run of a cue does nothing once that run is over.
    quint64 m_clockRun = 0;
};

// Holds back the signals of an operation until the outermost running operation ends.
class TimerEngine::Batch
{
public:
    explicit Batch(TimerEngine &engine) : m_engine(engine) { ++m_engine.m_batchDepth; }
    ~Batch()
    {
        if (--m_engine.m_batchDepth == 0)
            m_engine.flushChanges();
    }
    Batch(const Batch &) = delete;
    Batch &operator=(const Batch &) = delete;

private:
    TimerEngine &m_engine;
};
