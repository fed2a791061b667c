#include "alertoutput.h"

#include "alertsynth.h"

#include <QAudioFormat>

namespace {

QAudioFormat alertFormat()
{
    QAudioFormat format;
    format.setSampleRate(AlertSynth::sampleRate);
    format.setChannelCount(AlertSynth::channels);
    format.setSampleFormat(QAudioFormat::Int16);
    return format;
}

} // namespace

AlertOutput::AlertOutput(const QAudioDevice &device, QObject *parent)
    : QObject(parent), m_device(device)
{
    m_feeder.setInterval(10);
    connect(&m_feeder, &QTimer::timeout, this, &AlertOutput::feed);
    // Once the alert has played out, the stream is closed rather than kept open and idle. The
    // sink's own idle state comes when the data has reached the server, not the speakers.
    m_closer.setSingleShot(true);
    connect(&m_closer, &QTimer::timeout, this, &AlertOutput::stop);
}

AlertOutput::~AlertOutput()
{
    stop();
}

bool AlertOutput::play(const QByteArray &pcm)
{
    stop();
    m_pcm = pcm;
    m_written = 0;
    m_sink = new QAudioSink(m_device, alertFormat(), this);
    m_stream = m_sink->start();
    if (!m_stream || m_sink->error() != QAudio::NoError) {
        stop();
        return false;
    }
    feed();
    if (m_written < m_pcm.size())
        m_feeder.start();
    const qint64 playMs = m_pcm.size() * 1000 / (AlertSynth::sampleRate * AlertSynth::channels * 2);
    m_closer.start(int(playMs) + 2000);
    return true;
}

void AlertOutput::stop()
{
    m_feeder.stop();
    m_closer.stop();
    if (!m_sink)
        return;
    m_sink->stop(); // closes the stream at once
    // Deleting a PulseAudio sink runs the pending events of this thread (Qt 6.4), which may
    // hold the next alert: the sink goes from the event loop, never from inside play().
    m_sink->deleteLater();
    m_sink = nullptr;
    m_stream = nullptr;
}

void AlertOutput::feed()
{
    if (!m_stream)
        return;
    const qsizetype room = std::min<qsizetype>(m_sink->bytesFree(), m_pcm.size() - m_written);
    if (room > 0) {
        const qint64 n = m_stream->write(m_pcm.constData() + m_written, room);
        if (n > 0)
            m_written += n;
    }
    if (m_written == m_pcm.size())
        m_feeder.stop();
}
