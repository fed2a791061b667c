#pragma once

#include "timerengine.h"

#include <QPointer>
#include <QQmlEngine>

#include <initializer_list>

// The core's engine as a QML type, so that views can declare `required property TimerEngine`.
// The core itself carries no QML macros.
struct TimerEngineForeign {
    Q_GADGET
    QML_FOREIGN(TimerEngine)
    QML_NAMED_ELEMENT(TimerEngine)
    QML_UNCREATABLE("The application's one engine is made by the application")
};

// Points `current` at `engine`, moving `receiver` from the old engine to the new one: `slot`
// runs on each of the engine's `changes`.
template <typename Receiver, typename Slot>
void followEngine(QPointer<TimerEngine> &current, TimerEngine *engine, Receiver *receiver,
                  std::initializer_list<void (TimerEngine::*)()> changes, Slot slot)
{
    if (current)
        current->disconnect(receiver);
    current = engine;
    if (engine) {
        for (auto change : changes)
            QObject::connect(engine, change, receiver, slot);
    }
}
