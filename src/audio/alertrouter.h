#pragma once

#include "alertoutput.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>

#include <memory>

// The audio thread's side of SoundManager: chooses the output for each alert and keeps the
// outputs between alerts: one routed to the chosen device (replaced when the choice changes)
// and one on the system's default output.
class AlertRouter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // `outputUID` is the preference as read when the alert was asked for.
    void play(const QString &name, const QString &outputUID);
    // Whether an alert may still be sounding on one of the outputs.
    bool isSounding() const;

private:
    QByteArray sound(const QString &name);
    void playOnSystemOutput(const QByteArray &pcm);
    // Stops an output no longer used, at once, and lets it go.
    static void retire(std::unique_ptr<AlertOutput> &output);

    QHash<QString, QByteArray> m_sounds; // decoded from the resources on first use
    std::unique_ptr<AlertOutput> m_routed;
    QString m_routedUID;
    std::unique_ptr<AlertOutput> m_system;
};
