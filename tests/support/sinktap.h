#pragma once

#include <QByteArray>
#include <QEventLoop>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <csignal>
#include <limits>

// Records one output of the test's PulseAudio server into memory as it plays (48 kHz 16-bit
// stereo, from its monitor, with parec), for exact analysis of the samples while the test runs.
// An idle null sink renders about two seconds ahead, which would leave the start of each sound
// out of the recording: a silent stream with a 20 ms latency keeps the output running in real
// time for as long as the tap lives. Zeros mixed with a sound leave its samples as they are.
// Its frames can also be placed on the monotonic clock, on the output's own clock (see
// startClock()).
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
        // Read as soon as it comes, whatever the test waits on, for the clock to be close.
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
            // The output had taken the last frame that came by now, so frame 0 by now less the
            // frames since: the earliest such bound is the closest.
            if (m_clockStarted)
                m_frameZeroNs = std::min(m_frameZeroNs, steadyNs() - frameNs(m_dropped + m_pcm.size() / 4));
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
    }

    // Places the frames on the output's clock from the pieces that come from now on: call it
    // once the output runs at the tap's latency, a few hundred milliseconds after the tap
    // started (before that, the output may deliver silence rendered ahead).
    void startClock() { m_clockStarted = true; }

    // When frame `frame` of pcm() was due at the output, on steady_clock in nanoseconds, by the
    // output's own clock: it takes exactly 48,000 frames a second, so frame n is due n/48000 s
    // after frame 0, which was due by the time each piece since startClock() came. Unlike the
    // time a piece reached this process, this does not grow when this process or parec wake
    // late. The output takes each frame ahead of that clock by at most its configured latency
    // (5 ms with the tap's stream): adding it gives a time by which the output surely had the
    // frame. -1 before any piece has come since startClock().
    qint64 nanosecondsAt(qsizetype frame) const
    {
        if (m_frameZeroNs == std::numeric_limits<qint64>::max())
            return -1;
        return m_frameZeroNs + frameNs(m_dropped + frame);
    }

    // Runs the event loop until `done` holds, checked as each piece of the recording comes, or
    // until `timeoutMs` have passed. Unlike QTest::qWaitFor, it never sleeps: each piece is
    // read the moment it comes.
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
    static qint64 frameNs(qint64 frames) { return frames * 1'000'000'000 / 48000; }

    QProcess m_keepAlive;
    QProcess m_parec;
    QMetaObject::Connection m_reader;
    QByteArray m_pcm;
    qint64 m_dropped = 0; // frames forgotten by drop()
    bool m_clockStarted = false;
    qint64 m_frameZeroNs = std::numeric_limits<qint64>::max(); // on steady_clock
};
