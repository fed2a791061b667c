#pragma once

#include "cueschedulemarks.h"
#include "displayclock.h"
#include "timerengine.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QQmlEngine>

// The engine's cue list for the console, one row per cue. An edit, an undo or a change of the
// active or selected cue touches only the rows it changed (never a reset), so a list scrolled
// through hundreds of cues keeps its place; a tick of the clock touches nothing. The timetable's
// marks (planned and expected starts) are worked out again at each second of the clock and
// touch only the rows whose text changed.
class CueListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine NOTIFY engineChanged FINAL)
    // Its seconds move the expected starts while the show runs late or early.
    Q_PROPERTY(DisplayClock *clock READ clock WRITE setClock NOTIFY clockChanged FINAL)

public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        SpeakerRole,
        NumberRole,        // "1", "2"…
        BadgeColorRole,    // the cue's colour, or the input grey when it has none
        DurationTextRole,  // the planned length, "20:00"
        EndTextRole,       // a hard-out cue's end time, "→ 23:30"; empty for a duration cue
        AutoFollowRole,
        CompletedRole,     // it ran and was left: it has an actual time
        ActualTextRole,    // "Réel 20:42 · +00:42"
        ActiveRole,
        SelectedRole,
        PlannedStartRole,    // "20:15"; empty without a show start
        ExpectedStartRole,   // "→ 20:19", or empty
        ExpectedLateRole,
        MarginRole,          // "Marge 05:00", "Dépassement 03:00", or empty
        ShortfallRole,
        EndsBeforeStartRole, // the list says "Fin avant le début"
    };
    Q_ENUM(Role)

    explicit CueListModel(QObject *parent = nullptr);

    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine);
    DisplayClock *clock() const { return m_clock; }
    void setClock(DisplayClock *clock);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // The text of a completed cue's actual time and overtime.
    static QString actualText(const Cue &cue);
    // The end time of a hard-out cue, in the user's calendar.
    static QString endText(const Cue &cue);

signals:
    void engineChanged();
    void clockChanged();

private:
    void syncCues();
    void syncMarks();
    void syncSchedule();
    void touch(int row, const QList<int> &roles);

    QPointer<TimerEngine> m_engine;
    QPointer<DisplayClock> m_clock;
    QList<Cue> m_cues; // what the rows show
    QList<CueScheduleMarks> m_marks; // one per row
    int m_active = -1;
    int m_selected = -1;
};
