#pragma once

#include "cue.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <algorithm>
#include <deque>
#include <optional>

// What the engine's state must be after each operation, computed the plain way: the show as a
// list, the active cue as an id, the clock as instants on the monotonic clock. Only duration
// cues have their clock modelled; a hard-out cue's end is a time of day.
struct ReferenceShow {
    // A job the engine posts to its event loop: starting the first cue when the doors open,
    // or following on from the run of a cue that reached zero.
    struct Job {
        bool doorsOpen = false;
        quint64 run = 0;
    };

    QList<Cue> cues;
    std::optional<QUuid> active;
    std::optional<int> selected;
    bool running = false;
    bool paused = false;
    QStringList log; // names of the completed cues
    QList<QList<Cue>> undo, redo;
    bool locked = false, blackout = false, freeze = false, clockMode = false, blink = false;
    std::optional<QString> message;
    bool urgent = false;
    std::optional<qint64> doorsTargetMs;
    std::deque<Job> jobs;

    // The clock of the active cue.
    quint64 run = 0; // changes each time a clock is loaded or stopped
    double planned = 0;
    bool hardOut = false;
    qint64 startUs = 0, pausedAccumUs = 0, pauseStartedUs = 0;

    std::optional<int> activeIndex() const
    {
        if (!active)
            return std::nullopt;
        for (int i = 0; i < cues.size(); ++i)
            if (cues[i].id == *active)
                return i;
        return std::nullopt;
    }
    std::optional<int> base() const { return activeIndex() ? activeIndex() : selected; }
    const Cue *nextCue() const
    {
        const std::optional<int> b = base();
        return b && *b + 1 >= 0 && *b + 1 < cues.size() ? &cues[*b + 1] : nullptr;
    }
    double durationsAfterBase() const
    {
        double sum = 0;
        const std::optional<int> b = base();
        for (qsizetype i = b ? std::max(*b + 1, 0) : 0; i < cues.size(); ++i)
            sum += cues[i].duration;
        return sum;
    }
    double elapsedAt(qint64 nowUs) const
    {
        const qint64 stoppedAt = paused ? pauseStartedUs : nowUs;
        return double(stoppedAt - startUs - pausedAccumUs) / 1e6;
    }

    // ---- Transport ----
    void start(int index, qint64 nowUs)
    {
        if (index < 0 || index >= cues.size())
            return;
        if (running && activeIndex())
            log << cues[*activeIndex()].name;
        active = cues[index].id;
        selected = index;
        loadClock(cues[index], nowUs);
        running = true;
        paused = false;
    }
    void startDefault(qint64 nowUs)
    {
        start(selected ? *selected : activeIndex() ? *activeIndex() : 0, nowUs);
    }
    void loadClock(const Cue &cue, qint64 nowUs)
    {
        hardOut = cue.mode == TimerMode::HardOut;
        planned = cue.duration;
        startUs = nowUs;
        pausedAccumUs = 0;
        ++run;
    }
    void pause(qint64 nowUs)
    {
        if (!running)
            return;
        if (!paused) {
            pauseStartedUs = nowUs;
        } else {
            pausedAccumUs += nowUs - pauseStartedUs;
        }
        paused = !paused;
    }
    void halt()
    {
        ++run;
        running = paused = false;
    }
    void stop()
    {
        if (running && activeIndex())
            log << cues[*activeIndex()].name;
        halt();
    }
    void reset(qint64 nowUs)
    {
        if (!activeIndex())
            return;
        loadClock(cues[*activeIndex()], nowUs);
        paused = false;
    }
    void next(qint64 nowUs)
    {
        const std::optional<int> b = base();
        if (!b)
            start(0, nowUs);
        else if (*b + 1 < cues.size())
            start(*b + 1, nowUs);
        else
            stop();
    }
    void previous(qint64 nowUs)
    {
        const std::optional<int> b = base();
        if (b && *b >= 1)
            start(*b - 1, nowUs);
    }
    void adjust(double seconds)
    {
        if (activeIndex() && !hardOut)
            planned = std::max(planned + seconds, 1.0);
    }
    void load(const QList<Cue> &show)
    {
        stop();
        cues = show;
        clearLiveState();
        selected = show.isEmpty() ? std::nullopt : std::optional(0);
        log.clear();
        undo.clear();
        redo.clear();
        locked = false;
    }
    // The show is left for the library: stopped, nothing active, selected or shown; its cues,
    // log, undo steps and lock stay.
    void returnToIdle()
    {
        stop();
        clearLiveState();
        selected.reset();
    }
    void clearLiveState()
    {
        active.reset();
        message.reset();
        urgent = blackout = freeze = clockMode = blink = false;
        doorsTargetMs.reset();
        planned = 0;
    }

    // ---- Editing ----
    void pushUndo()
    {
        undo.append(cues);
        if (undo.size() > 50)
            undo.removeFirst();
        redo.clear();
    }
    void clampSelection()
    {
        if (selected && *selected >= cues.size())
            selected = cues.isEmpty() ? std::nullopt : std::optional(int(cues.size()) - 1);
    }
    void leaveRemovedActive(const QString &name)
    {
        active.reset();
        if (running)
            log << name;
        halt();
    }
    void add(const Cue &cue)
    {
        if (locked)
            return;
        pushUndo();
        cues.append(cue);
    }
    void update(const Cue &cue)
    {
        for (int i = 0; i < cues.size(); ++i) {
            if (cues[i].id == cue.id) {
                pushUndo();
                cues[i] = cue;
                return;
            }
        }
    }
    void move(int from, int offset)
    {
        const qint64 to = qint64(from) + offset;
        if (locked || offset == 0 || from < 0 || from >= cues.size() || to < 0 || to >= cues.size())
            return;
        pushUndo();
        cues.swapItemsAt(from, to);
    }
    void remove(int at)
    {
        if (locked || at < 0 || at >= cues.size())
            return;
        pushUndo();
        const bool wasActive = activeIndex() == at;
        const Cue removed = cues.takeAt(at);
        clampSelection();
        if (wasActive)
            leaveRemovedActive(removed.name);
    }
    void restore(QList<QList<Cue>> &from, QList<QList<Cue>> &to)
    {
        if (from.isEmpty())
            return;
        const QList<Cue> previous = cues;
        to.append(previous);
        cues = from.takeLast();
        clampSelection();
        if (running && active && !activeIndex()) {
            QString name = Cue().name;
            for (const Cue &c : previous)
                if (c.id == *active)
                    name = c.name;
            leaveRemovedActive(name);
        }
    }

    // ---- Clock ----
    // One tick at `nowUs` and `wallMs`: the doors and the follow-on jobs it posts.
    void tick(qint64 nowUs, qint64 wallMs)
    {
        if (doorsTargetMs && *doorsTargetMs - wallMs <= 0) {
            doorsTargetMs.reset();
            if (!cues.isEmpty())
                jobs.push_back({true, 0});
        }
        const std::optional<int> index = activeIndex();
        if (!running || paused || !index || hardOut)
            return;
        const double remaining = planned - elapsedAt(nowUs);
        if (remaining <= 0 && cues[*index].autoFollow && *index + 1 < cues.size())
            jobs.push_back({false, run});
    }
    void runJob(qint64 nowUs)
    {
        const Job job = jobs.front();
        jobs.pop_front();
        if (job.doorsOpen)
            start(0, nowUs);
        else if (job.run == run && running)
            next(nowUs);
    }
};
