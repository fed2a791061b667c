#pragma once

#include "audiooutputdevice.h"

#include <QList>
#include <QMediaDevices>
#include <QObject>
#include <QTimer>

// Announces changes of the list of audio outputs. Qt 6.4 does not report outputs coming and
// going on PulseAudio, so the list is also compared on a timer.
class AudioDeviceWatcher : public QObject
{
    Q_OBJECT

public:
    explicit AudioDeviceWatcher(QObject *parent = nullptr);

    // Starts watching; later calls do nothing. The settings window calls it when first shown.
    void startListeningForChanges();
    bool isListening() const { return m_listening; }

    static constexpr int pollIntervalMs = 500;

signals:
    void audioDevicesChanged();

private:
    void compare();

    bool m_listening = false;
    QMediaDevices m_mediaDevices;
    QTimer m_poll;
    QList<AudioOutputDevice> m_known;
};
