#include "alertrouter.h"

#include "audiodevicemanager.h"

#include <QFile>
#include <QMediaDevices>
#include <QWaveDecoder>

QByteArray AlertRouter::sound(const QString &name)
{
    const auto cached = m_sounds.constFind(name);
    if (cached != m_sounds.cend())
        return *cached;
    QByteArray pcm;
    QFile file(QStringLiteral(":/sounds/") + name + QStringLiteral(".wav"));
    if (file.open(QIODevice::ReadOnly)) {
        QWaveDecoder wav(&file);
        if (wav.open(QIODevice::ReadOnly))
            pcm = wav.readAll();
    }
    m_sounds.insert(name, pcm);
    return pcm;
}

void AlertRouter::play(const QString &name, const QString &outputUID)
{
    const QByteArray pcm = sound(name);
    if (pcm.isEmpty())
        return;
    if (outputUID.isEmpty()) {
        playOnSystemOutput(pcm);
        return;
    }
    const QAudioDevice device = AudioDeviceManager::platformDevice(outputUID);
    if (device.isNull()) {
        // The chosen output is unplugged: fall back until it comes back.
        playOnSystemOutput(pcm);
        return;
    }
    if (!m_routed || m_routedUID != outputUID) {
        retire(m_routed); // the output of the previous choice
        m_routed = std::make_unique<AlertOutput>(device);
        m_routedUID = outputUID;
    }
    if (!m_routed->play(pcm))
        playOnSystemOutput(pcm);
}

bool AlertRouter::isSounding() const
{
    return (m_routed && m_routed->isSounding()) || (m_system && m_system->isSounding());
}

void AlertRouter::playOnSystemOutput(const QByteArray &pcm)
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull())
        return;
    if (!m_system || m_system->deviceId() != device.id()) {
        retire(m_system);
        m_system = std::make_unique<AlertOutput>(device);
    }
    m_system->play(pcm);
}

void AlertRouter::retire(std::unique_ptr<AlertOutput> &output)
{
    if (!output)
        return;
    output->stop();
    // Its sinks are deleted with it, which runs this thread's pending events (see AlertOutput):
    // from the event loop, not from inside play().
    output.release()->deleteLater();
}
