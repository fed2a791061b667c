#pragma once

#include <QSettings>

// The application's settings file, the one QSettings() opens (~/.config/Kairon/Kairon.conf),
// in the same INI text, but written through a function that pushes the text to the disk and
// checks it before QSettings puts the file in place: QSettings' own writer reports success
// and leaves an empty file when the disk is full.
//
// A change the disk refused stays with QSettings, in force for this run while its file is
// cached, and goes out with the next write that succeeds (any read tries it again).
class SettingsFile : public QSettings
{
public:
    SettingsFile();

    // Writes the changes made through this object. False, with "impossible d'écrire « file »
    // (reason)" in `error`, the reason in French, when the disk refused them; the file on the
    // disk is then as it was.
    bool save(QString *error = nullptr);

    // The format itself, registered on first use.
    static QSettings::Format format();
};
