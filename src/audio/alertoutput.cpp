#include "alertoutput.h"

#include "alertsynth.h"

#include <QAudioFormat>

#include <utility>

namespace {

QAudioFormat alertFormat()
{
    QAudioFormat format;
    format.setSampleRate(AlertSynth::sampleRate);
    format.setChannelCount(AlertSynth::channels);
    format.setSampleFormat(QAudioFormat::Int16);
    return format;
}

constexpr qint64 bytesPerSecond = AlertSynth::sampleRate * AlertSynth::channels * 2;

} // namespace

AlertOutput::AlertOutput(const QAudioDevice &device, QObject *parent)
    : QObject(parent), m_device(device)
{
    m_feeder.setInterval(10);
    connect(&m_feeder, &QTimer::timeout, this, &AlertOutput::feed);
    // Once the alert has played out, its stream is closed rather than kept open and idle. The
    // sink's own idle state comes when the data has reached the server, not the speakers.
    m_closer.setSingleShot(true);
    connect(&m_closer, &QTimer::timeout, this, &AlertOutput::stop);
    m_preparer.setSingleShot(true);
    m_preparer.setInterval(0);
    connect(&m_preparer, &QTimer::timeout, this, &AlertOutput::prepare);
}

AlertOutput::~AlertOutput()
{
    // Deleting a PulseAudio sink runs the pending events of this thread (Qt 6.4): the timers
    // are stopped first, so that none of them calls into this half-destroyed output.
    m_feeder.stop();
    m_closer.stop();
    m_preparer.stop();
    for (Stream *stream : {&m_playing, &m_next}) {
        if (stream->sink) {
            stream->sink->stop();
            delete std::exchange(stream->sink, nullptr);
        }
    }
}

bool AlertOutput::prepare()
{
    if (isUsable(m_next))
        return true;
    close(m_next);
    auto *sink = new QAudioSink(m_device, alertFormat(), this);
    QIODevice *io = sink->start();
    if (!io || sink->error() != QAudio::NoError) {
        sink->deleteLater();
        return false;
    }
    m_next = {sink, io};
    return true;
}

bool AlertOutput::play(const QByteArray &pcm)
{
    stop();
    if (!prepare()) // opened now, when the stream opened ahead has gone with its server
        return false;
    m_playing = std::exchange(m_next, Stream());
    m_pcm = pcm;
    m_written = 0;
    feed();
    if (m_written < m_pcm.size())
        m_feeder.start();
    m_closer.start(int(m_pcm.size() * 1000 / bytesPerSecond) + 2000);
    m_preparer.start();
    return true;
}

void AlertOutput::stop()
{
    m_feeder.stop();
    m_closer.stop();
    close(m_playing);
}

bool AlertOutput::isUsable(const Stream &stream)
{
    // An open stream that its server has failed reports no room at all (-1).
    return stream.sink && stream.sink->state() != QAudio::StoppedState && stream.sink->bytesFree() > 0;
}

void AlertOutput::close(Stream &stream)
{
    if (!stream.sink)
        return;
    stream.sink->stop(); // closes the stream at once
    // Deleting a PulseAudio sink runs the pending events of this thread (Qt 6.4), which may
    // hold the next alert: the sink goes from the event loop, never from inside play().
    stream.sink->deleteLater();
    stream = Stream();
}

void AlertOutput::feed()
{
    if (!m_playing.sink)
        return;
    const qsizetype free = m_playing.sink->bytesFree();
    if (free < 0) { // the server failed the stream: nothing more can be written to it
        stop();
        return;
    }
    const qsizetype room = std::min<qsizetype>(free, m_pcm.size() - m_written);
    if (room > 0) {
        const qint64 n = m_playing.io->write(m_pcm.constData() + m_written, room);
        if (n > 0)
            m_written += n;
    }
    if (m_written == m_pcm.size())
        m_feeder.stop();
}
