#pragma once

#include "appflowstate.h"
#include "displayclock.h"

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QStringList>

#include <memory>

// The start-up splash: a progress that fills in `splashDuration` seconds (one at least) while
// five loading texts follow one another in equal fifths, then hands over to the next stage of
// the flow. A click finishes it at once; it finishes only once.
class SplashController : public QObject
{
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(AppFlowState *flow READ flow WRITE setFlow NOTIFY inputsChanged FINAL)
    Q_PROPERTY(DisplayClock *clock READ clock WRITE setClock NOTIFY inputsChanged FINAL)
    // Seconds; the stored preference (10 when never stored) unless set otherwise.
    Q_PROPERTY(double splashDuration READ splashDuration WRITE setSplashDuration
                   NOTIFY inputsChanged FINAL)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged FINAL) // 0…1
    Q_PROPERTY(QString loadingText READ loadingText NOTIFY progressChanged FINAL)
    Q_PROPERTY(bool finished READ finished NOTIFY finishedChanged FINAL)

public:
    static constexpr qint64 stepMs = 50;

    explicit SplashController(QObject *parent = nullptr);
    ~SplashController() override;

    static QStringList steps();

    AppFlowState *flow() const { return m_flow; }
    void setFlow(AppFlowState *flow);
    DisplayClock *clock() const { return m_clock; }
    void setClock(DisplayClock *clock);
    double splashDuration() const { return m_duration; }
    void setSplashDuration(double seconds);
    double progress() const { return m_progress; }
    QString loadingText() const { return m_loadingText; }
    bool finished() const { return m_finished; }

    // Starts the progress (when the splash appears).
    Q_INVOKABLE void animateProgress();
    // Hands over to the next stage; a second call changes nothing.
    Q_INVOKABLE void finish();

signals:
    void inputsChanged();
    void progressChanged();
    void finishedChanged();

private:
    void step();

    QPointer<AppFlowState> m_flow;
    QPointer<DisplayClock> m_clock;
    std::unique_ptr<ClockTimer> m_timer;
    double m_duration;
    double m_progress = 0;
    int m_steps = 0;
    QString m_loadingText;
    bool m_finished = false;
};
