#pragma once

#include <QAudioDevice>
#include <QAudioSink>
#include <QByteArray>
#include <QObject>
#include <QTimer>

// One audio output the alerts are played on, kept between alerts. A new alert cuts the one
// still sounding. Lives on the audio thread: opening a stream waits for the sound server.
class AlertOutput : public QObject
{
    Q_OBJECT

public:
    explicit AlertOutput(const QAudioDevice &device, QObject *parent = nullptr);
    ~AlertOutput() override;

    // 48 kHz 16-bit stereo PCM. False when the output cannot be opened.
    bool play(const QByteArray &pcm);
    QByteArray deviceId() const { return m_device.id(); }
    bool isSounding() const { return m_stream != nullptr; }

private:
    void feed();

    QAudioDevice m_device;
    QAudioSink m_sink;
    QIODevice *m_stream = nullptr;
    QByteArray m_pcm;
    qsizetype m_written = 0;
    QTimer m_feeder; // tops the stream's buffer up until the whole alert is written
    QTimer m_closer; // closes the stream a while after the alert has played out
};
