#include "launchproject.h"

namespace LaunchProject {

std::optional<QString> fileArgument(const QStringList &arguments)
{
    for (const QString &argument : arguments.mid(1))
        if (!argument.startsWith(u'-'))
            return argument;
    return std::nullopt;
}

std::optional<QString> open(const QString &path, const SessionStore &store, TimerEngine &engine,
                            AppFlowState &flow, ToastCenter &toasts)
{
    QString error;
    const std::optional<TimerSession> session = store.read(path, &error);
    if (!session) {
        flow.setStageAfterSplash(AppFlowState::Sessions);
        const QString text = QStringLiteral("Projet illisible : ") + error;
        // Shown on arrival at the library: during the splash it would be gone unseen.
        QObject::connect(
            &flow, &AppFlowState::stageChanged, &toasts,
            [&flow, &toasts, text] {
                if (flow.stage() == AppFlowState::Sessions)
                    toasts.showError(text);
            },
            Qt::SingleShotConnection);
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
