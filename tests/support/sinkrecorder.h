#pragma once

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// Records what reaches one output of the test's PulseAudio server (its monitor, with parec) and
// measures it with sox.
class SinkRecorder
{
public:
    struct Measure {
        double peak = 0;          // largest magnitude, 1.0 being full scale
        double soundLength = 0;   // seconds from the first to the last audible sample
    };

    explicit SinkRecorder(const QString &sink) : m_file(m_dir.filePath(sink + QStringLiteral(".raw")))
    {
        m_parec.setStandardOutputFile(m_file);
        m_parec.start(QStringLiteral("parec"),
                      {QStringLiteral("-d"), sink + QStringLiteral(".monitor"),
                       QStringLiteral("--format=s16le"), QStringLiteral("--rate=48000"),
                       QStringLiteral("--channels=2"), QStringLiteral("--latency-msec=20")});
        if (!m_parec.waitForStarted())
            qFatal("parec did not start");
    }
    ~SinkRecorder() { stop(); }

    // Waits until the recording has run for `seconds` of audio.
    bool recordFor(double seconds)
    {
        const qint64 bytes = qint64(seconds * 48000) * 4;
        return QTest::qWaitFor([&] { return QFileInfo(m_file).size() >= bytes; }, 30000);
    }

    Measure stopAndMeasure()
    {
        stop();
        Measure m;
        m.peak = statValue({}, QStringLiteral("Maximum amplitude"));
        const double minimum = statValue({}, QStringLiteral("Minimum amplitude"));
        m.peak = std::max(m.peak, -minimum);
        // Trim the silence at both ends (below -50 dBFS), then read the length of what is left.
        m.soundLength = statValue({QStringLiteral("silence"), QStringLiteral("1"),
                                   QStringLiteral("0.0005"), QStringLiteral("0.3%"),
                                   QStringLiteral("reverse"), QStringLiteral("silence"),
                                   QStringLiteral("1"), QStringLiteral("0.0005"),
                                   QStringLiteral("0.3%"), QStringLiteral("reverse")},
                                  QStringLiteral("Length (seconds)"));
        return m;
    }

private:
    void stop()
    {
        if (m_parec.state() == QProcess::NotRunning)
            return;
        ::kill(pid_t(m_parec.processId()), SIGINT); // parec flushes what it holds on SIGINT
        if (!m_parec.waitForFinished(5000))
            m_parec.kill();
    }

    double statValue(const QStringList &effects, const QString &label) const
    {
        QProcess sox;
        sox.start(QStringLiteral("sox"),
                  QStringList{QStringLiteral("-t"), QStringLiteral("raw"), QStringLiteral("-r"),
                              QStringLiteral("48000"), QStringLiteral("-e"), QStringLiteral("signed"),
                              QStringLiteral("-b"), QStringLiteral("16"), QStringLiteral("-c"),
                              QStringLiteral("2"), m_file, QStringLiteral("-n")}
                      + effects + QStringList{QStringLiteral("stat")});
        sox.waitForFinished(10000);
        const QString report = QString::fromUtf8(sox.readAllStandardError());
        const QRegularExpression line(QRegularExpression::escape(label)
                                      + QStringLiteral(":\\s*(-?[0-9.]+)"));
        const QRegularExpressionMatch match = line.match(report);
        return match.hasMatch() ? match.captured(1).toDouble() : 0.0;
    }

    QTemporaryDir m_dir;
    QString m_file;
    QProcess m_parec;
};

// Runs pactl against the test's server and returns its output.
inline QString pactl(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("pactl"), arguments);
    process.waitForFinished(10000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}
