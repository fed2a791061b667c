#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

// With KAIRON_STARTUP_TRACE set, prints the milestones of start-up on the standard error as
// "kairon-startup <milestone> <nanoseconds since the Unix epoch>", for the start-up benchmark.
// Silent otherwise.
namespace StartupTrace {

void mark(const char *milestone);

} // namespace StartupTrace
