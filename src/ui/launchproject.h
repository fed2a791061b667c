#pragma once

#include "appflowstate.h"
#include "sessionstore.h"
#include "timerengine.h"

#include <QString>
#include <QStringList>

#include <optional>

// A project named on the command line (what a double-click in the file manager runs).
namespace LaunchProject {

// The project file among the program's arguments (the first one that is not an option).
std::optional<QString> fileArgument(const QStringList &arguments);

// Loads the project into the engine and makes the splash lead to the console. A file that
// cannot be read leaves the flow going to the library and gives the text of the toast that
// says so ("Projet illisible : " and the reason).
std::optional<QString> open(const QString &path, const SessionStore &store, TimerEngine &engine,
                            AppFlowState &flow);

} // namespace LaunchProject
