#include "launchproject.h"

namespace LaunchProject {

void toastOnArrival(AppFlowState &flow, ToastCenter &toasts, AppFlowState::Stage stage,
                    const QString &text, ToastMessage::Kind kind)
{
    QObject::connect(
        &flow, &AppFlowState::stageChanged, &toasts,
        [&flow, &toasts, stage, text, kind] {
            if (flow.stage() == stage)
                toasts.show(text, kind, ToastCenter::errorSeconds);
        },
        Qt::SingleShotConnection);
}

std::optional<QString> open(const QString &path, const SessionStore &store, TimerEngine &engine,
                            AppFlowState &flow, ToastCenter &toasts)
{
    QString error;
    const std::optional<TimerSession> session = store.read(path, &error);
    if (!session) {
        flow.setStageAfterSplash(AppFlowState::Sessions);
        const QString text = QStringLiteral("Projet illisible : ") + error;
        toastOnArrival(flow, toasts, AppFlowState::Sessions, text, ToastMessage::Error);
        return text;
    }
    // A library file not named after its show becomes the show's own file (one file per show).
    if (!store.adopt(path, *session, &error))
        toasts.showError(QStringLiteral("Échec de sauvegarde : ") + error);
    engine.loadSession(*session);
    flow.setStageAfterSplash(AppFlowState::Workspace);
    return std::nullopt;
}

} // namespace LaunchProject
