#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Kairon's four alert sounds, synthesised from a few decaying partials each:
//   "Tink"  soft warning: a light bell, high and short;
//   "Ping"  danger: a sharper, brighter ping that rings longer;
//   "Basso" zero: a low, round tone with a slow decay;
//   "Glass" attention (urgent message, blink): a bright two-note chime.
// Each lasts under a second, starts and ends on silence (no click) and peaks well below full
// scale, so it never clips.
namespace AlertSynth {

inline constexpr int sampleRate = 48000;
inline constexpr int channels = 2;

const QStringList &names();

// Interleaved signed 16-bit little-endian stereo at 48 kHz; empty for an unknown name.
QByteArray render(const QString &name);

// The length in seconds and the peak level in dBFS each sound is made to.
double lengthOf(const QString &name);
double peakDbfsOf(const QString &name);

} // namespace AlertSynth
