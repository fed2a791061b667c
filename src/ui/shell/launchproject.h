#pragma once

#include "appflowstate.h"
#include "sessionstore.h"
#include "timerengine.h"
#include "toastcenter.h"

#include <QString>
#include <QStringList>

#include <optional>

// A project named on the command line (what a double-click in the file manager runs).
namespace LaunchProject {

// Shows `text` for 5 s once the splash has led to `stage`: during the splash it would be gone
// unseen.
void toastOnArrival(AppFlowState &flow, ToastCenter &toasts, AppFlowState::Stage stage,
                    const QString &text, ToastMessage::Kind kind);

// Loads the project into the engine and makes the splash lead to the console. A file that
// cannot be read leaves the flow going to the library, where the error toast "Projet
// illisible : " and the reason greets the operator; that text is returned.
std::optional<QString> open(const QString &path, const SessionStore &store, TimerEngine &engine,
                            AppFlowState &flow, ToastCenter &toasts);

} // namespace LaunchProject
