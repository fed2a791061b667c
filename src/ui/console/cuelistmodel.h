#pragma once

#include "timerengine.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QQmlEngine>

// The engine's cue list for the console, one row per cue. An edit, an undo or a change of the
// active or selected cue touches only the rows it changed (never a reset), so a list scrolled
// through hundreds of cues keeps its place; a tick of the clock touches nothing.
class CueListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine NOTIFY engineChanged FINAL)

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
    };
    Q_ENUM(Role)

    explicit CueListModel(QObject *parent = nullptr);

    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // The text of a completed cue's actual time and overtime.
    static QString actualText(const Cue &cue);
    // The end time of a hard-out cue, in the user's calendar.
    static QString endText(const Cue &cue);

signals:
    void engineChanged();

private:
    void syncCues();
    void syncMarks();
    void touch(int row, const QList<int> &roles);

    QPointer<TimerEngine> m_engine;
    QList<Cue> m_cues; // what the rows show
    int m_active = -1;
    int m_selected = -1;
};
