#include "startuptrace.h"

#include <chrono>
#include <cstdio>

namespace StartupTrace {

void mark(const char *milestone)
{
    static const bool enabled = qEnvironmentVariableIsSet("KAIRON_STARTUP_TRACE");
    if (!enabled)
        return;
    using namespace std::chrono;
    const auto ns = duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
    std::fprintf(stderr, "kairon-startup %s %lld\n", milestone, static_cast<long long>(ns));
}

} // namespace StartupTrace
