#pragma once

#include "appflowstate.h"
#include "clock.h"
#include "diskworker.h"
#include "livestate.h"
#include "sessionstore.h"
#include "timerengine.h"
#include "toastcenter.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

// Keeps the recovery file of the open show and resumes a show from it after an interruption.
//
// While a show is open (the console is shown) every change of its live state (the cue on air
// and its clock, the log, message, blackout, freeze, clock mode, doors, the output windows) is
// written to the file atomically, off the main thread. Closing the show normally removes the
// file, so a file found at launch means the program was interrupted: a crash, a kill, a power
// cut. The project document itself is never touched here.
class ShowRecovery : public QObject
{
    Q_OBJECT

public:
    // Reads where the output windows are now.
    using OutputReader = std::function<QList<LiveState::Output>()>;

    ShowRecovery(TimerEngine &engine, const SessionStore &store, AppFlowState &flow,
                 ToastCenter &toasts, Clock &clock, const QString &filePath = defaultPath(),
                 QObject *parent = nullptr);
    ~ShowRecovery() override;

    // A write the disk refused is tried again this long after, while the show is open.
    static constexpr qint64 retryDelayMs = 2'000;

    // Beside the user's data: <data location>/recovery.json.
    static QString defaultPath();
    QString filePath() const { return m_path; }

    // At launch, before any other project opens. With a recovery file, opens its show, resumes
    // it where the clock says it is now and says so with an info toast; true then. A file that
    // cannot be read, or whose project is gone, is set aside (renamed) with an error toast.
    // `requestedProject`: a project named on the command line; another show than the
    // recovered one wins, and the recovery file is set aside.
    bool resumeIfInterrupted(const std::optional<QString> &requestedProject = std::nullopt);
    // The output windows to put back, as the resumed show had them; empty otherwise.
    QList<LiveState::Output> outputsToReopen() const { return m_outputsToReopen; }

    // The show on the console was opened from the project file at `path` (the command line's):
    // until the library holds a file of it, a relaunch with no file named finds it there.
    void showOpenedFrom(const QString &path);

    void setOutputReader(OutputReader reader) { m_readOutputs = std::move(reader); }
    // An output window was shown, hidden or moved.
    void outputsMoved() { scheduleCapture(); }

    // The show closes normally (back to the library, or the program quits): the file goes.
    // Waits for the writes under way, so nothing rewrites it after.
    void showClosed();
    // Blocks until the writes posted so far are on disk.
    void waitForWrites() { m_disk.waitForDone(); }

private slots:
    void scheduleCapture();

private:
    void capture();
    void written(const QString &error);
    void setAside(const QString &reason);
    // Whether the project file at `path` holds the show of `state`: the same id, or no id of its
    // own and the file the show was opened from.
    bool sameShow(const QString &path, const LiveState &state) const;

    TimerEngine &m_engine;
    const SessionStore &m_store;
    AppFlowState &m_flow;
    ToastCenter &m_toasts;
    QString m_path;
    OutputReader m_readOutputs;
    DiskWorker m_disk;
    std::unique_ptr<ClockTimer> m_retry;
    std::optional<LiveState> m_written; // what the file holds, as far as this program knows
    bool m_captureQueued = false;
    bool m_writeFailing = false; // told once, until a write succeeds again
    QList<LiveState::Output> m_outputsToReopen;
    QString m_projectFile; // see LiveState::projectFile
};
