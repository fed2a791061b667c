#pragma once

#include <QList>
#include <QString>
#include <QUuid>

// A canned message the operator pushes to the stage display with one click.
struct PresetMessage {
    QUuid id = QUuid::createUuid();
    QString text;
    bool urgent = false; // shown in the alarming style

    // The built-in messages, made once (each with its own id) and shared afterwards.
    static const QList<PresetMessage> &defaults();

    bool operator==(const PresetMessage &) const = default;
};
