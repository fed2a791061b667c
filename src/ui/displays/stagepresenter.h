#pragma once

#include "displayclock.h"
#include "timerengine.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>

#include <memory>

// What the stage display shows, as a pure function of the engine's state and the view's two
// phase flags: the mode, the texts, the colours and opacities. The view only lays them out.
// Every property changes together and is announced only when one of them really changed, so
// that a window redraws only when something on it changes.
class StagePresenter : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(TimerEngine *engine READ engine WRITE setEngine NOTIFY inputsChanged FINAL)
    Q_PROPERTY(DisplayClock *clock READ clock WRITE setClock NOTIFY inputsChanged FINAL)

    Q_PROPERTY(Mode mode READ mode NOTIFY frameChanged FINAL)
    Q_PROPERTY(bool hasCue READ hasCue NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString cueName READ cueName NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString timeText READ timeText NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor stateColor READ stateColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(double timeOpacity READ timeOpacity NOTIFY frameChanged FINAL)
    Q_PROPERTY(double progress READ progress NOTIFY frameChanged FINAL) // 0…1
    Q_PROPERTY(bool frozen READ frozen NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString doorsText READ doorsText NOTIFY frameChanged FINAL)
    Q_PROPERTY(bool blinkVisible READ blinkVisible NOTIFY frameChanged FINAL)
    Q_PROPERTY(QColor blinkColor READ blinkColor NOTIFY frameChanged FINAL)
    Q_PROPERTY(bool bannerVisible READ bannerVisible NOTIFY frameChanged FINAL)
    Q_PROPERTY(QString message READ message NOTIFY frameChanged FINAL)
    Q_PROPERTY(bool messageUrgent READ messageUrgent NOTIFY frameChanged FINAL)
    Q_PROPERTY(double bannerOpacity READ bannerOpacity NOTIFY frameChanged FINAL)
    // The two phases, toggled every 0.6 s and every 0.15 s while their condition holds.
    Q_PROPERTY(bool flash READ flash NOTIFY frameChanged FINAL)
    Q_PROPERTY(bool blinkPhase READ blinkPhase NOTIFY frameChanged FINAL)

public:
    // First match wins, in this order.
    enum Mode { Blackout, Doors, Clock, Timer };
    Q_ENUM(Mode)

    static constexpr qint64 flashPeriodMs = 600;
    static constexpr qint64 blinkPeriodMs = 150;

    explicit StagePresenter(QObject *parent = nullptr);
    ~StagePresenter() override;

    TimerEngine *engine() const { return m_engine; }
    void setEngine(TimerEngine *engine);
    DisplayClock *clock() const { return m_clock; }
    void setClock(DisplayClock *clock);

    Mode mode() const { return m_frame.mode; }
    bool hasCue() const { return m_frame.hasCue; }
    QString cueName() const { return m_frame.cueName; }
    QString timeText() const { return m_frame.timeText; }
    QColor stateColor() const { return m_frame.stateColor; }
    double timeOpacity() const { return m_frame.timeOpacity; }
    double progress() const { return m_frame.progress; }
    bool frozen() const { return m_frame.frozen; }
    QString doorsText() const { return m_frame.doorsText; }
    bool blinkVisible() const { return m_frame.blinkVisible; }
    QColor blinkColor() const { return m_frame.blinkColor; }
    bool bannerVisible() const { return m_frame.bannerVisible; }
    QString message() const { return m_frame.message; }
    bool messageUrgent() const { return m_frame.messageUrgent; }
    double bannerOpacity() const { return m_frame.bannerOpacity; }
    bool flash() const { return m_flash; }
    bool blinkPhase() const { return m_blinkPhase; }

signals:
    void inputsChanged();
    void frameChanged();

private:
    struct Frame {
        Mode mode = Timer;
        bool hasCue = false;
        QString cueName;
        QString timeText;
        QColor stateColor;
        double timeOpacity = 1.0;
        double progress = 0;
        bool frozen = false;
        QString doorsText;
        bool blinkVisible = false;
        QColor blinkColor;
        bool bannerVisible = false;
        QString message;
        bool messageUrgent = false;
        double bannerOpacity = 1.0;
        bool flash = false;
        bool blinkPhase = false;

        bool operator==(const Frame &) const = default;
    };

    void onFlashTimer();
    void onBlinkTimer();
    void refresh();
    Frame compute() const;

    QPointer<TimerEngine> m_engine;
    QPointer<DisplayClock> m_clock;
    std::unique_ptr<ClockTimer> m_flashTimer;
    std::unique_ptr<ClockTimer> m_blinkTimer;
    bool m_flash = false;
    bool m_blinkPhase = false;
    Frame m_frame;
};
