#include "audiodevicemanager.h"

#include <QMediaDevices>

namespace AudioDeviceManager {

QList<AudioOutputDevice> outputDevices()
{
    QList<AudioOutputDevice> devices;
    const QList<QAudioDevice> outputs = QMediaDevices::audioOutputs();
    for (const QAudioDevice &output : outputs) {
        if (output.mode() != QAudioDevice::Output || output.id().isEmpty())
            continue;
        devices.append({quint32(devices.size()), QString::fromUtf8(output.id()),
                        output.description()});
    }
    return devices;
}

std::optional<AudioOutputDevice> deviceForUID(const QString &uid)
{
    for (const AudioOutputDevice &device : outputDevices()) {
        if (device.uid == uid)
            return device;
    }
    return std::nullopt;
}

QString systemOutputLabel()
{
    const QAudioDevice output = QMediaDevices::defaultAudioOutput();
    if (output.isNull() || output.description().isEmpty())
        return QStringLiteral("Sortie système");
    return QStringLiteral("Sortie système (") + output.description() + QStringLiteral(")");
}

QAudioDevice platformDevice(const QString &uid)
{
    const QByteArray id = uid.toUtf8();
    const QList<QAudioDevice> outputs = QMediaDevices::audioOutputs();
    for (const QAudioDevice &output : outputs) {
        if (output.id() == id)
            return output;
    }
    return {};
}

} // namespace AudioDeviceManager
