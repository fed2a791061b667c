#include "alertrouter.h"

#include "alertsynth.h"
#include "audiodevicemanager.h"
#include "preferences.h"

#include <QFile>
#include <QMediaDevices>
#include <QWaveDecoder>

AlertRouter::AlertRouter(QObject *parent) : QObject(parent), m_check(this)
{
    // Qt 6.4 does not report outputs coming and going on PulseAudio (see AudioDeviceWatcher).
    m_check.setInterval(checkIntervalMs);
    connect(&m_check, &QTimer::timeout, this, &AlertRouter::keepReady);
}

AlertRouter::~AlertRouter()
{
    // Deleting an output's sinks runs this thread's pending events (Qt 6.4): no check may come
    // in while the outputs go.
    m_check.stop();
    m_routed.reset();
    m_system.reset();
}

void AlertRouter::start()
{
    for (const QString &name : AlertSynth::names())
        sound(name); // decoded now rather than by the first alert of each
    m_check.start();
    keepReady();
}

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
    if (AlertOutput *routed = routedOutput(outputUID); routed && routed->play(pcm))
        return;
    // Nothing chosen, the chosen output unplugged (until it comes back) or failing.
    if (AlertOutput *system = systemOutput())
        system->play(pcm);
}

bool AlertRouter::isSounding() const
{
    return (m_routed && m_routed->isSounding()) || (m_system && m_system->isSounding());
}

void AlertRouter::keepReady()
{
    if (AlertOutput *routed = routedOutput(Preferences::alertOutputUID()); routed && routed->prepare()) {
        // The system output is only the fallback: no stream of its own kept open meanwhile.
        if (m_system && !m_system->isSounding())
            retire(m_system);
        return;
    }
    if (AlertOutput *system = systemOutput())
        system->prepare();
}

AlertOutput *AlertRouter::routedOutput(const QString &outputUID)
{
    const QAudioDevice device =
        outputUID.isEmpty() ? QAudioDevice() : AudioDeviceManager::platformDevice(outputUID);
    if (device.isNull()) {
        retire(m_routed);
        return nullptr;
    }
    if (!m_routed || m_routedUID != outputUID) {
        retire(m_routed); // the output of the previous choice
        m_routed = std::make_unique<AlertOutput>(device);
        m_routedUID = outputUID;
    }
    return m_routed.get();
}

AlertOutput *AlertRouter::systemOutput()
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) {
        retire(m_system);
        return nullptr;
    }
    if (!m_system || m_system->deviceId() != device.id()) {
        retire(m_system);
        m_system = std::make_unique<AlertOutput>(device);
    }
    return m_system.get();
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
