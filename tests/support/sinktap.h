#pragma once

#include <QByteArray>
#include <QEventLoop>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <csignal>
#include <deque>

// Records one output of the test's PulseAudio server into memory as it plays (48 kHz 16-bit
// stereo, from its monitor, with parec), for exact analysis of the samples while the test runs.
// An idle null sink renders about two seconds ahead, which would leave the start of each sound
// out of the recording: a silent stream with a 20 ms latency keeps the output running in real
// time for as long as the tap lives. Zeros mixed with a sound leave its samples as they are.
// Each piece of the recording is stamped with the time it reached this process: the output had
// taken its frames by then (see takenBy()).
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
        // Read as soon as it comes, whatever the test waits on, for the stamps to be close.
        m_reader = QObject::connect(&m_parec, &QProcess::readyReadStandardOutput,
                                    [this] { this->pcm(); });
    }

    ~SinkTap()
    {
        QObject::disconnect(m_reader);
        for (QProcess *process : {&m_parec, &m_keepAlive}) {
            ::kill(pid_t(process->processId()), SIGTERM);
            if (!process->waitForFinished(5000))
                process->kill();
        }
    }

    // Everything recorded so far.
    const QByteArray &pcm()
    {
        const QByteArray piece = m_parec.readAllStandardOutput();
        if (!piece.isEmpty()) {
            m_pcm += piece;
            m_arrivals.push_back({m_dropped + m_pcm.size() / 4, steadyNs()});
        }
        return m_pcm;
    }

    // Forgets the first `frames` frames of the recording, for a long one to stay small. Frames
    // are then counted from the first one kept.
    void drop(qsizetype frames)
    {
        pcm();
        m_pcm.remove(0, frames * 4);
        m_dropped += frames;
        while (!m_arrivals.empty() && m_arrivals.front().endFrame <= m_dropped)
            m_arrivals.pop_front();
    }

    // A time, on steady_clock in nanoseconds, by which the output had taken frame `frame` of
    // pcm(): when the piece holding it reached this process. Later than the output by the
    // delivery from the output's monitor to here (parec's 10 ms pieces, and the wake-up).
    qint64 takenBy(qsizetype frame) const
    {
        for (const Arrival &arrival : m_arrivals) {
            if (arrival.endFrame > m_dropped + frame)
                return arrival.ns;
        }
        return -1;
    }

    // Runs the event loop until `done` holds, checked as each piece of the recording comes, or
    // until `timeoutMs` have passed. Unlike QTest::qWaitFor, it never sleeps: each piece is
    // read, and stamped, the moment it comes.
    template <typename Predicate>
    bool waitFor(Predicate done, int timeoutMs)
    {
        if (done())
            return true;
        QEventLoop loop;
        QTimer deadline;
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
        QObject::connect(&m_parec, &QProcess::readyReadStandardOutput, &loop, [&] {
            if (done())
                loop.quit();
        });
        deadline.start(timeoutMs);
        loop.exec();
        return done();
    }

    static qint64 steadyNs()
    {
        using namespace std::chrono;
        return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
    }

    // Waits until the recording holds `seconds` of audio.
    bool recordFor(double seconds)
    {
        const qsizetype bytes = qsizetype(seconds * 48000) * 4;
        return QTest::qWaitFor([&] { return pcm().size() >= bytes; }, 10000);
    }

private:
    struct Arrival {
        qint64 endFrame; // counted from the start of the recording, dropped frames included
        qint64 ns;
    };

    QProcess m_keepAlive;
    QProcess m_parec;
    QMetaObject::Connection m_reader;
    QByteArray m_pcm;
    qint64 m_dropped = 0; // frames forgotten by drop()
    std::deque<Arrival> m_arrivals; // of the pieces still held
};
