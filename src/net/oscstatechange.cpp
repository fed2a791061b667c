#include "oscstatechange.h"

#include "timerengine.h"

namespace OSCStateChange {

namespace {
qint32 flag(bool on) { return on ? 1 : 0; }
} // namespace

QList<OSCArgument> ShowState::arguments() const
{
    return {flag(running), flag(paused), qint32(cueNumber), cueName,
            flag(blackout), flag(freeze), flag(clockMode)};
}

QList<OSCArgument> OnAir::arguments() const
{
    return {text, flag(urgent)};
}

ShowState showStateOf(const TimerEngine &engine)
{
    ShowState state;
    state.running = engine.isRunning();
    state.paused = engine.isPaused();
    if (const std::optional<int> index = engine.activeCueIndex()) {
        state.cueNumber = *index + 1;
        state.cueName = engine.session().cues.at(*index).name;
    }
    state.blackout = engine.blackout();
    state.freeze = engine.freeze();
    state.clockMode = engine.clockMode();
    return state;
}

OnAir onAirOf(const TimerEngine &engine)
{
    const std::optional<QString> text = engine.currentMessage();
    return OnAir{text.value_or(QString()), text.has_value() && engine.messageUrgent()};
}

} // namespace OSCStateChange
