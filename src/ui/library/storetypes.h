#pragma once

#include "sessionstore.h"

#include <QQmlEngine>

// The core's project store as a QML type, so that the views can declare
// `required property SessionStore`. The core itself carries no QML macros.
struct SessionStoreForeign {
    Q_GADGET
    QML_FOREIGN(SessionStore)
    QML_NAMED_ELEMENT(SessionStore)
    QML_UNCREATABLE("The application's one project store is made by the application")
};
