// Any bytes through the recovery file's reader, and what it reads resumed into a running
// engine. A state that reads must write back to a file that reads as the same state, and
// resuming any of them, then letting the clock run, keeps the engine's derived values in range.
#include "alertplayer.h"
#include "fuzzcheck.h"
#include "livestate.h"
#include "manualclock.h"
#include "timerengine.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

class Silence final : public AlertPlayer
{
public:
    void play(const QString &) override {}
};

TimerSession show()
{
    TimerSession session;
    session.id = QUuid::fromString(QStringLiteral("{6f1c2b3a-0d4e-4f5a-8b6c-7d8e9fa0b1c2}"));
    for (int i = 0; i < 3; ++i) {
        Cue cue;
        cue.name = QStringLiteral("Cue %1").arg(i + 1);
        cue.duration = 600;
        session.cues << cue;
    }
    return session;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<LiveState> state = LiveStateFile::decode(bytes);
    if (!state)
        return 0;

    const QByteArray written = LiveStateFile::encode(*state);
    QString error;
    const std::optional<LiveState> reread = LiveStateFile::decode(written, &error);
    FUZZ_CHECK(reread, error, written);
    FUZZ_CHECK(*reread == *state, written);

    static const QDateTime launch(QDate(2026, 11, 21), QTime(20, 0), QTimeZone("Europe/Paris"));
    ManualClock clock(launch, QTimeZone("Europe/Paris"));
    Silence silence;
    TimerEngine engine(clock, silence);
    TimerSession session = show();
    if (state->activeCueID && !state->activeCueIndex)
        session.cues[1].id = *state->activeCueID;
    engine.loadSession(session);
    engine.resumeLiveState(*state);
    clock.advance(std::chrono::seconds(2));
    const std::optional<int> active = engine.activeCueIndex();
    FUZZ_CHECK(!active || (*active >= 0 && *active < 3), *active, written);
    FUZZ_CHECK(engine.isRunning() || !engine.isPaused(), written);
    FUZZ_CHECK(std::isfinite(engine.remaining()) && std::isfinite(engine.totalOvertime()), written);
    engine.next();
    engine.stop();
    return 0;
}
