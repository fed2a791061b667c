#pragma once

#include "displayclock.h"
#include "timerengine.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>

// What the console shows of the engine besides its cue list: the operator's copy of the
// timer with its context line, the play button's symbol, the doors button's label, the show
// lock and the footer's total overtime. Announced only when something changed, so that the
// console redraws once a second while a cue runs, not ten times.
class ConsolePresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine NOTIFY engineChanged FINAL)
    // Its seconds move the schedule line while no cue runs (the engine then does not tick).
    Q_PROPERTY(DisplayClock *clock READ clock WRITE setClock NOTIFY clockChanged FINAL)

    Q_PROPERTY(bool hasCue READ hasCue NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString cueTitle READ cueTitle NOTIFY frameChanged FINAL) // or "Aucun cue actif"
    Q_PROPERTY(QString timeText READ timeText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor stateColor READ stateColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString dayEndText READ dayEndText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString driftText READ driftText NOTIFY frameChanged FINAL) // empty: no drift
    // "Retard : +04:12", "Avance : −01:30", "À l'heure"; empty while the show has no start time.
    Q_PROPERTY(QString scheduleText READ scheduleText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor scheduleColor READ scheduleColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString nextText READ nextText NOTIFY frameChanged FINAL)   // empty: last cue
    Q_PROPERTY(QString playSymbol READ playSymbol NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString doorsLabel READ doorsLabel NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString overtimeText READ overtimeText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor overtimeColor READ overtimeColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString lockSymbol READ lockSymbol NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor lockColor READ lockColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString lockHelp READ lockHelp NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString projectSummary READ projectSummary NOTIFY frameChanged FINAL)
    // The add menu's templates, "name · length", and the preset messages as {text, urgent}.
    Q_PROPERTY(QStringList templateLabels READ templateLabels NOTIFY listsChanged FINAL)
    Q_PROPERTY(QVariantList presets READ presets NOTIFY listsChanged FINAL)

public:
    explicit ConsolePresenter(QObject *parent = nullptr);

    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine);
    DisplayClock *clock() const { return m_clock; }
    void setClock(DisplayClock *clock);

    bool hasCue() const { return m_frame.hasCue; }
    QString cueTitle() const { return m_frame.cueTitle; }
    QString timeText() const { return m_frame.timeText; }
    QColor stateColor() const { return m_frame.stateColor; }
    QString elapsedText() const { return m_frame.elapsedText; }
    QString dayEndText() const { return m_frame.dayEndText; }
    QString driftText() const { return m_frame.driftText; }
    QString scheduleText() const { return m_frame.scheduleText; }
    QColor scheduleColor() const { return m_frame.scheduleColor; }
    QString nextText() const { return m_frame.nextText; }
    QString playSymbol() const { return m_frame.playSymbol; }
    QString doorsLabel() const { return m_frame.doorsLabel; }
    QString overtimeText() const { return m_frame.overtimeText; }
    QColor overtimeColor() const { return m_frame.overtimeColor; }
    QString lockSymbol() const { return m_frame.lockSymbol; }
    QColor lockColor() const { return m_frame.lockColor; }
    QString lockHelp() const { return m_frame.lockHelp; }
    QString projectSummary() const { return m_frame.projectSummary; }
    QStringList templateLabels() const;
    QVariantList presets() const;

signals:
    void engineChanged();
    void clockChanged();
    void frameChanged();
    void listsChanged();

private:
    struct Frame {
        bool hasCue = false;
        QString cueTitle;
        QString timeText;
        QColor stateColor;
        QString elapsedText;
        QString dayEndText;
        QString driftText;
        QString scheduleText;
        QColor scheduleColor;
        QString nextText;
        QString playSymbol;
        QString doorsLabel;
        QString overtimeText;
        QColor overtimeColor;
        QString lockSymbol;
        QColor lockColor;
        QString lockHelp;
        QString projectSummary;

        bool operator==(const Frame &) const = default;
    };

    void refresh();
    Frame compute() const;

    QPointer<TimerEngine> m_engine;
    QPointer<DisplayClock> m_clock;
    Frame m_frame;
};
