#pragma once

#include "audiooutputdevice.h"

#include <QAudioDevice>
#include <QList>
#include <QString>

#include <optional>

// The machine's audio outputs, asked of the platform on every call (no cache: outputs come and
// go). Devices without output never appear.
namespace AudioDeviceManager {

// In the platform's order; several may share a name, never a uid.
QList<AudioOutputDevice> outputDevices();
// The first listed output whose uid is exactly `uid`.
std::optional<AudioOutputDevice> deviceForUID(const QString &uid);
// The first entry of the settings menu: "Sortie système (" + name + ")", or "Sortie système"
// when the default output has no name or there is none.
QString systemOutputLabel();

// The platform's handle of the output with that uid; null when it is not connected.
QAudioDevice platformDevice(const QString &uid);

} // namespace AudioDeviceManager
