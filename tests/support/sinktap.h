#pragma once

#include <QByteArray>
#include <QProcess>
#include <QTest>

#include <csignal>

// Records one output of the test's PulseAudio server into memory as it plays (48 kHz 16-bit
// stereo, from its monitor, with parec), for exact analysis of the samples while the test runs.
// An idle null sink renders about two seconds ahead, which would leave the start of each sound
// out of the recording: a silent stream with a 20 ms latency keeps the output running in real
// time for as long as the tap lives. Zeros mixed with a sound leave its samples as they are.
class SinkTap
{
public:
    explicit SinkTap(const QString &sink)
    {
        const QStringList pcm{QStringLiteral("--format=s16le"), QStringLiteral("--rate=48000"),
                              QStringLiteral("--channels=2"), QStringLiteral("--latency-msec=20")};
        m_keepAlive.setStandardInputFile(QStringLiteral("/dev/zero"));
        m_keepAlive.setStandardOutputFile(QProcess::nullDevice());
        m_keepAlive.start(QStringLiteral("pacat"), QStringList{QStringLiteral("-d"), sink} + pcm);
        m_parec.start(QStringLiteral("parec"),
                      QStringList{QStringLiteral("-d"), sink + QStringLiteral(".monitor")} + pcm);
        if (!m_keepAlive.waitForStarted() || !m_parec.waitForStarted())
            qFatal("pacat or parec did not start");
    }

    ~SinkTap()
    {
        for (QProcess *process : {&m_parec, &m_keepAlive}) {
            ::kill(pid_t(process->processId()), SIGTERM);
            if (!process->waitForFinished(5000))
                process->kill();
        }
    }

    // Everything recorded so far.
    const QByteArray &pcm()
    {
        m_pcm += m_parec.readAllStandardOutput();
        return m_pcm;
    }

    // Forgets the first `frames` frames of the recording, for a long one to stay small.
    void drop(qsizetype frames)
    {
        pcm();
        m_pcm.remove(0, frames * 4);
    }

    // Waits until the recording holds `seconds` of audio.
    bool recordFor(double seconds)
    {
        const qsizetype bytes = qsizetype(seconds * 48000) * 4;
        return QTest::qWaitFor([&] { return pcm().size() >= bytes; }, 10000);
    }

private:
    QProcess m_keepAlive;
    QProcess m_parec;
    QByteArray m_pcm;
};
