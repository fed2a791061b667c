#include "audiodevicewatcher.h"

#include "audiodevicemanager.h"

AudioDeviceWatcher::AudioDeviceWatcher(QObject *parent) : QObject(parent)
{
    m_poll.setInterval(pollIntervalMs);
    connect(&m_poll, &QTimer::timeout, this, &AudioDeviceWatcher::compare);
}

void AudioDeviceWatcher::startListeningForChanges()
{
    if (m_listening)
        return;
    m_listening = true;
    m_known = AudioDeviceManager::outputDevices();
    connect(&m_mediaDevices, &QMediaDevices::audioOutputsChanged, this,
            &AudioDeviceWatcher::compare);
    m_poll.start();
}

void AudioDeviceWatcher::compare()
{
    QList<AudioOutputDevice> now = AudioDeviceManager::outputDevices();
    if (now == m_known)
        return;
    m_known = std::move(now);
    emit audioDevicesChanged();
}
