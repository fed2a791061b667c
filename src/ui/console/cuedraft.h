#pragma once

#include "cue.h"
#include "cuepalette.h"
#include "triggerlist.h"

#include <QDateTime>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QTimeZone>
#include <QVariantList>

#include <vector>

class Clock;

// The cue editor's working copy of one cue. The editor's view binds to its properties; the
// owner loads a cue, opens the editor and, on save, takes result() back. Nothing here is
// trimmed or validated: what the operator typed is what the cue gets.
//
// The hard-out time is a time of day read in the time zone this draft is given (the user's
// calendar, from the injected clock), never the machine's.
class CueDraft : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    Q_PROPERTY(QString speaker READ speaker WRITE setSpeaker NOTIFY speakerChanged FINAL)
    Q_PROPERTY(bool hardOutMode READ hardOutMode WRITE setHardOutMode NOTIFY modeChanged FINAL)
    // The duration as the two steppers show it.
    Q_PROPERTY(int minutes READ minutes WRITE setMinutes NOTIFY minutesChanged FINAL)
    Q_PROPERTY(int seconds READ seconds WRITE setSeconds NOTIFY secondsChanged FINAL)
    // The end time of a hard-out cue, and its hour and minute in the user's calendar.
    Q_PROPERTY(QDateTime hardOut READ hardOut WRITE setHardOut NOTIFY hardOutChanged FINAL)
    Q_PROPERTY(int hardOutHour READ hardOutHour WRITE setHardOutHour NOTIFY hardOutChanged FINAL)
    Q_PROPERTY(int hardOutMinute READ hardOutMinute WRITE setHardOutMinute NOTIFY hardOutChanged FINAL)
    // Seconds of remaining time.
    // "Début fixe": the cue starts at that time of day in the show's timetable, whatever the
    // cues before it take.
    Q_PROPERTY(bool hasFixedStart READ hasFixedStart WRITE setHasFixedStart NOTIFY fixedStartChanged FINAL)
    Q_PROPERTY(int fixedStartHour READ fixedStartHour NOTIFY fixedStartChanged FINAL)
    Q_PROPERTY(int fixedStartMinute READ fixedStartMinute NOTIFY fixedStartChanged FINAL)
    Q_PROPERTY(double warningThreshold READ warningThreshold WRITE setWarningThreshold
                   NOTIFY warningThresholdChanged FINAL)
    Q_PROPERTY(double dangerThreshold READ dangerThreshold WRITE setDangerThreshold
                   NOTIFY dangerThresholdChanged FINAL)
    Q_PROPERTY(bool autoFollow READ autoFollow WRITE setAutoFollow NOTIFY autoFollowChanged FINAL)
    // The colour tag as stored; empty means automatic (the colour follows the thresholds).
    Q_PROPERTY(QString colorHex READ colorHex WRITE setColorHex NOTIFY colorHexChanged FINAL)
    Q_PROPERTY(QString notes READ notes WRITE setNotes NOTIFY notesChanged FINAL)
    // "Déclencheurs": the cue's messages to other gear, edited in place.
    Q_PROPERTY(TriggerList *triggers READ triggers CONSTANT FINAL)

    // The palette as a list of { name, hex }, in the order the swatches are shown.
    Q_PROPERTY(QVariantList palette READ paletteList CONSTANT FINAL)
    // The steppers' limits, for the views to grey out a button that would do nothing.
    Q_PROPERTY(int maxMinutes READ maxMinutes CONSTANT FINAL)
    Q_PROPERTY(int maxSeconds READ maxSeconds CONSTANT FINAL)
    Q_PROPERTY(double maxThreshold READ maxThreshold CONSTANT FINAL)

public:
    static constexpr int kMaxMinutes = 300;
    static constexpr int kMaxSeconds = 59;
    static constexpr double kMaxThreshold = 3600;  // seconds
    static constexpr double kWarningStep = 30;     // seconds
    static constexpr double kDangerStep = 15;      // seconds

    // Until it is given a time zone, a draft reads times of day in UTC.
    explicit CueDraft(QObject *parent = nullptr);
    explicit CueDraft(const QTimeZone &zone, QObject *parent = nullptr);

    // The cue colour palette (CuePalette), for the swatches.
    static const std::vector<CueColour> &palette();

    // Starts editing `cue`. A duration is shown truncated to whole seconds; a cue without an
    // end time gets `now` as the picker's starting value (kept out of the cue until the
    // picker is moved or the cue is saved in hard-out mode).
    void load(const Cue &cue, const QDateTime &now);
    // The same, with the clock's time and its time zone.
    void load(const Cue &cue, const Clock &clock);
    // The cue's place in the running order, from 0, for the {index} of a trigger sent by hand.
    void setRow(int row) { m_row = row; }
    // How "Envoyer maintenant" sends: the trigger with the edited cue's name, speaker and
    // number, and as {remaining} what the cue has left at the trigger's moment (its duration at
    // the start, its threshold at warning or danger, 0 at zero and at the end).
    void setTriggerSender(TriggerSend send);
    TriggerList *triggers() { return &m_triggers; }

    // The edited cue: duration = minutes × 60 + seconds; in hard-out mode the end time is the
    // picker's. In duration mode an end time set earlier stays in the cue, so switching a cue
    // back and forth between the modes does not lose it.
    Cue result() const;

    QTimeZone timeZone() const { return m_zone; }
    void setTimeZone(const QTimeZone &zone);

    QString name() const { return m_cue.name; }
    void setName(const QString &name);
    QString speaker() const { return m_cue.speaker; }
    void setSpeaker(const QString &speaker);
    bool hardOutMode() const { return m_cue.mode == TimerMode::HardOut; }
    void setHardOutMode(bool hardOut);
    int minutes() const { return m_minutes; }
    // Clamped to 0…300; a larger count loaded from the cue may stay or be lowered, never raised.
    void setMinutes(int minutes);
    int seconds() const { return m_seconds; }
    void setSeconds(int seconds);
    QDateTime hardOut() const { return m_hardOut; }
    // Written into the cue's end time at once, whatever the mode.
    void setHardOut(const QDateTime &hardOut);
    int hardOutHour() const;
    void setHardOutHour(int hour);
    int hardOutMinute() const;
    void setHardOutMinute(int minute);
    // The picker's choice: that time of day on the day the end time falls on, to the minute.
    Q_INVOKABLE void setHardOutTimeOfDay(int hour, int minute);
    bool hasFixedStart() const { return m_cue.fixedStart.has_value(); }
    // On: the picker's time becomes the cue's fixed start; off: the cue follows the one before.
    void setHasFixedStart(bool on);
    int fixedStartHour() const;
    int fixedStartMinute() const;
    // The picker's choice, to the minute; the cue's fixed start when the box is ticked.
    Q_INVOKABLE void setFixedStartTimeOfDay(int hour, int minute);
    double warningThreshold() const { return m_cue.warningThreshold; }
    // Clamped to 0…3600; a value loaded outside that range may stay or move towards it.
    void setWarningThreshold(double seconds);
    double dangerThreshold() const { return m_cue.dangerThreshold; }
    void setDangerThreshold(double seconds);
    bool autoFollow() const { return m_cue.autoFollow; }
    void setAutoFollow(bool autoFollow);
    QString colorHex() const { return m_cue.colorHex.value_or(QString()); }
    // An empty text makes the colour automatic again.
    void setColorHex(const QString &hex);
    QString notes() const { return m_cue.notes; }
    void setNotes(const QString &notes);

    // The steppers' buttons: one step up (+1) or down (-1), never past the stepper's range.
    Q_INVOKABLE void stepMinutes(int direction);
    Q_INVOKABLE void stepSeconds(int direction);
    Q_INVOKABLE void stepWarningThreshold(int direction);
    Q_INVOKABLE void stepDangerThreshold(int direction);

    QVariantList paletteList() const;
    int maxMinutes() const { return kMaxMinutes; }
    int maxSeconds() const { return kMaxSeconds; }
    double maxThreshold() const { return kMaxThreshold; }

signals:
    void nameChanged();
    void speakerChanged();
    void modeChanged();
    void minutesChanged();
    void secondsChanged();
    void hardOutChanged();
    void fixedStartChanged();
    void warningThresholdChanged();
    void dangerThresholdChanged();
    void autoFollowChanged();
    void colorHexChanged();
    void notesChanged();

private:
    void applyDuration();

    Cue m_cue;
    int m_minutes = 10;
    int m_seconds = 0;
    QDateTime m_hardOut;
    QDateTime m_fixedStart; // the picker's time, kept while the box is unticked
    QTimeZone m_zone;
    TriggerList m_triggers{this};
    int m_row = 0;
};
