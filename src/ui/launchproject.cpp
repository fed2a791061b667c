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
                            AppFlowState &flow)
{
    QString error;
    const std::optional<TimerSession> session = store.read(path, &error);
    if (!session) {
        flow.setStageAfterSplash(AppFlowState::Sessions);
        return QStringLiteral("Projet illisible : ") + error;
    }
    engine.loadSession(*session);
    flow.setStageAfterSplash(AppFlowState::Workspace);
    return std::nullopt;
}

} // namespace LaunchProject
