#pragma once

#include <QList>
#include <QString>
#include <QUuid>

// A preset from which a new cue is made: name, length and thresholds in seconds.
struct CueTemplate {
    QUuid id = QUuid::createUuid();
    QString name;
    double duration = 0;
    double warningThreshold = 0;
    double dangerThreshold = 0;

    // The built-in templates, made once (each with its own id) and shared afterwards.
    static const QList<CueTemplate> &defaults();

    bool operator==(const CueTemplate &) const = default;
};
