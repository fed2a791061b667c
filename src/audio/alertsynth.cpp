#include "alertsynth.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace AlertSynth {
namespace {

struct Partial {
    double ratio;     // of the note's frequency
    double amplitude; // relative
    double decay;     // time constant of the exponential decay, seconds
};

struct Note {
    double start;     // seconds
    double frequency; // Hz
};

struct Recipe {
    QString name;
    double length;   // seconds
    double peakDbfs; // level of the loudest sample
    double attack;   // seconds of raised-cosine onset
    std::vector<Note> notes;
    std::vector<Partial> partials; // shared by every note
};

const std::vector<Recipe> &recipes()
{
    static const std::vector<Recipe> all{
        {QStringLiteral("Tink"), 0.40, -9.0, 0.003, {{0.0, 1318.51}}, // E6
         {{1.0, 1.0, 0.090}, {2.0, 0.25, 0.050}, {3.01, 0.08, 0.030}}},
        {QStringLiteral("Ping"), 0.60, -5.0, 0.001, {{0.0, 1760.00}}, // A6
         {{1.0, 1.0, 0.170}, {2.0, 0.40, 0.080}, {4.2, 0.15, 0.030}}},
        {QStringLiteral("Basso"), 0.90, -4.0, 0.008, {{0.0, 220.00}}, // A3
         {{1.0, 1.0, 0.350}, {2.0, 0.50, 0.250}, {3.0, 0.30, 0.200}, {4.0, 0.15, 0.150}}},
        {QStringLiteral("Glass"), 0.85, -6.0, 0.002, {{0.0, 1567.98}, {0.12, 2093.00}}, // G6, C7
         {{1.0, 1.0, 0.250}, {2.76, 0.20, 0.080}, {5.4, 0.06, 0.030}}},
    };
    return all;
}

const Recipe *recipe(const QString &name)
{
    for (const Recipe &r : recipes()) {
        if (r.name == name)
            return &r;
    }
    return nullptr;
}

} // namespace

const QStringList &names()
{
    static const QStringList list = [] {
        QStringList l;
        for (const Recipe &r : recipes())
            l << r.name;
        return l;
    }();
    return list;
}

double lengthOf(const QString &name)
{
    const Recipe *r = recipe(name);
    return r ? r->length : 0;
}

double peakDbfsOf(const QString &name)
{
    const Recipe *r = recipe(name);
    return r ? r->peakDbfs : 0;
}

QByteArray render(const QString &name)
{
    const Recipe *r = recipe(name);
    if (!r)
        return {};
    const int frames = int(std::lround(r->length * sampleRate));
    const int fadeOut = sampleRate / 50; // 20 ms down to silence at the end
    std::vector<double> mono(frames, 0.0);
    for (const Note &note : r->notes) {
        const int first = int(std::lround(note.start * sampleRate));
        for (int i = first; i < frames; ++i) {
            const double t = double(i - first) / sampleRate;
            const double onset = t < r->attack ? 0.5 - 0.5 * std::cos(std::numbers::pi * t / r->attack)
                                               : 1.0;
            double sample = 0;
            for (const Partial &p : r->partials)
                sample += p.amplitude * std::exp(-t / p.decay)
                          * std::sin(2 * std::numbers::pi * note.frequency * p.ratio * t);
            mono[i] += onset * sample;
        }
    }
    for (int i = std::max(0, frames - fadeOut); i < frames; ++i)
        mono[i] *= 0.5 + 0.5 * std::cos(std::numbers::pi * (i - (frames - fadeOut)) / fadeOut);

    double loudest = 0;
    for (double v : mono)
        loudest = std::max(loudest, std::fabs(v));
    const double gain = loudest > 0 ? std::pow(10.0, r->peakDbfs / 20.0) * 32767.0 / loudest : 0;

    QByteArray pcm(frames * channels * 2, Qt::Uninitialized);
    auto *out = reinterpret_cast<qint16 *>(pcm.data());
    for (int i = 0; i < frames; ++i) {
        const auto value = qint16(std::lround(mono[i] * gain));
        for (int c = 0; c < channels; ++c)
            out[i * channels + c] = qToLittleEndian(value);
    }
    return pcm;
}

} // namespace AlertSynth
