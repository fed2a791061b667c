#pragma once

#include "alertoutput.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

// The audio thread's side of SoundManager: chooses the output for each alert and keeps the
// outputs between alerts: one routed to the chosen device (replaced when the choice changes)
// and one on the system's default output. The output the next alert will take has its stream
// open ahead, checked every half second: reopened when the choice changes, when the chosen
// output is unplugged (the system output takes over) or comes back, when the default output
// changes.
class AlertRouter : public QObject
{
    Q_OBJECT

public:
    explicit AlertRouter(QObject *parent = nullptr);
    ~AlertRouter() override;

    // Decodes the sounds, opens the next alert's output and starts the checks; from the audio
    // thread.
    void start();
    // `outputUID` is the preference as read when the alert was asked for.
    void play(const QString &name, const QString &outputUID);
    // Whether an alert may still be sounding on one of the outputs.
    bool isSounding() const;

    static constexpr int checkIntervalMs = 500;

private:
    QByteArray sound(const QString &name);
    // Has the output of the present choice ready for the next alert, and lets go of the other.
    void keepReady();
    // The output routed to `outputUID`, made for it if need be; null, and the routed output let
    // go, when nothing is chosen or the chosen output is not connected: its streams, moved
    // elsewhere by the server, must not play the next alert.
    AlertOutput *routedOutput(const QString &outputUID);
    // The output on the system's default output; null when there is none.
    AlertOutput *systemOutput();
    // Stops an output no longer used, at once, and lets it go.
    static void retire(std::unique_ptr<AlertOutput> &output);

    QHash<QString, QByteArray> m_sounds; // decoded from the resources on first use
    std::unique_ptr<AlertOutput> m_routed;
    QString m_routedUID;
    std::unique_ptr<AlertOutput> m_system;
    QTimer m_check;
};
