#include "splashcontroller.h"

#include "preferences.h"

#include <algorithm>
#include <cmath>

SplashController::SplashController(QObject *parent)
    : QObject(parent), m_duration(Preferences::splashDuration()), m_loadingText(steps().first())
{
}

SplashController::~SplashController() = default;

QStringList SplashController::steps()
{
    return {QStringLiteral("Initialisation…"), QStringLiteral("Chargement du moteur timer…"),
            QStringLiteral("Configuration réseau OSC…"), QStringLiteral("Préparation des sorties…"),
            QStringLiteral("Chargement des sessions…")};
}

void SplashController::setFlow(AppFlowState *flow)
{
    m_flow = flow;
    emit inputsChanged();
}

void SplashController::setClock(DisplayClock *clock)
{
    m_clock = clock;
    emit inputsChanged();
}

void SplashController::setSplashDuration(double seconds)
{
    m_duration = seconds;
    emit inputsChanged();
}

void SplashController::animateProgress()
{
    if (m_finished || m_timer || !m_clock)
        return;
    m_timer = m_clock->createTimer([this] { step(); });
    m_timer->start(stepMs);
}

void SplashController::step()
{
    const double duration = std::max(m_duration, 1.0);
    // Counted in whole steps, so that no rounding adds a step at the end.
    ++m_steps;
    m_progress = std::min(m_steps * (stepMs / 1000.0) / duration, 1.0);
    const QStringList all = steps();
    const int index = std::min<int>(int(all.size()) - 1, int(std::floor(m_progress * all.size())));
    m_loadingText = all[index];
    emit progressChanged();
    if (m_progress >= 1.0)
        finish();
    else
        m_timer->start(stepMs);
}

void SplashController::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    m_timer.reset();
    if (m_flow)
        m_flow->setStage(m_flow->stageAfterSplash());
    emit finishedChanged();
}
