#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <algorithm>
#include <optional>

// Exact measures of interleaved 16-bit stereo PCM at 48 kHz, as the alerts are made and as an
// output's monitor records them. A silent frame is one whose two samples are exactly zero: what
// a null sink renders where no stream gives it anything, a dropout included.
namespace PcmScan {

inline constexpr int rate = 48000;
inline constexpr int channels = 2;
// Runs of silent frames at least this long inside a sound are gaps: 2 ms. A synthesised sound
// rounds to zero on a few frames at most, where it has decayed, so it never holds one of its own.
inline constexpr qsizetype minGapFrames = rate / 500;

struct Sound {
    qsizetype first = -1;       // frame of the first non-silent frame
    qsizetype last = -1;        // frame of the last non-silent frame
    qsizetype gaps = 0;         // runs of at least minGapFrames silent frames between them
    qsizetype longestGap = 0;   // frames, of any run of silence between them
    qsizetype silentFrames = 0; // all the silent frames between them

    bool isEmpty() const { return first < 0; }
    double seconds() const { return isEmpty() ? 0.0 : double(last - first + 1) / rate; }
    double longestGapMs() const { return longestGap * 1000.0 / rate; }
};

inline qsizetype frameCount(const QByteArray &pcm)
{
    return pcm.size() / qsizetype(channels * sizeof(qint16));
}

inline bool isSilent(const QByteArray &pcm, qsizetype frame)
{
    const auto *samples = reinterpret_cast<const qint16 *>(pcm.constData()) + frame * channels;
    return samples[0] == 0 && samples[1] == 0;
}

// The sound held by frames [from, to): its ends and the silences inside it.
inline Sound measure(const QByteArray &pcm, qsizetype from = 0, qsizetype to = -1)
{
    if (to < 0 || to > frameCount(pcm))
        to = frameCount(pcm);
    Sound sound;
    qsizetype run = 0; // silent frames since the last non-silent one
    for (qsizetype frame = from; frame < to; ++frame) {
        if (isSilent(pcm, frame)) {
            ++run;
            continue;
        }
        if (sound.isEmpty()) {
            sound.first = frame;
        } else if (run > 0) {
            sound.silentFrames += run;
            sound.longestGap = std::max(sound.longestGap, run);
            if (run >= minGapFrames)
                ++sound.gaps;
        }
        sound.last = frame;
        run = 0;
    }
    return sound;
}

// The first sound that starts at or after frame `from` and is over, that is followed by at
// least `closingFrames` silent frames; nothing while the recording has not got that far.
inline std::optional<Sound> nextSound(const QByteArray &pcm, qsizetype from, qsizetype closingFrames)
{
    const qsizetype frames = frameCount(pcm);
    qsizetype first = from;
    while (first < frames && isSilent(pcm, first))
        ++first;
    qsizetype run = 0;
    for (qsizetype frame = first; frame < frames; ++frame) {
        run = isSilent(pcm, frame) ? run + 1 : 0;
        if (run == closingFrames)
            return measure(pcm, first, frame + 1);
    }
    return std::nullopt;
}

} // namespace PcmScan
