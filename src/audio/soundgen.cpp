// Writes Kairon's alert sounds as WAV files into the folder given, at build time; the build
// then embeds them as resources.
#include "alertsynth.h"

#include <QAudioFormat>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QWaveDecoder>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    QAudioFormat format;
    format.setSampleRate(AlertSynth::sampleRate);
    format.setChannelCount(AlertSynth::channels);
    format.setSampleFormat(QAudioFormat::Int16);
    for (const QString &name : AlertSynth::names()) {
        QFile file(folder.filePath(name + QStringLiteral(".wav")));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file.fileName()));
            return 1;
        }
        QWaveDecoder wav(&file, format);
        const QByteArray pcm = AlertSynth::render(name);
        if (!wav.open(QIODevice::WriteOnly) || wav.write(pcm) != pcm.size()) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file.fileName()));
            return 1;
        }
        wav.close();
    }
    return 0;
}
