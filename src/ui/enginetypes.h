#pragma once

#include "timerengine.h"

#include <QQmlEngine>

// The core's engine as a QML type, so that views can declare `required property TimerEngine`.
// The core itself carries no QML macros.
struct TimerEngineForeign {
    Q_GADGET
    QML_FOREIGN(TimerEngine)
    QML_NAMED_ELEMENT(TimerEngine)
    QML_UNCREATABLE("The application's one engine is made by the application")
};
