#pragma once

#include <QAudioDevice>
#include <QAudioSink>
#include <QByteArray>
#include <QObject>
#include <QTimer>

// One audio output the alerts are played on, kept between alerts. Each alert gets a stream of
// its own, opened afresh; a new alert cuts the one still sounding. Lives on the audio thread:
// opening a stream waits for the sound server.
class AlertOutput : public QObject
{
    Q_OBJECT

public:
    explicit AlertOutput(const QAudioDevice &device, QObject *parent = nullptr);
    ~AlertOutput() override;

    // 48 kHz 16-bit stereo PCM. False when the output cannot be opened.
    bool play(const QByteArray &pcm);
    // Cuts the alert still sounding, if any, and closes its stream now.
    void stop();
    QByteArray deviceId() const { return m_device.id(); }
    bool isSounding() const { return m_sink != nullptr; }

private:
    void feed();

    QAudioDevice m_device;
    // The current alert's sink, a child of this object. A QAudioSink is never started twice:
    // Qt 6.4's PulseAudio sink asks the server, at each start, for the buffer it was granted at
    // the previous one, and the server grants about three quarters of it every time, until after
    // a few alerts the buffer is too short to be fed without dropouts.
    QAudioSink *m_sink = nullptr;
    QIODevice *m_stream = nullptr;
    QByteArray m_pcm;
    qsizetype m_written = 0;
    QTimer m_feeder; // tops the stream's buffer up until the whole alert is written
    QTimer m_closer; // closes the stream a while after the alert has played out
};
