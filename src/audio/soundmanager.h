#pragma once

#include "alertplayer.h"

#include <QObject>
#include <QThread>

class AlertRouter;

// Plays the alert sounds on the output chosen in the preferences ("alertOutputUID"), read at
// every alert: the system output when it is empty or when that output is not connected, and
// whenever the chosen output fails. The work happens on the audio thread "kairon.audio": play()
// returns at once, never blocks the main thread and never shows anything. The output the next
// alert will take is kept open ahead (see AlertRouter). With no sound server at all nothing
// plays.
class SoundManager : public QObject, public AlertPlayer
{
    Q_OBJECT

public:
    explicit SoundManager(QObject *parent = nullptr);
    ~SoundManager() override;

    void play(const QString &name) override;

private:
    QThread m_thread;
    AlertRouter *m_router = nullptr; // lives on m_thread
};
