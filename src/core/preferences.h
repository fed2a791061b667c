#pragma once

#include <QString>

// The user's persisted preferences (QSettings, in the platform's usual place). Readers that
// must tell "never stored" apart get the raw value: a key never stored reads as empty here.
class Preferences
{
public:
    // Persistent id of the audio output for the alerts; empty for the system output.
    static QString alertOutputUID();
    static void setAlertOutputUID(const QString &uid);
};
