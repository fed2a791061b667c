#pragma once

#include <QString>
#include <QtGlobal>

// One audio output of the machine.
struct AudioOutputDevice {
    quint32 id = 0; // its place in the platform's list when listed; valid while the list holds
    QString uid;    // persistent: the PulseAudio sink name on Linux; what the preferences keep
    QString name;   // for display

    bool operator==(const AudioOutputDevice &) const = default;
};
