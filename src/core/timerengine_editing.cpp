// Cue list editing of TimerEngine, with whole-list undo and redo. The active cue is tracked by
// its id, so edits never move the clock to another cue.
#include "timerengine.h"

#include <algorithm>
#include <utility>

namespace {
constexpr qsizetype maxUndoSteps = 50;
}

void TimerEngine::pushUndo()
{
    m_undoStack.append({m_session.cues, m_session.triggers});
    if (m_undoStack.size() > maxUndoSteps)
        m_undoStack.removeFirst();
    m_redoStack.clear();
}

void TimerEngine::cuesEdited()
{
    m_session.updatedAt = m_clock.now();
    refreshDerived();
    notify(&TimerEngine::sessionChanged);
    notify(&TimerEngine::undoStateChanged);
}

void TimerEngine::clampSelection()
{
    if (m_selectedCueIndex && *m_selectedCueIndex >= m_session.cues.size()) {
        m_selectedCueIndex = m_session.cues.isEmpty()
                                 ? std::nullopt
                                 : std::optional(int(m_session.cues.size()) - 1);
        notify(&TimerEngine::selectedCueIndexChanged);
        refreshDerived();
    }
}

void TimerEngine::leaveRemovedActiveCue(const Cue &removed)
{
    // The cue is gone from the list: it is logged from its last value, then the clock stops.
    m_activeCueID.reset();
    refreshDerived();
    if (m_isRunning)
        logCue(removed, std::nullopt);
    halt();
}

void TimerEngine::addCue()
{
    if (refusesCommands())
        return;
    addCue(Cue());
}

void TimerEngine::addCue(const Cue &cue)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (m_showLocked)
        return;
    pushUndo();
    m_session.cues.append(cue);
    cuesEdited();
}

void TimerEngine::addCue(const CueTemplate &from)
{
    if (refusesCommands())
        return;
    Cue cue;
    cue.name = from.name;
    cue.duration = from.duration;
    cue.warningThreshold = from.warningThreshold;
    cue.dangerThreshold = from.dangerThreshold;
    addCue(cue);
}

void TimerEngine::updateCue(const Cue &cue)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    // Allowed while the show is locked: fixing a typo in a running show is not editing the
    // running order. A changed length or threshold of the running cue applies from its next
    // start or reset; thresholds apply to the alerts from the next tick.
    const auto it = std::find_if(m_session.cues.cbegin(), m_session.cues.cend(),
                                 [&](const Cue &c) { return c.id == cue.id; });
    if (it == m_session.cues.cend())
        return;
    const qsizetype index = it - m_session.cues.cbegin();
    pushUndo();
    m_session.cues[index] = cue;
    cuesEdited();
    notifyStateChange();
}

void TimerEngine::moveCue(int from, int offset)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (m_showLocked || offset == 0)
        return;
    const qint64 to = qint64(from) + offset;
    const qsizetype count = m_session.cues.size();
    if (from < 0 || from >= count || to < 0 || to >= count)
        return;
    pushUndo();
    m_session.cues.swapItemsAt(from, to);
    cuesEdited();
}

void TimerEngine::deleteCue(int at)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (m_showLocked || at < 0 || at >= m_session.cues.size())
        return;
    pushUndo();
    const bool wasActive = m_activeCueIndex == at;
    const Cue removed = m_session.cues.takeAt(at);
    refreshDerived();
    clampSelection();
    if (wasActive)
        leaveRemovedActiveCue(removed);
    cuesEdited();
}

void TimerEngine::replaceCues(const QList<Cue> &cues)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (m_showLocked)
        return;
    pushUndo();
    const QList<Cue> previous = std::exchange(m_session.cues, cues);
    refreshDerived();
    clampIndices(previous);
    cuesEdited();
}

void TimerEngine::undo()
{
    if (refusesCommands())
        return;
    restoreFrom(m_undoStack, m_redoStack);
}

void TimerEngine::redo()
{
    if (refusesCommands())
        return;
    restoreFrom(m_redoStack, m_undoStack);
}

void TimerEngine::restoreFrom(QList<EditStep> &from, QList<EditStep> &to)
{
    const Batch batch(*this);
    // Only the recording of a new step trims the stacks to 50.
    if (from.isEmpty())
        return;
    const QList<Cue> previous = m_session.cues;
    to.append({previous, m_session.triggers});
    const EditStep step = from.takeLast();
    m_session.cues = step.cues;
    m_session.triggers = step.showTriggers;
    refreshDerived();
    clampIndices(previous);
    cuesEdited();
}

void TimerEngine::clampIndices(const QList<Cue> &previousCues)
{
    clampSelection();
    if (m_isRunning && m_activeCueID && !m_activeCueIndex) {
        const auto it = std::find_if(previousCues.cbegin(), previousCues.cend(),
                                     [&](const Cue &c) { return c.id == *m_activeCueID; });
        leaveRemovedActiveCue(it != previousCues.cend() ? *it : Cue());
    }
}

void TimerEngine::updateProjectInfo(const TimerSession &edited)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    m_session.name = edited.name;
    m_session.client = edited.client;
    m_session.venue = edited.venue;
    m_session.operatorName = edited.operatorName;
    m_session.eventDate = edited.eventDate;
    m_session.notes = edited.notes;
    m_session.scheduledStart = edited.scheduledStart;
    m_session.updatedAt = edited.updatedAt;
    // The show-wide triggers are edited as the cues are: a change is an undo step.
    if (m_session.triggers != edited.triggers) {
        pushUndo();
        m_session.triggers = edited.triggers;
        notify(&TimerEngine::undoStateChanged);
    }
    notify(&TimerEngine::sessionChanged);
}

void TimerEngine::setLinkedSpreadsheet(const std::optional<LinkedSpreadsheet> &link)
{
    if (refusesCommands())
        return;
    const Batch batch(*this);
    if (m_session.linkedSpreadsheet == link)
        return;
    m_session.linkedSpreadsheet = link;
    notify(&TimerEngine::sessionChanged);
}
