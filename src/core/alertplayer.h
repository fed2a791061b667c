#pragma once

#include <QString>

// Plays the engine's alert sounds by name. Implementations return at once and never fail
// visibly: a sound that cannot be played is simply not heard.
class AlertPlayer
{
public:
    virtual ~AlertPlayer() = default;
    virtual void play(const QString &name) = 0;
};

namespace AlertSound {
inline QString warning() { return QStringLiteral("Tink"); } // the warning threshold is reached
inline QString danger() { return QStringLiteral("Ping"); }  // the danger threshold is reached
inline QString zero() { return QStringLiteral("Basso"); }   // a cue or the doors reach zero
inline QString attention() { return QStringLiteral("Glass"); } // urgent message, blink
} // namespace AlertSound
