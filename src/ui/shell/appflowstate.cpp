#include "appflowstate.h"

void AppFlowState::setStage(Stage stage)
{
    if (m_stage == stage)
        return;
    m_previousStage = m_stage;
    m_stage = stage;
    emit stageChanged();
}

void AppFlowState::setStageAfterSplash(Stage stage)
{
    if (m_stageAfterSplash == stage)
        return;
    m_stageAfterSplash = stage;
    emit stageAfterSplashChanged();
}
