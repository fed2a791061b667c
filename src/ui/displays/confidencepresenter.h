#pragma once

#include "displayclock.h"
#include "timerengine.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>

// What the confidence display shows: always the running timer with its context (the speaker,
// the cue, what comes next, the message as a line), whatever the stage display shows.
// Announced only when something changed.
class ConfidencePresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine NOTIFY engineChanged FINAL)
    // Its seconds move the schedule line while no cue runs (the engine then does not tick).
    Q_PROPERTY(DisplayClock *clock READ clock WRITE setClock NOTIFY clockChanged FINAL)

    Q_PROPERTY(bool hasCue READ hasCue NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString cueName READ cueName NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString speaker READ speaker NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString timeText READ timeText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor stateColor READ stateColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(bool hasNext READ hasNext NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString nextText READ nextText NOTIFY frameChanged FINAL) // "Suivant : …"
    Q_PROPERTY(bool hasMessage READ hasMessage NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString message READ message NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor messageColor READ messageColor NOTIFY frameChanged FINAL)
    // "Programme : +4 min de retard"; empty while the show has no start time.
    Q_PROPERTY(QString scheduleText READ scheduleText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor scheduleColor READ scheduleColor NOTIFY frameChanged FINAL)

public:
    explicit ConfidencePresenter(QObject *parent = nullptr);

    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine);
    DisplayClock *clock() const { return m_clock; }
    void setClock(DisplayClock *clock);

    bool hasCue() const { return m_frame.hasCue; }
    QString cueName() const { return m_frame.cueName; }
    QString speaker() const { return m_frame.speaker; }
    QString timeText() const { return m_frame.timeText; }
    QColor stateColor() const { return m_frame.stateColor; }
    bool hasNext() const { return m_frame.hasNext; }
    QString nextText() const { return m_frame.nextText; }
    bool hasMessage() const { return m_frame.hasMessage; }
    QString message() const { return m_frame.message; }
    QColor messageColor() const { return m_frame.messageColor; }
    QString scheduleText() const { return m_frame.scheduleText; }
    QColor scheduleColor() const { return m_frame.scheduleColor; }

signals:
    void engineChanged();
    void clockChanged();
    void frameChanged();

private:
    struct Frame {
        bool hasCue = false;
        QString cueName;
        QString speaker;
        QString timeText;
        QColor stateColor;
        bool hasNext = false;
        QString nextText;
        bool hasMessage = false;
        QString message;
        QColor messageColor;
        QString scheduleText;
        QColor scheduleColor;

        bool operator==(const Frame &) const = default;
    };

    void refresh();
    Frame compute() const;

    QPointer<TimerEngine> m_engine;
    QPointer<DisplayClock> m_clock;
    Frame m_frame;
};
