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

// Points `current` at `source`, moving `receiver` from the old source to the new one: `slot`
// runs on each of the source's `changes`.
template <typename Source, typename Receiver, typename Slot>
void follow(QPointer<Source> &current, Source *source, Receiver *receiver,
            std::initializer_list<void (Source::*)()> changes, Slot slot)
{
    if (current)
        current->disconnect(receiver);
    current = source;
    if (source) {
        for (auto change : changes)
            QObject::connect(source, change, receiver, slot);
    }
}

template <typename Receiver, typename Slot>
void followEngine(QPointer<TimerEngine> &current, TimerEngine *engine, Receiver *receiver,
                  std::initializer_list<void (TimerEngine::*)()> changes, Slot slot)
{
    follow(current, engine, receiver, changes, slot);
}
