#include "cuelistmodel.h"

#include "apptheme.h"
#include "enginetypes.h"
#include "formatters.h"
#include "theme.h"

CueListModel::CueListModel(QObject *parent) : QAbstractListModel(parent) {}

void CueListModel::setEngine(TimerEngine *engine)
{
    if (m_engine == engine)
        return;
    beginResetModel(); // once, when the console is given its engine
    followEngine(m_engine, engine, this, {&TimerEngine::sessionChanged}, &CueListModel::syncCues);
    if (engine) {
        connect(engine, &TimerEngine::activeCueChanged, this, &CueListModel::syncMarks);
        connect(engine, &TimerEngine::selectedCueIndexChanged, this, &CueListModel::syncMarks);
        // A start, a stop or another cue moves the expected starts at once.
        connect(engine, &TimerEngine::activeCueChanged, this, &CueListModel::syncSchedule);
        connect(engine, &TimerEngine::runStateChanged, this, &CueListModel::syncSchedule);
    }
    m_cues = engine ? engine->session().cues : QList<Cue>();
    m_marks = engine ? cueScheduleMarks(*engine) : QList<CueScheduleMarks>();
    m_active = engine ? engine->activeCueIndex().value_or(-1) : -1;
    m_selected = engine ? engine->selectedCueIndex().value_or(-1) : -1;
    endResetModel();
    emit engineChanged();
}

void CueListModel::setClock(DisplayClock *clock)
{
    if (m_clock == clock)
        return;
    follow(m_clock, clock, this, {&DisplayClock::secondChanged}, &CueListModel::syncSchedule);
    syncSchedule();
    emit clockChanged();
}

int CueListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_cues.size());
}

QString CueListModel::actualText(const Cue &cue)
{
    if (!cue.actualElapsed)
        return {};
    QString text = QStringLiteral("Réel ") + TimerEngine::format(*cue.actualElapsed, false);
    if (cue.overtime.value_or(0) > 0)
        text += QStringLiteral(" · +") + TimerEngine::format(*cue.overtime, false);
    return text;
}

QString CueListModel::endText(const Cue &cue)
{
    if (cue.mode != TimerMode::HardOut || !cue.hardOutTime)
        return {};
    return QStringLiteral("→ ") + Fmt::hhmm().string(*cue.hardOutTime);
}

QVariant CueListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Cue &cue = m_cues.at(index.row());
    switch (role) {
    case NameRole: return cue.name;
    case SpeakerRole: return cue.speaker;
    case NumberRole: return QString::number(index.row() + 1);
    case BadgeColorRole: return toQColor(AppTheme::cueColor(cue).value_or(AppTheme::bgInput));
    case DurationTextRole: return TimerEngine::format(cue.duration, false);
    case EndTextRole: return endText(cue);
    case AutoFollowRole: return cue.autoFollow;
    case CompletedRole: return cue.actualElapsed.has_value();
    case ActualTextRole: return actualText(cue);
    case ActiveRole: return index.row() == m_active;
    case SelectedRole: return index.row() == m_selected;
    }
    const CueScheduleMarks &marks = m_marks.at(index.row());
    switch (role) {
    case PlannedStartRole: return marks.plannedStart;
    case ExpectedStartRole: return marks.expectedStart;
    case ExpectedLateRole: return marks.expectedLate;
    case MarginRole: return marks.margin;
    case ShortfallRole: return marks.shortfall;
    case EndsBeforeStartRole: return marks.endsBeforeStart;
    }
    return {};
}

QHash<int, QByteArray> CueListModel::roleNames() const
{
    return {{NameRole, "name"},
            {SpeakerRole, "speaker"},
            {NumberRole, "number"},
            {BadgeColorRole, "badgeColor"},
            {DurationTextRole, "durationText"},
            {EndTextRole, "endText"},
            {AutoFollowRole, "autoFollow"},
            {CompletedRole, "completed"},
            {ActualTextRole, "actualText"},
            {ActiveRole, "active"},
            {SelectedRole, "selected"},
            {PlannedStartRole, "plannedStart"},
            {ExpectedStartRole, "expectedStart"},
            {ExpectedLateRole, "expectedLate"},
            {MarginRole, "margin"},
            {ShortfallRole, "shortfall"},
            {EndsBeforeStartRole, "endsBeforeStart"}};
}

void CueListModel::touch(int row, const QList<int> &roles)
{
    if (row >= 0 && row < m_cues.size())
        emit dataChanged(index(row), index(row), roles);
}

// The new list against the rows shown: the rows in common at both ends stay, the rows in
// between are changed in place, and only the difference in count is inserted or removed.
// An edit, a move (two cues exchanged), an insertion or a deletion thus touches only its rows.
void CueListModel::syncCues()
{
    const QList<Cue> cues = m_engine ? m_engine->session().cues : QList<Cue>();
    const qsizetype oldCount = m_cues.size();
    const qsizetype newCount = cues.size();
    qsizetype head = 0;
    // at(): a read that never copies the rows the undo steps share.
    while (head < oldCount && head < newCount && m_cues.at(head) == cues.at(head))
        ++head;
    if (head == oldCount && head == newCount) {
        syncMarks();
        syncSchedule(); // the show's start may have moved
        return;
    }
    qsizetype tail = 0;
    while (tail < oldCount - head && tail < newCount - head
           && m_cues.at(oldCount - 1 - tail) == cues.at(newCount - 1 - tail))
        ++tail;
    const qsizetype oldMiddle = oldCount - head - tail;
    const qsizetype newMiddle = newCount - head - tail;
    const qsizetype common = std::min(oldMiddle, newMiddle);

    if (newMiddle > oldMiddle) {
        // Insert where the extra rows are: an added cue lands at its own place.
        const int at = int(head + common);
        beginInsertRows({}, at, int(at + newMiddle - oldMiddle - 1));
        m_cues = cues;
        m_marks.insert(at, newMiddle - oldMiddle, CueScheduleMarks());
        endInsertRows();
    } else if (newMiddle < oldMiddle) {
        const int at = int(head + common);
        beginRemoveRows({}, at, int(at + oldMiddle - newMiddle - 1));
        m_cues.remove(at, oldMiddle - newMiddle);
        m_marks.remove(at, oldMiddle - newMiddle);
        endRemoveRows();
        m_cues = cues;
    } else {
        m_cues = cues;
    }
    if (common > 0)
        emit dataChanged(index(int(head)), index(int(head + common - 1)));
    // Numbers after an insertion or a removal move by one.
    if (newMiddle != oldMiddle && head + newMiddle < newCount)
        emit dataChanged(index(int(head + newMiddle)), index(int(newCount - 1)), {NumberRole});
    syncMarks();
    syncSchedule();
}

// The timetable's marks worked out again; each run of rows whose marks changed is touched once.
void CueListModel::syncSchedule()
{
    const QList<CueScheduleMarks> marks = m_engine ? cueScheduleMarks(*m_engine) : QList<CueScheduleMarks>();
    if (marks.size() != m_marks.size())
        return; // the rows follow the show first, then come back here
    static const QList<int> roles{PlannedStartRole, ExpectedStartRole, ExpectedLateRole,
                                  MarginRole,       ShortfallRole,     EndsBeforeStartRole};
    for (qsizetype i = 0; i < marks.size();) {
        if (marks.at(i) == m_marks.at(i)) {
            ++i;
            continue;
        }
        const qsizetype first = i;
        while (i < marks.size() && marks.at(i) != m_marks.at(i)) {
            m_marks[i] = marks.at(i);
            ++i;
        }
        emit dataChanged(index(int(first)), index(int(i - 1)), roles);
    }
}

void CueListModel::syncMarks()
{
    const int active = m_engine ? m_engine->activeCueIndex().value_or(-1) : -1;
    const int selected = m_engine ? m_engine->selectedCueIndex().value_or(-1) : -1;
    if (active != m_active) {
        const int was = std::exchange(m_active, active);
        touch(was, {ActiveRole});
        touch(active, {ActiveRole});
    }
    if (selected != m_selected) {
        const int was = std::exchange(m_selected, selected);
        touch(was, {SelectedRole});
        touch(selected, {SelectedRole});
    }
}
