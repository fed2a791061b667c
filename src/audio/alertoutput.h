#pragma once

#include <QAudioDevice>
#include <QAudioSink>
#include <QByteArray>
#include <QObject>
#include <QTimer>

// One audio output the alerts are played on, kept between alerts. The stream of the next alert
// is opened ahead of it and waits, connected and empty: when the alert comes, its first write
// fills the whole buffer the server granted (200 ms) and it starts at once, with none of the
// server's setting up left to do and nothing queued before it. Each stream plays one alert; a
// new alert cuts the one still sounding, and the stream of the one after is opened while it
// plays. Lives on the audio thread: opening a stream waits for the sound server.
class AlertOutput : public QObject
{
    Q_OBJECT

public:
    explicit AlertOutput(const QAudioDevice &device, QObject *parent = nullptr);
    ~AlertOutput() override;

    // Opens the next alert's stream, unless it is open and still usable. False when the output
    // cannot be opened.
    bool prepare();
    // 48 kHz 16-bit stereo PCM. False when the output cannot be opened.
    bool play(const QByteArray &pcm);
    // Cuts the alert still sounding, if any, and closes its stream now.
    void stop();
    QByteArray deviceId() const { return m_device.id(); }
    bool isSounding() const { return m_playing.sink != nullptr; }

private:
    // A sink, a child of this object, and the device it is written through. A QAudioSink is
    // never started twice: Qt 6.4's PulseAudio sink asks the server, at each start, for the
    // buffer it was granted at the previous one, and the server grants about three quarters of
    // it every time, until after a few alerts the buffer is too short to be fed without
    // dropouts.
    struct Stream {
        QAudioSink *sink = nullptr;
        QIODevice *io = nullptr;
    };

    void feed();
    // Whether the stream is open and the server still takes what is written to it: a stream
    // whose server went away writes nothing (and Qt 6.4 would leave the server's lock held).
    static bool isUsable(const Stream &stream);
    // Closes the stream now; its sink goes from the event loop (see stop()).
    static void close(Stream &stream);

    QAudioDevice m_device;
    Stream m_next;    // opened ahead, nothing written yet
    Stream m_playing; // the alert sounding, or played out and not closed yet
    QByteArray m_pcm;
    qsizetype m_written = 0;
    QTimer m_feeder;   // tops the stream's buffer up until the whole alert is written
    QTimer m_closer;   // closes the stream a while after the alert has played out
    QTimer m_preparer; // opens the next stream once play() has returned
};
