#pragma once

#include "displayclock.h"
#include "timersession.h"
#include "triggerlist.h"

#include <QDateTime>
#include <QLocale>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QString>
#include <QTime>
#include <QVariant>

#include <optional>

// The fields of the project sheet and the show they make. The sheet creates a show, or edits
// the project data of an existing one, and hands back the result; it never writes a file.
//
// Creation starts from empty texts, the event date on and set to now, and a first cue ticked;
// editing starts from the show's own values. The show handed back keeps the name trimmed of
// its spaces and tabs, and the client, venue and operator exactly as typed (absent when left
// empty).
class ProjectSheetForm : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    // "now" for a new show and for the event date a new show starts with.
    Q_PROPERTY(DisplayClock *clock READ clock WRITE setClock REQUIRED FINAL)

    Q_PROPERTY(bool editing READ editing NOTIFY started FINAL)
    Q_PROPERTY(QString title READ title NOTIFY started FINAL)
    Q_PROPERTY(QString confirmText READ confirmText NOTIFY started FINAL)

    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    // Whether the name holds more than blanks.
    Q_PROPERTY(bool canSave READ canSave NOTIFY nameChanged FINAL)
    Q_PROPERTY(QString client READ client WRITE setClient NOTIFY textsChanged FINAL)
    Q_PROPERTY(QString venue READ venue WRITE setVenue NOTIFY textsChanged FINAL)
    Q_PROPERTY(QString operatorName READ operatorName WRITE setOperatorName NOTIFY textsChanged FINAL)
    Q_PROPERTY(QString notes READ notes WRITE setNotes NOTIFY textsChanged FINAL)
    Q_PROPERTY(bool hasEventDate READ hasEventDate WRITE setHasEventDate NOTIFY eventDateChanged FINAL)
    Q_PROPERTY(bool withStarterCue READ withStarterCue WRITE setWithStarterCue
                   NOTIFY withStarterCueChanged FINAL)

    // The event date as the operator reads it ("15 nov. 2026"), and its day for the calendar,
    // whose months count from 0 for January.
    Q_PROPERTY(QString eventDateText READ eventDateText NOTIFY eventDateChanged FINAL)
    Q_PROPERTY(int eventYear READ eventYear NOTIFY eventDateChanged FINAL)
    Q_PROPERTY(int eventMonthIndex READ eventMonthIndex NOTIFY eventDateChanged FINAL)
    Q_PROPERTY(int eventDay READ eventDay NOTIFY eventDateChanged FINAL)
    // "Début du show": whether the show has a planned start, and its time of day, on the event's
    // date (today's when it has none).
    Q_PROPERTY(bool hasShowStart READ hasShowStart WRITE setHasShowStart NOTIFY showStartChanged FINAL)
    Q_PROPERTY(int showStartHour READ showStartHour NOTIFY showStartChanged FINAL)
    Q_PROPERTY(int showStartMinute READ showStartMinute NOTIFY showStartChanged FINAL)
    // "Déclencheurs" of an existing show: sent for every cue, besides each cue's own.
    Q_PROPERTY(TriggerList *triggers READ triggers CONSTANT FINAL)
    // The calendar's language: French, Monday first.
    Q_PROPERTY(QLocale locale READ locale CONSTANT FINAL)

public:
    static inline const QString starterCueName = QStringLiteral("Keynote 20 min");

    using QObject::QObject;

    DisplayClock *clock() const { return m_clock; }
    void setClock(DisplayClock *clock) { m_clock = clock; }

    bool editing() const { return m_existing.has_value(); }
    QString title() const;
    QString confirmText() const;

    QString name() const { return m_name; }
    void setName(const QString &name);
    bool canSave() const;
    QString client() const { return m_client; }
    void setClient(const QString &text) { setText(m_client, text); }
    QString venue() const { return m_venue; }
    void setVenue(const QString &text) { setText(m_venue, text); }
    QString operatorName() const { return m_operatorName; }
    void setOperatorName(const QString &text) { setText(m_operatorName, text); }
    QString notes() const { return m_notes; }
    void setNotes(const QString &text) { setText(m_notes, text); }
    bool hasEventDate() const { return m_hasEventDate; }
    void setHasEventDate(bool on);
    bool withStarterCue() const { return m_withStarterCue; }
    void setWithStarterCue(bool on);

    bool hasShowStart() const { return m_hasShowStart; }
    void setHasShowStart(bool on);
    int showStartHour() const { return m_showStart.hour(); }
    int showStartMinute() const { return m_showStart.minute(); }
    Q_INVOKABLE void setShowStart(int hour, int minute);

    QDateTime eventDate() const { return m_eventDate; }
    QString eventDateText() const;
    int eventYear() const { return eventDayDate().year(); }
    int eventMonthIndex() const { return eventDayDate().month() - 1; }
    int eventDay() const { return eventDayDate().day(); }
    QLocale locale() const;
    TriggerList *triggers() { return &m_triggers; }

    // Fills the fields for a new show.
    Q_INVOKABLE void startCreating();
    // Fills the fields from a show (a TimerSession) to edit its project data.
    Q_INVOKABLE void startEditing(const QVariant &session);
    // Moves the event date to another day, at the same time of day.
    Q_INVOKABLE void setEventDay(int year, int monthIndex, int day);
    // The calendar's heading for a month: "Novembre 2026".
    Q_INVOKABLE QString monthTitle(int year, int monthIndex) const;

    // The show the fields make, as a TimerSession for the page that saves it.
    Q_INVOKABLE QVariant result() const { return QVariant::fromValue(session()); }
    TimerSession session() const;

signals:
    void started();
    void nameChanged();
    void textsChanged();
    void eventDateChanged();
    void withStarterCueChanged();
    void showStartChanged();

private:
    QDateTime now() const;
    QDate eventDayDate() const;
    void setText(QString &field, const QString &text);
    void fill(const std::optional<TimerSession> &existing);

    QPointer<DisplayClock> m_clock;
    std::optional<TimerSession> m_existing;
    QString m_name;
    QString m_client;
    QString m_venue;
    QString m_operatorName;
    QString m_notes;
    QDateTime m_eventDate;
    bool m_hasEventDate = true;
    bool m_withStarterCue = true;
    bool m_hasShowStart = false;
    QTime m_showStart{20, 0};
    TriggerList m_triggers{this};
};
